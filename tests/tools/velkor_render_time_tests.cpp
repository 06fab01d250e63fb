// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <utility>

// Time in velkor-render: delays, tempo, MIDI and tails.

class RenderTime : public RenderTest
{
};

TEST_F (RenderTime, ADelayMovesAnImpulseByItsTimeOrBeatLength)
{
    const std::pair<Words, int> cases[] = {
        { { "--set", "delay 1 time = 0.1 S" }, 4800 },
        { { "--set", "Delay 1 Time=250", "--set", "Delay 1 Multiplier=x4" }, 48000 },
        { { "--tempo", "90", "--set", "Delay 1 Time=1/8D", "--set", "Delay 1 Sync=on" }, 24000 },
        { { "--tempo", "120", "--set", "Delay 1 Sync=1", "--set", "Delay 1 Time=1/16t" }, 4000 },
    };
    write ("in.wav", impulses (2000, 1000, 0.5f, 0.0f), 48000.0);

    for (const auto& [options, frames] : cases)
    {
        SCOPED_TRACE (testing::PrintToString (options));
        render (oneDelay() + options + Words { "in.wav", "o.wav" });
        const auto sound = read ("o.wav");
        const auto at = sound.framesAbove (0.01f, 0);
        ASSERT_EQ (at.size(), 2u);                       // as two halves
        EXPECT_NEAR (at.front(), 1000 + frames - 1, 1);  // the float range may cost a frame
        EXPECT_EQ (at.back(), at.front() + 1);
        EXPECT_NEAR (sound.at (0, at.front()), 0.25f, 2e-3f);
        EXPECT_TRUE (sound.framesAbove (1e-6f, 1).empty()) << "the pan is hard left";
    }
}

TEST_F (RenderTime, MidiPlaysAtTheGivenTempo)
{
    juce::MidiMessageSequence track;
    track.addEvent (juce::MidiMessage::tempoMetaEvent (250000), 0.0);  // 240 BPM, not to be heeded
    track.addEvent (juce::MidiMessage::noteOn (3, 60, 0.5f), 960.0);
    track.addEvent (juce::MidiMessage::noteOff (3, 60), 1920.0);
    juce::MidiFile midi;
    midi.setTicksPerQuarterNote (960);
    midi.addTrack (track);
    auto stream = file ("gate.mid").createOutputStream();
    ASSERT_TRUE (midi.writeTo (*stream));
    stream.reset();

    write ("in.wav", sine (400.0, 48000.0, 3 * 48000, 0.5f), 48000.0);
    const auto gated = emptyPatch() + Words { "--connect", "Input L > Output 1",
                                              "--set",     "Output 1 Level=0",
                                              "--set",     "Level 1 Mod=100%",
                                              "--route",   "Gate > Level 1",
                                              "--tail",    "0",
                                              "--block",   "64",
                                              "--midi",    "gate.mid" };

    for (const auto& [tempo, beat] : { std::pair { "120", 24000 }, std::pair { "60", 48000 } })
    {
        render (gated + Words { "--tempo", tempo, "in.wav", "o.wav" });
        const auto open = read ("o.wav").framesAbove (0.01f, 0);
        ASSERT_FALSE (open.empty());
        EXPECT_NEAR (open.front(), beat, 64 + 20)
            << tempo;  // within its block, and the sine starts at 0
        EXPECT_NEAR (open.back(), 2 * beat, 64 + 192) << tempo;  // 4 ms of ramp
    }
}

TEST_F (RenderTime, TheTailWaitsForTheLastEchoAndNoLonger)
{
    const int rate = 8000;
    write ("in.wav", impulses (800, 100, 0.5f, 0.0f), rate);
    const auto echo =
        oneDelay() + Words { "--set", "Delay 1 Time=1000", "--set", "Delay 1 Multiplier=x8" };

    render (echo + Words { "in.wav", "auto.wav" });
    const auto automatic = read ("auto.wav");
    const auto at = automatic.framesAbove (0.01f, 0);
    ASSERT_EQ (at.size(), 2u) << "silence of 8 seconds before the echo is no end";
    EXPECT_EQ (automatic.length(), at.back() + 1 + rate);

    render (echo + Words { "--tail", "0.5", "in.wav", "fixed.wav" });
    EXPECT_EQ (read ("fixed.wav").length(), 800 + rate / 2);

    render (echo + Words { "--set", "Delay 1 Loop=on", "--set", "Delay 1 Time=50", "in.wav",
                           "endless.wav" });
    EXPECT_EQ (read ("endless.wav").length(), 800 + 60 * rate);
}

TEST_F (RenderTime, ASyncedLfoFollowsThePosition)
{
    write ("in.wav", sine (400.0, 48000.0, 48000, 0.5f), 48000.0);
    render (emptyPatch() + Words { "--connect", "Input L > Output 1",
                                   "--route",   "LFO 1 > Pan 1",
                                   "--set",     "Pan 1=0.5",
                                   "--set",     "Pan 1 Mod=50%",
                                   "--set",     "LFO 1 Wave=square",
                                   "--set",     "LFO 1 Rate=1/4",
                                   "--set",     "LFO 1 Sync=on",
                                   "--tempo",   "120",
                                   "--tail",    "0",
                                   "in.wav",    "o.wav" });
    const auto sound = read ("o.wav");

    // A cycle of a beat is half a second: right for its first half, left for its second.
    for (int quarter = 0; quarter < 4; ++quarter)
    {
        const int loud = quarter % 2 == 0 ? 1 : 0;
        const int from = quarter * 12000 + 1000;
        EXPECT_GT (sound.samples.getMagnitude (loud, from, 10000), 0.4f) << quarter;
        EXPECT_LT (sound.samples.getMagnitude (1 - loud, from, 10000), 0.01f) << quarter;
    }
}
