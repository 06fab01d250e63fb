// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/Lv2AudioProcessor.h"

#include <algorithm>
#include <utility>

static thread_local Lv2AudioProcessor* lastMade = nullptr;

Lv2AudioProcessor::Lv2AudioProcessor() : NoticingAudioProcessor (Faders::byNotice)
{
    VelkorAudioProcessor::setPlayHead (&playHead);
    lastMade = this;
}

Lv2AudioProcessor* Lv2AudioProcessor::takeLastMade() noexcept
{
    return std::exchange (lastMade, nullptr);
}

void Lv2AudioProcessor::prepareToPlay (double sampleRate, int samplesPerBlock)
{
    song.setSampleRate (sampleRate);
    VelkorAudioProcessor::prepareToPlay (sampleRate, samplesPerBlock);
}

void Lv2AudioProcessor::beginRun (std::span<const SongEvent> fresh) noexcept
{
    blockThread = juce::Thread::getCurrentThreadId();
    events = fresh;
}

void Lv2AudioProcessor::endRun() noexcept
{
    // What is left is at the block's end, or of a block that the client didn't hand on.
    for (const auto& event : std::exchange (events, {}))
        song.take (event);

    blockThread = nullptr;
}

juce::Optional<juce::AudioPlayHead::PositionInfo> Lv2AudioProcessor::readSong() const
{
    juce::AudioPlayHead::PositionInfo info;
    info.setIsPlaying (song.isPlaying());

    if (const auto tempo = song.getTempo())
        info.setBpm (*tempo);

    if (const auto quarters = song.getQuarters())
        info.setPpqPosition (*quarters);

    return info;
}

void Lv2AudioProcessor::takeEventsUpTo (int offset) noexcept
{
    while (! events.empty() && events.front().offset <= offset)
    {
        song.take (events.front());
        events = events.subspan (1);
    }
}

/** Counts from start to end, or to the first jump before it. The sample at which it stopped. */
int Lv2AudioProcessor::takeEventsUntilJump (int start, int end) noexcept
{
    while (! events.empty() && events.front().offset < end)
    {
        const int offset = std::max (start, events.front().offset);
        song.advance (offset - start);
        start = offset;

        if (song.isJump (events.front()))
            return offset;

        song.take (events.front());
        events = events.subspan (1);
    }

    song.advance (end - start);
    return end;
}

void Lv2AudioProcessor::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi)
{
    const int numSamples = buffer.getNumSamples();
    int start = 0;

    do
    {
        takeEventsUpTo (start);
        playHead.position = readSong();
        const int end = takeEventsUntilJump (start, numSamples);

        // Refers to the same samples; of up to 32 channels without an allocation.
        juce::AudioBuffer<float> part (buffer.getArrayOfWritePointers(), buffer.getNumChannels(),
                                       start, end - start);
        VelkorAudioProcessor::processBlock (part, start == 0 ? midi : noMidi);
        start = end;
    } while (start < numSamples);

    midi.clear();
}

void Lv2AudioProcessor::processBlockBypassed (juce::AudioBuffer<float>& buffer,
                                              juce::MidiBuffer& midi)
{
    const int numSamples = buffer.getNumSamples();

    for (int start = 0; start < numSamples;)
    {
        takeEventsUpTo (start);
        start = takeEventsUntilJump (start, numSamples);
    }

    VelkorAudioProcessor::processBlockBypassed (buffer, midi);
    midi.clear();
}
