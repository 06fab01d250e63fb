// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/resampling.h"

#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace
{
/** Steep low-pass that keeps what lies above a lower rate's range from folding back into it: Butterworth,
    16th order, 3 dB down at 0.45 of that rate. The sinc interpolator cuts at the source's range only. */
class AliasFilter
{
public:
    AliasFilter (double sourceRate, double targetRate)
    {
        for (std::size_t i = 0; i < stages.size(); ++i)
        {
            // The poles' angles of a Butterworth filter of order 2 n, as the Q of its n pairs.
            const double pairs = static_cast<double> (stages.size());
            const double angle = juce::MathConstants<double>::pi *
                                 (2.0 * static_cast<double> (i) + 1.0) / (4.0 * pairs);
            stages[i].setCoefficients (juce::IIRCoefficients::makeLowPass (
                sourceRate, 0.45 * targetRate, 0.5 / std::cos (angle)));
        }
    }

    void process (float* samples, int count)
    {
        for (auto& stage : stages)
            stage.processSamples (samples, count);
    }

private:
    std::array<juce::IIRFilter, 8> stages;
};

/** What the sinc interpolator makes of a constant 1: its window costs it 0.09 dB, at all frequencies. */
float interpolatorGain()
{
    constexpr int kEnough = 400;  // twice its memory
    const std::vector<float> ones (kEnough, 1.0f);
    std::vector<float> result (kEnough);
    juce::WindowedSincInterpolator interpolator;
    interpolator.process (1.0, ones.data(), result.data(), kEnough);
    return result.back();
}

/** Pulls an input through the framework's sinc interpolators, front to back. */
class Resampler
{
public:
    Resampler (AudioInput from, double rate) : input (std::move (from)), ratio (input.rate / rate)
    {
        if (ratio > 1.0)
            for (auto& filter : filters)
                filter = std::make_unique<AliasFilter> (input.rate, rate);
    }

    void read (juce::AudioBuffer<float>& frames, int count)
    {
        if (! started)
        {
            // Takes in as many frames as the interpolators look ahead, one for one, so that the first one
            // to come out at the real ratio is the input's frame 0.
            constexpr int kLookAhead =
                static_cast<int> (juce::WindowedSincInterpolator::getBaseLatency());
            juce::AudioBuffer<float> unused (2, kLookAhead);
            pull (unused, 1.0, kLookAhead);
            started = true;
        }

        pull (frames, ratio, count);
    }

private:
    void pull (juce::AudioBuffer<float>& frames, double speed, int count)
    {
        const int wanted = static_cast<int> (std::ceil (speed * count)) + 2;

        if (wanted > held)
            fetch (wanted - held);

        int used = 0;

        for (int channel = 0; channel < 2; ++channel)
            used = interpolators[channel].process (speed, waiting.getReadPointer (channel),
                                                   frames.getWritePointer (channel), count);

        frames.applyGain (0, count, gain);
        held -= used;

        for (int channel = 0; channel < 2; ++channel)
        {
            float* const samples = waiting.getWritePointer (channel);
            std::copy (samples + used, samples + used + held, samples);
        }
    }

    /** Appends count frames of the input to those that wait. */
    void fetch (int count)
    {
        juce::AudioBuffer<float> fresh (2, count);
        input.read (fresh, position, count);
        waiting.setSize (2, held + count, true, false, true);

        for (int channel = 0; channel < 2; ++channel)
        {
            if (filters[channel] != nullptr)
                filters[channel]->process (fresh.getWritePointer (channel), count);

            waiting.copyFrom (channel, held, fresh, channel, 0, count);
        }

        held += count;
        position += count;
    }

    AudioInput input;
    double ratio;  ///< frames of the input for one of ours
    float gain = 1.0f / interpolatorGain();
    bool started = false;
    juce::int64 position = 0;          ///< the input's next frame
    juce::AudioBuffer<float> waiting;  ///< fetched, not used yet
    int held = 0;                      ///< frames in waiting
    juce::WindowedSincInterpolator interpolators[2];
    std::unique_ptr<AliasFilter> filters[2];
};
}  // namespace

AudioInput resampled (AudioInput input, double rate)
{
    if (juce::approximatelyEqual (input.rate, rate))
        return input;

    const auto frames = std::ceil (static_cast<double> (input.length) * rate / input.rate);
    const auto resampler = std::make_shared<Resampler> (std::move (input), rate);

    return { rate, static_cast<juce::int64> (frames),
             [resampler] (juce::AudioBuffer<float>& buffer, juce::int64, int count)
             { resampler->read (buffer, count); } };
}
