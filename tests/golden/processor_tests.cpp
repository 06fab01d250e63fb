// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine_globals.h"
#include "support/duel.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>

// What the processor does as a whole, with numbers worked out by hand.

namespace
{

/** A processor at 48 kHz, settled after its first fade, dry signal off. */
class Bench
{
public:
    Bench()
    {
        processor.setPlayHead (&playHead);
        processor.prepareToPlay (48000.0, 512);

        for (int number = 0; number < kNumParameters; ++number)
            if (auto* parameter = processor.parameterTree.getParameter (paramMapper[number].name))
                parameter->setValueNotifyingHost (parameter->getDefaultValue());

        for (int destination = 0; destination < kNumSignalDests; ++destination)
            for (int source = 0; source < kNumSignalSources; ++source)
                processor.setSignalConnection (source, destination, false);

        set (DryLevel, 0.0f);
        set (Pan1, 0.0f);
        set (Pan2, 1.0f);
        settle();
    }

    void set (NumericalParamID id, float value) { setParameter (processor, id, value); }
    void connect (int source, int destination)
    {
        processor.setSignalConnection (source, destination, true);
    }

    /** Runs silence until ramps have ended. */
    void settle() { render (std::vector<float> (1024, 0.0f)); }

    /** The left output for a left and right input of the same samples, in blocks. */
    std::vector<float> render (std::vector<float> input, int blockSize = 512)
    {
        right = input;

        for (std::size_t start = 0; start < input.size();
             start += static_cast<std::size_t> (blockSize))
        {
            const auto n = std::min (static_cast<std::size_t> (blockSize), input.size() - start);
            float* channels[] = { input.data() + start, right.data() + start };
            juce::AudioBuffer<float> buffer (channels, 2, static_cast<int> (n));
            processor.processBlock (buffer, midi);
            midi.clear();
        }

        return input;
    }

    VelkorAudioProcessor processor;
    FakePlayHead playHead;
    juce::MidiBuffer midi;
    std::vector<float> right;  ///< the right output of the last render
};

std::vector<float> impulse (int length, int at = 0)
{
    std::vector<float> samples (static_cast<std::size_t> (length), 0.0f);
    samples[static_cast<std::size_t> (at)] = 1.0f;
    return samples;
}

/** Where the loudest sample stands. */
int peakOf (const std::vector<float>& samples)
{
    const auto louder = [] (float a, float b) { return std::abs (a) < std::abs (b); };
    return static_cast<int> (std::max_element (samples.begin(), samples.end(), louder) -
                             samples.begin());
}

std::vector<float> noiseOf (int length, std::uint32_t seed, float gain = 0.3f)
{
    Noise noise (seed);
    std::vector<float> samples (static_cast<std::size_t> (length));
    std::generate (samples.begin(), samples.end(), [&] { return gain * noise(); });
    return samples;
}

}  // namespace

TEST (Processor, EachNodeOnThePathAddsOneSampleAndADelayItsLengthToo)
{
    Bench direct;
    direct.connect (sourceInputL, destOutput1);
    EXPECT_EQ (peakOf (direct.render (impulse (256))), 0) << "an input is heard in the same sample";

    Bench saturators;
    saturators.connect (sourceInputL, destSaturation1);
    saturators.connect (sourceSaturation1, destSaturation2);
    saturators.connect (sourceSaturation2, destOutput1);
    const auto out = saturators.render (impulse (256, 7));
    EXPECT_EQ (peakOf (out), 9);
    EXPECT_NEAR (out[9], 1.0f, 1e-6f) << "unity at no drive";

    Bench delay;
    delay.connect (sourceInputL, destDelay1);
    delay.connect (sourceDelay1, destOutput1);
    delay.set (Delay1Multiplier, 0.0f);
    delay.set (Delay1Time, 10.0f);
    delay.render (std::vector<float> (48000, 0.0f));  // the heads have come to rest
    const auto echo = delay.render (impulse (1024));
    // The positions' last bits are worth 1/32 of a slot: a glide from above ends where the read head's step
    // rounds to 1, up to 1/64 of the length early.
    EXPECT_GE (peakOf (echo), 480);
    EXPECT_LE (peakOf (echo), 480 + 480 / 64 + 1);
    EXPECT_NEAR (std::accumulate (echo.begin(), echo.end(), 0.0f), 1.0f, 1e-3f);
}

TEST (Processor, MidiActsAtTheBlocksFirstSampleAndTheBufferComesBackAsItWas)
{
    Bench bench;
    bench.connect (sourceInputL, destOutput1);
    bench.processor.setModConnection (modSourceWheel, modDestPan1, true);
    bench.set (Pan1Mod, 1.0f);
    bench.processor.midiActivity = false;
    bench.midi.addEvent (juce::MidiMessage::controllerEvent (5, 1, 127), 500);
    bench.midi.addEvent (juce::MidiMessage::pitchWheel (1, 100), 501);
    const juce::MidiBuffer before = bench.midi;

    auto samples = std::vector<float> (512, 0.25f);
    auto other = samples;
    float* channels[] = { samples.data(), other.data() };
    juce::AudioBuffer<float> buffer (channels, 2, 512);
    bench.processor.processBlock (buffer, bench.midi);
    EXPECT_NEAR (samples[0], 0.0f, 1e-6f);
    EXPECT_NEAR (other[0], 0.25f, 1e-5f);
    EXPECT_TRUE (bench.processor.midiActivity.exchange (false));
    EXPECT_TRUE (before.data == bench.midi.data);

    bench.midi.clear();
    bench.midi.addEvent (juce::MidiMessage::controllerEvent (1, 7, 1), 0);
    juce::AudioBuffer<float> nothing (channels, 2, 0);
    bench.processor.processBlock (nothing, bench.midi);
    EXPECT_FALSE (bench.processor.midiActivity);
    bench.midi.addEvent (juce::MidiMessage::noteOn (1, 60, 1.0f), 0);
    bench.processor.processBlock (nothing, bench.midi);
    EXPECT_TRUE (bench.processor.midiActivity)
        << "a block without samples takes its MIDI all the same";
}

TEST (Processor, AStaticPatchSoundsTheSameAtEveryBlockLengthThatKeepsTheTicksWhole)
{
    const auto rendered = [] (int blockSize, bool withLfo)
    {
        setAudioSamplingRate (48000.0);  // engines are built at the rate of the moment
        Bench bench;

        for (const auto& [source, destination] :
             { std::pair { sourceInputL, destDelay1 }, std::pair { sourceDelay1, destFeedback1 },
               std::pair { sourceDelay1, destFilter1 },
               std::pair { sourceFilter1, destSaturation1 },
               std::pair { sourceSaturation1, destOutput1 } })
            bench.connect (source, destination);

        bench.set (Delay1Time, 20.0f);
        bench.set (Delay1Feedback, 0.8f);
        bench.set (Saturation1, 0.6f);
        bench.set (Filter1Reso, 7.0f);
        bench.set (EnvSensitivity, 0.3f);
        bench.set (Filter1Mod, 0.8f);
        bench.processor.setModConnection (withLfo ? modSourceLfo1 : modSourceEnvelope,
                                          modDestFilter1, true);
        return bench.render (noiseOf (8192, 1), blockSize);
    };

    for (const int blockSize : { 4, 12, 64, 100, 1000, 8192 })
        EXPECT_EQ (rendered (blockSize, false), rendered (512, false)) << blockSize;

    for (const int blockSize :
         { 4, 64, 8192 })  // an LFO's increment is exact for powers of two only
        EXPECT_EQ (rendered (blockSize, true), rendered (512, true)) << blockSize;
}

TEST (Processor, AcceptsStereoInWithStereoOrMonoOutAndNothingElse)
{
    VelkorAudioProcessor processor;
    const auto accepts =
        [&processor] (const juce::AudioChannelSet& in, const juce::AudioChannelSet& out)
    {
        juce::AudioProcessor::BusesLayout layout;
        layout.inputBuses.add (in);
        layout.outputBuses.add (out);
        return processor.checkBusesLayoutSupported (layout);
    };

    const auto mono = juce::AudioChannelSet::mono();
    const auto stereo = juce::AudioChannelSet::stereo();
    EXPECT_TRUE (accepts (stereo, stereo));
    EXPECT_TRUE (accepts (stereo, mono));
    EXPECT_FALSE (accepts (mono, mono));
    EXPECT_FALSE (accepts (mono, stereo));
    EXPECT_FALSE (accepts (juce::AudioChannelSet::create5point1(), stereo));
    EXPECT_FALSE (accepts (stereo, juce::AudioChannelSet::create5point1()));
    EXPECT_EQ (processor.getTailLengthSeconds(), 0.0);
    EXPECT_EQ (processor.getNumPrograms(), 1);
}

TEST (Processor, OnOneChannelTheRightSideStays)
{
    Bench bench;
    bench.connect (sourceInputL, destOutput1);
    bench.connect (sourceInputR, destOutput2);
    bench.set (Output2Level, 0.5f);
    std::vector<float> samples (64, 0.5f);
    float* channels[] = { samples.data() };
    juce::AudioBuffer<float> buffer (channels, 1, 64);
    bench.processor.processBlock (buffer, bench.midi);
    EXPECT_NEAR (samples[63], 0.25f, 1e-6f);
}
