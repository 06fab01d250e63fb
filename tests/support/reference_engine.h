// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/** A second sound engine, for tests only: naive, slow, one thread, no locks, no framework. It was
    written without a look at the one in the product, so that the two agree bit for bit only where
    both are right. Never optimise it, and never mend it by copying from the product. Built with
    -ffp-contract=off and without -ffast-math: width and order of every operation are the sound. */
namespace reference
{
inline constexpr std::size_t kNumParams = 57;

/** What all engines of a process share. Engines that stand for one process share one of these. */
struct Globals
{
    float rate = 44100.0f;                ///< gAudioSamplingRate, Hz
    float samplesPerMillisecond = 44.1f;  ///< gSamplesPerMillisecond; 0.001f * rate only once set
    float renormal = 1e-15f;              ///< of the filters; its sign flips at every filter call

    /** As the preparing of any engine of the process sets the first two. */
    void setRate (double newRate);
};

/** A line that is read and written by heads of equal, variable speed. */
struct DelayFad
{
    float timeMs = 0.0f;             ///< 2 to 12000
    std::uint64_t maxTimeMs = 0;     ///< set at construction only
    std::uint64_t delaySamples = 0;  ///< wanted distance of the heads, slots
    std::uint64_t bufferSize = 0;
    std::vector<float> buffer;
    float readPos = 0.0f;
    float writePos = 0.0f;
    float readRate = 1.0f;   ///< slots a sample
    float writeRate = 1.0f;  ///< slots a sample
    float lastIn = 0.0f;
    bool resetPending = true;
    bool reverse = false;
    bool reverseRequest = false;
    bool loop = false;
    float thru = 0.0f;  ///< 1 while bypassed
    float out = 0.0f;
};

/** State-variable filter, two passes a sample. */
struct FilterMultimode
{
    double coef = 0.0;
    double q = 0.0;
    double damp = 0.0;
    double low = 0.0, high = 0.0, band = 0.0, notch = 0.0;
    float lowMix = 0.0f, highMix = 0.0f, bandMix = 0.0f, notchMix = 1.0f;
    float out = 0.0f;
};

/** Pan stage with a table of sine squared. */
struct RouterPanner1to2
{
    std::array<float, 1025> table {};
    float gainL = 0.0f, gainR = 0.0f;
    float outL = 0.0f, outR = 0.0f;
};

struct GenLFO
{
    std::uint16_t kind = 0;  ///< 0 sine, 1 square, 2 triangle, 3 random
    float skew = 0.001f;
    float shapeA = 0.1996f;
    float shapeB = 0.0f;
    std::array<float, 512> table {};
    std::int64_t randomState = 3321;
    float lastPhase = 999.0f;
    float randomTarget = 0.0f;
    float randomStart = 0.0f;
    float output = 0.0f;
};

struct EnvelopeFollower
{
    float attackTime = 0.0f, decayTime = 0.0f;  ///< half the seconds of the parameters
    float attackCoef = 0.0f, decayCoef = 0.0f;
    float envState = 0.0f;
};

/** Linear ramp that moves once a tick though its counts are reckoned in samples. */
struct RampGenerator
{
    float target = 0.0f;
    float upTime = 0.001f, downTime = 0.001f;  ///< seconds
    std::uint64_t upCount = 0, downCount = 0;
    double value = 0.0, step = 0.0;
    std::uint64_t remaining = 0;
    float output = 0.0f;
};

struct ModRoute
{
    std::int32_t source = 0;
    std::int32_t dest = 0;
};

/** One LFO's course through a block. */
struct PhasePlan
{
    double increment = 0.0;  ///< a tick
    double phase = 0.0;      ///< at first where the block starts, then where the last tick stood
};

/** The engine. All state is public, to be looked at. Any one thread. Between calls the state is that
    between blocks. */
struct ReferenceEngine
{
    /** In the process whose globals these are; they must outlive the engine. */
    explicit ReferenceEngine (Globals& globalsOfTheProcess);

    ReferenceEngine (const ReferenceEngine&) = delete;
    ReferenceEngine& operator= (const ReferenceEngine&) = delete;

    void prepare (double rate);

    /** Makes or breaks a connection of the signal matrix; out of range does nothing. */
    void connect (int source, int destination, bool on);

    /** Makes or breaks a route of the modulation matrix; out of range does nothing. */
    void route (int source, int dest, bool on);

    /** One event of the block that is to come: call before process. */
    void midi (std::uint8_t b0, std::uint8_t b1, std::uint8_t b2);

    /** One block of n samples in place, n may be 0. The parameters stand in the order of the
        catalogue, in real units; ch1OrNull is null for a one-channel buffer. The caller flushes
        denormals meanwhile. */
    void process (const float (&params)[kNumParams], std::optional<double> tempo,
                  std::optional<double> ppq, float* ch0, float* ch1OrNull, int n);

    // Stages, callable on their own.
    static float tableLookup (const std::array<float, 1025>& table, float x);
    static float rampTick (RampGenerator&, float x);
    static int syncBeatIndex (float t);
    static float feedbackShaped (float feedback, float x);
    static float saturated (float satK, float x);
    static void delay_fad_dsp (DelayFad&, float in);
    static void router_panner_1to2_init (RouterPanner1to2&);
    static void setPan (RouterPanner1to2&, float p);
    static void gen_LFO_init (GenLFO&);
    static float gen_LFO_dsp_phasor (GenLFO&, double phase);
    static void setDamp (FilterMultimode&);
    void setCoef (FilterMultimode&, float freq) const;
    void filter_multimode_dsp_morph (FilterMultimode&, float in);
    void rampSetRate (RampGenerator&) const;

    Globals& globals;

    DelayFad delay1, delay2;
    FilterMultimode filter1, filter2;
    RouterPanner1to2 panner1, panner2;
    GenLFO lfo1, lfo2;
    EnvelopeFollower envelope;
    RampGenerator killRamp, gateRamp;
    std::array<float, 1025> freqTable {};

    std::vector<ModRoute> routes;  ///< in the order in which they were made
    std::array<float, 6> modSources {};
    std::array<float, 10> modDests {};

    std::array<float, 8> signalSources {};
    std::array<float, 10> signalDests {};
    std::array<std::int32_t, 80> connSource {};
    std::array<std::int32_t, 80> connDest {};
    std::int32_t connectionCount = 0;

    float inputGain = 1.0f;
    bool mono = false;
    float killTarget = 1.0f, phaseSign1 = 1.0f, phaseSign2 = 1.0f;
    float satK1 = 0.0f, satK2 = 0.0f, feedback1 = 0.0f, feedback2 = 0.0f;
    float wetGain = 1.0f, dryGain = 1.0f;
    float delayTime1 = 500.0f, delayTime2 = 500.0f;
    float delayTimeNorm1 = 0.5f, delayTimeNorm2 = 0.5f;
    std::int32_t mult1 = 2, mult2 = 2;
    bool delaySync1 = false, delaySync2 = false;
    float fine1 = 1.0f, fine2 = 1.0f, delayMod1 = 0.0f, delayMod2 = 0.0f;
    float lfoRate1 = 1.0f, lfoRate2 = 1.0f, lfoRateNorm1 = 0.5f, lfoRateNorm2 = 0.5f;
    bool lfoSync1 = false, lfoSync2 = false, lfo2Reset = false;
    double lfoPhase1 = 0.0, lfoPhase2 = 0.0;
    float filterFreqNorm1 = 0.8f, filterFreqNorm2 = 0.8f, filterMod1 = 0.0f, filterMod2 = 0.0f;
    float pan1 = 0.25f, pan2 = 0.75f, panMod1 = 0.0f, panMod2 = 0.0f;
    float level1 = 1.0f, level2 = 1.0f, levelMod1 = 0.0f, levelMod2 = 0.0f;
    float envSensitivity = 0.0f;

    float noteValue = 0.0f, gate = 0.0f, modWheel = 0.0f;
    std::array<bool, 128> held {};
    std::int32_t heldCount = 0;

    float antiDenormalOffset = 1e-14f;
    double sampleRate = 44100.0;

    // Of the tick that ran last; made anew by each.
    float outputLevel1 = 0.0f, outputLevel2 = 0.0f;  ///< after modulation
    float kill = 0.0f;
    float envSum = 0.0f;
    PhasePlan plan1, plan2;
    int nonFiniteRescues = 0;  ///< blocks that ended in clearing the signal state

private:
    void constructDelay (DelayFad&) const;
    void resizeDelay (DelayFad&) const;
    void updateEnvelopeCoefs();
    void clearDelay (DelayFad&) const;
    void clearSignalState();
    void writeSnapshot (const float (&params)[kNumParams]);
    void setDelayTime (DelayFad&, bool sync, std::int32_t mult, float timeNorm, float time,
                       double bpm) const;
    PhasePlan planned (bool sync, float rate, float rateNorm, double lfoPhase, double bpm,
                       double ppq, int n) const;
    void stepPhases();
    void routeModulation();
    void tick();
    void sample (float& ch0, float& ch1);
    void updateEnvelope();
    bool signalStateIsFinite() const;
};
}  // namespace reference
