// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/state_carriers.h"
#include "state_fixture.h"
#include "support/duel.h"

#include <cmath>

class FactoryState : public StateTest
{
protected:
    static constexpr int kSamples = 24000;  ///< the slowest preset takes its time

    /** Half a second of the same noise, with a note and the wheel, through an instance that has not
        played yet. */
    static juce::AudioBuffer<float> renderOf (VelkorAudioProcessor& processor)
    {
        juce::AudioBuffer<float> buffer (2, kSamples);
        juce::MidiBuffer midi;
        Noise noise (3);

        for (int channel = 0; channel < 2; ++channel)
            for (int n = 0; n < kSamples; ++n)
                buffer.setSample (channel, n, 0.3f * noise());

        midi.addEvent (juce::MidiMessage::noteOn (1, 67, 1.0f), 0);
        midi.addEvent (juce::MidiMessage::controllerEvent (1, 1, 80), 0);
        processor.prepareToPlay (48000.0, kSamples);
        processor.processBlock (buffer, midi);
        return buffer;
    }

    static float largestDifference (const juce::AudioBuffer<float>& a,
                                    const juce::AudioBuffer<float>& b)
    {
        float largest = 0.0f;

        for (int channel = 0; channel < 2; ++channel)
            for (int n = 0; n < kSamples; ++n)
                largest = std::max (largest,
                                    std::abs (a.getSample (channel, n) - b.getSample (channel, n)));

        return largest;
    }
};

TEST_F (FactoryState, OfEveryPresetSoundsAndReadsTheSameInAnotherInstance)
{
    std::vector<juce::File> files;

    for (const auto& file : (VelkorAudioProcessor(), presets ("Factory"))
                                .findChildFiles (juce::File::findFiles, false, "*.zbpreset"))
        files.push_back (file);

    ASSERT_EQ (files.size(), 64u);
    std::uint32_t seed = 100;

    for (const auto& file : files)
    {
        SCOPED_TRACE (file.getFileName());
        VelkorAudioProcessor loaded, restored;
        setStateFromFile (loaded, file);
        EXPECT_EQ (loaded.presetName,
                   file.getFileNameWithoutExtension().fromFirstOccurrenceOf (" - ", false, false));
        EXPECT_FALSE (connectionList (loaded).empty());

        juce::MemoryBlock saved;
        loaded.getStateInformation (saved);
        scramble (restored, ++seed);
        ASSERT_NE (textOf (restored), textOf (loaded));
        restored.setStateInformation (saved.getData(), static_cast<int> (saved.getSize()));

        for (const auto& info : parameterInfo)
            EXPECT_EQ (valueOf (restored, info.name), valueOf (loaded, info.name)) << info.name;

        EXPECT_EQ (sorted (connectionList (restored)), sorted (connectionList (loaded)));
        EXPECT_EQ (sorted (routeList (restored)), sorted (routeList (loaded)));
        EXPECT_EQ (restored.presetName, loaded.presetName);
        EXPECT_EQ (textOf (restored), textOf (loaded));

        const auto wanted = renderOf (loaded);
        EXPECT_GT (wanted.getMagnitude (0, kSamples), 0.001f);
        EXPECT_EQ (largestDifference (renderOf (restored), wanted), 0.0f);
    }
}
