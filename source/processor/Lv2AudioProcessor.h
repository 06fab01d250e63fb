// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/NoticingAudioProcessor.h"
#include "processor/song_position.h"

#include <span>

/** The processor as LV2 hosts need it: with a transport of its own count, since hosts say it only
    when it changes and JUCE's client reads little of it, and with no MIDI left in the buffer, which
    that client would send. */
class Lv2AudioProcessor : public NoticingAudioProcessor
{
public:
    Lv2AudioProcessor();

    /** The processor that this thread constructed last and nobody took yet, or nullptr. */
    static Lv2AudioProcessor* takeLastMade() noexcept;

    /** Around the client's work on one block. events, by offset, stay the caller's. Audio thread;
        lock-free. */
    void beginRun (std::span<const SongEvent> events) noexcept;
    void endRun() noexcept;

    /** Has no effect: the client's play head knows less than this one. */
    void setPlayHead (juce::AudioPlayHead*) override {}

    void prepareToPlay (double sampleRate, int samplesPerBlock) override;

    /** In parts if the song jumps, starts, stops or changes tempo inside the block. All MIDI goes to the first
        part: it acts at the start of the host's block anyway. */
    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    void processBlockBypassed (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    using VelkorAudioProcessor::processBlock;
    using VelkorAudioProcessor::processBlockBypassed;

private:
    class PlayHead : public juce::AudioPlayHead
    {
    public:
        juce::Optional<PositionInfo> getPosition() const override { return position; }
        juce::Optional<PositionInfo> position;
    };

    juce::Optional<juce::AudioPlayHead::PositionInfo> readSong() const;
    int takeEventsUntilJump (int start, int end) noexcept;
    void takeEventsUpTo (int offset) noexcept;

    SongPosition song;                  ///< the audio thread's, and so the next three
    std::span<const SongEvent> events;  ///< of this block, not taken yet
    PlayHead playHead;
    juce::MidiBuffer noMidi;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (Lv2AudioProcessor)
};
