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
    float rate = 1.0f;  ///< of both heads, slots a sample
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

struct GenLFO
{
    std::uint16_t kind = 0;  ///< 0 sine, 1 square, 2 triangle, 3 random
    float skew = 0.001f;
    float shapeA = 0.1996f;
    float shapeB = 0.0f;
    std::int64_t randomState = 3321;
    float lastPhase = 999.0f;
    float randomTarget = 0.0f;
    float randomStart = 0.0f;
};

/** Linear ramp that moves once a tick though its counts are reckoned in samples. */
struct RampGenerator
{
    float target = 0.0f;
    std::uint64_t count = 0;  ///< ticks that a move takes
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

/** What there is two of, with what the parameters and the last tick have made of it. */
struct Side
{
    DelayFad delay;
    FilterMultimode filter;
    GenLFO lfo;
    PhasePlan plan;  ///< of the LFO, made anew by each block
    double lfoPhase = 0.0;
    float gainL = 0.0f, gainR = 0.0f;  ///< of the panner
    float phaseSign = 1.0f, satK = 0.0f, feedback = 0.0f;
    float delayTime = 500.0f, delayTimeNorm = 0.5f;
    std::int32_t mult = 2;
    bool delaySync = false, lfoSync = false;
    float fine = 1.0f, delayMod = 0.0f;
    float lfoRate = 1.0f, lfoRateNorm = 0.5f;
    float filterFreqNorm = 0.8f, filterMod = 0.0f;
    float pan = 0.5f, panMod = 0.0f;
    float level = 1.0f, levelMod = 0.0f;
    float outputLevel = 0.0f;  ///< after modulation
};

/** The engine. Any one thread. Between calls the state is that between blocks. */
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

    /** One event of the block that is to come: call before process. Whether it is of a kind that is taken up. */
    bool midi (std::uint8_t b0, std::uint8_t b1, std::uint8_t b2);

    /** One block of n samples in place, n may be 0. The parameters stand in the order of the
        catalogue, in real units; ch1OrNull is null for a one-channel buffer. The caller flushes
        denormals meanwhile. */
    void process (const float (&params)[kNumParams], std::optional<double> tempo,
                  std::optional<double> ppq, float* ch0, float* ch1OrNull, int n);

    Globals& globals;

    std::array<Side, 2> sides;
    RampGenerator killRamp, gateRamp;
    std::array<float, 1025> freqTable {}, panTable {};

    std::vector<ModRoute> routes;  ///< in the order in which they were made
    std::array<float, 6> modSources {};
    std::array<float, 10> modDests {};

    std::array<float, 8> signalSources {};
    std::array<float, 10> signalDests {};
    std::array<std::int32_t, 80> connSource {};
    std::array<std::int32_t, 80> connDest {};
    std::int32_t connectionCount = 0;

    float inputGain = 1.0f, wetGain = 1.0f, dryGain = 1.0f;
    bool mono = false, lfo2Reset = false;
    float killTarget = 1.0f, kill = 0.0f;
    float attackCoef = 0.0f, decayCoef = 0.0f, envSensitivity = 0.0f;
    float envState = 0.0f, envSum = 0.0f;

    float noteValue = 0.0f, gate = 0.0f, modWheel = 0.0f;
    std::array<bool, 128> held {};
    std::int32_t heldCount = 0;

    float antiDenormalOffset = 1e-14f;
    double sampleRate = 44100.0;
    int nonFiniteRescues = 0;  ///< blocks that ended in clearing the signal state

private:
    void constructDelay (DelayFad&) const;
    void resizeDelay (DelayFad&) const;
    void setRampCount (RampGenerator&) const;
    void clearSignalState();
    void writeSnapshot (const float (&params)[kNumParams]);
    void writeSide (Side&, const float* params) const;
    float envelopeCoef (float time) const;
    void setDelayTime (Side&, double bpm) const;
    PhasePlan planned (const Side&, double bpm, double ppq, int n) const;
    void stepPhases();
    void tick();
    void modulate (Side&, std::size_t which) const;
    void sample (float& ch0, float& ch1);
    void updateEnvelope();
    bool signalStateIsFinite() const;
    void setFrequency (FilterMultimode&, float freq) const;
    void filter_multimode_dsp_morph (FilterMultimode&, float in);
};

// Stages that need no engine.
float tableLookup (const std::array<float, 1025>& table, float x);
float rampTick (RampGenerator&, float x);
int syncBeatIndex (float t);
void delay_fad_dsp (DelayFad&, float in);
float gen_LFO_dsp_phasor (GenLFO&, double phase);
}  // namespace reference
