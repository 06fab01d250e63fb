// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/render.h"

#include "processor/VelkorAudioProcessor.h"
#include "velkor_render/audio_output.h"
#include "velkor_render/interruption.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr double kLongestTailSeconds = 60.0;
constexpr double kSilenceSeconds = 1.0;     ///< left standing behind the sound
constexpr float kSilenceGain = 3.1623e-5f;  ///< -90 dBFS

/** A transport that starts with the first frame and never stops. */
class SteadyPlayHead : public juce::AudioPlayHead
{
public:
    SteadyPlayHead (double tempoToReport, double rateOfFrames)
        : tempo (tempoToReport), rate (rateOfFrames)
    {
    }

    juce::Optional<PositionInfo> getPosition() const override
    {
        const double seconds = static_cast<double> (frame) / rate;
        PositionInfo info;
        info.setBpm (tempo);
        info.setTimeSignature (TimeSignature {});
        info.setTimeInSamples (frame);
        info.setTimeInSeconds (seconds);
        info.setPpqPosition (seconds * tempo / 60.0);
        info.setIsPlaying (true);
        return info;
    }

    juce::int64 frame = 0;  ///< the first one of the next block

private:
    double tempo, rate;
};

/** One render. */
class Renderer
{
public:
    Renderer (VelkorAudioProcessor& processorToUse, AudioInput& inputToRead,
              const RenderSettings& settingsToUse, AudioOutput& outputToFill);
    ~Renderer() { processor.setPlayHead (nullptr); }

    RenderResult run (const std::function<void (double)>& progress);

private:
    void processBlock (int count);
    void keep (const juce::AudioBuffer<float>& frames, int count);
    void renderUpTo (juce::int64 end, const std::function<void (double)>& progress);
    void renderUntilSilent();
    bool isAudible (int frame) const;

    VelkorAudioProcessor& processor;
    AudioInput& input;
    const RenderSettings& settings;
    AudioOutput& output;
    SteadyPlayHead playHead;
    std::size_t nextEvent = 0;
    juce::MidiBuffer events;
    juce::AudioBuffer<float> block;  ///< what was processed last
    juce::int64 heardLast = 0;       ///< the first frame behind the last audible one
    RenderResult result;
};

Renderer::Renderer (VelkorAudioProcessor& processorToUse, AudioInput& inputToRead,
                    const RenderSettings& settingsToUse, AudioOutput& outputToFill)
    : processor (processorToUse), input (inputToRead), settings (settingsToUse),
      output (outputToFill), playHead (settingsToUse.tempo, inputToRead.rate),
      block (2, settingsToUse.block)
{
    processor.setPlayHead (&playHead);
    processor.setNonRealtime (true);
    processor.setPlayConfigDetails (2, 2, input.rate, settings.block);
    processor.prepareToPlay (input.rate, settings.block);
}

/** The next count frames of the input, or of the silence behind it, into block and through the plug-in. */
void Renderer::processBlock (int count)
{
    throwIfInterrupted();
    const auto start = playHead.frame;
    block.setSize (2, count, false, false, true);

    if (start >= input.length)
        block.clear();
    else
        input.read (block, start, count);

    events.clear();

    for (; nextEvent < settings.midi.size() && settings.midi[nextEvent].frame < start + count;
         ++nextEvent)
    {
        const auto& event = settings.midi[nextEvent];
        const auto place = std::max<juce::int64> (0, event.frame - start);
        events.addEvent (event.message, static_cast<int> (place));
    }

    processor.processBlock (block, events);
    playHead.frame += count;

    for (int i = 0; i < count; ++i)
        if (isAudible (i))
            heardLast = start + i + 1;
}

bool Renderer::isAudible (int frame) const
{
    return std::abs (block.getSample (0, frame)) >= kSilenceGain ||
           std::abs (block.getSample (1, frame)) >= kSilenceGain;
}

void Renderer::keep (const juce::AudioBuffer<float>& frames, int count)
{
    for (int channel = 0; channel < 2; ++channel)
    {
        const auto side = static_cast<std::size_t> (channel);
        const float* const samples = frames.getReadPointer (channel);

        for (int i = 0; i < count; ++i)
        {
            const double sample = samples[i];
            result.peak[side] = std::max (result.peak[side], std::abs (sample));
            result.rms[side] += sample * sample;  // the mean and the root come last
        }
    }

    output.write (frames, count);
    result.frames += count;
}

void Renderer::renderUpTo (juce::int64 end, const std::function<void (double)>& progress)
{
    while (playHead.frame < end)
    {
        const auto count = std::min<juce::int64> (settings.block, end - playHead.frame);
        processBlock (static_cast<int> (count));
        keep (block, static_cast<int> (count));
        progress (static_cast<double> (playHead.frame) / static_cast<double> (end));
    }
}

/** Holds the tail back until its end is known: silence that is longer than the delays can bridge at their
    slowest, both in a row. */
void Renderer::renderUntilSilent()
{
    const auto& engine = *processor.engine;
    const double delaySeconds = 0.001 * (engine.delay1.timeMs + engine.delay2.timeMs) / 0.5;
    const auto silence = static_cast<juce::int64> (kSilenceSeconds * input.rate);
    const auto patience = silence + static_cast<juce::int64> (delaySeconds * input.rate);
    const auto start = playHead.frame;
    const auto longest = static_cast<juce::int64> (kLongestTailSeconds * input.rate);
    std::vector<float> tail[2];

    while (playHead.frame < std::min (start + longest, heardLast + patience))
    {
        const auto count = static_cast<int> (
            std::min<juce::int64> (settings.block, start + longest - playHead.frame));
        processBlock (count);

        for (int channel = 0; channel < 2; ++channel)
        {
            const float* const samples = block.getReadPointer (channel);
            tail[channel].insert (tail[channel].end(), samples, samples + count);
        }
    }

    float* const channels[] = { tail[0].data(), tail[1].data() };
    const auto held = static_cast<int> (tail[0].size());
    const auto wanted = std::clamp<juce::int64> (heardLast + silence - start, 0, held);
    keep ({ channels, 2, held }, static_cast<int> (wanted));
}

RenderResult Renderer::run (const std::function<void (double)>& progress)
{
    const double tail = settings.tailSeconds.value_or (0.0);
    renderUpTo (input.length + static_cast<juce::int64> (std::llround (tail * input.rate)),
                progress);

    if (! settings.tailSeconds)
        renderUntilSilent();

    for (auto& level : result.rms)
        level = std::sqrt (level / static_cast<double> (std::max<juce::int64> (1, result.frames)));

    return result;
}
}  // namespace

RenderResult render (VelkorAudioProcessor& processor, AudioInput& input,
                     const RenderSettings& settings, AudioOutput& output,
                     const std::function<void (double)>& progress)
{
    return Renderer (processor, input, settings, output).run (progress);
}
