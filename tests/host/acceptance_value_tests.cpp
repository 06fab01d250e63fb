// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/gain_parameter.h"
#include "session.h"
#include "support/duel.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

// What an instance holds between what hosts do with it: values, states, and nothing of how it was rendered.

namespace
{

using Values = std::vector<float>;

Values valuesOf (const DirectPlayer& player)
{
    Values values;

    for (const auto* const value : player.processor.paramValues)
        values.push_back (value->load());

    return values;
}

std::vector<bool> cablesOf (const DirectPlayer& player)
{
    std::vector<bool> cables;

    for (int source = 0; source < kNumSignalSources; ++source)
        for (int dest = 0; dest < kNumSignalDests; ++dest)
        {
            cables.push_back (player.processor.getSignalConnection (source, dest));
            cables.push_back (player.processor.getModConnection (source, dest));
        }

    return cables;
}

/** Another wiring, drawn at random. */
void rewire (DirectPlayer& player, Noise& noise)
{
    for (int i = 0; i < 20; ++i)
    {
        player.processor.setSignalConnection (noise.below (kNumSignalSources),
                                              noise.below (kNumSignalDests), noise.chance (0.5f));
        player.processor.setModConnection (noise.below (kNumModSources), noise.below (kNumModDests),
                                           noise.chance (0.5f));
    }
}

}  // namespace

TEST (Acceptance, EachParameterTakesANumberTypedInItsOwnUnit)
{
    const DirectPlayer player;

    for (int number = 0; number < kNumParameters; ++number)
    {
        const auto& parameter = player.parameter (static_cast<NumericalParamID> (number));
        SCOPED_TRACE (paramMapper[number].name);

        // A choice is typed by its name, a level as a linear gain, with " dB" behind it all the same.
        if (dynamic_cast<const juce::AudioParameterChoice*> (&parameter) != nullptr)
        {
            for (const auto& choice : parameter.getAllValueStrings())
                EXPECT_EQ (parameter.getText (parameter.getValueForText (choice), 99), choice);

            continue;
        }

        const bool isGain = dynamic_cast<const AudioParameterGain*> (&parameter) != nullptr;
        const auto unit = isGain ? juce::String (" dB") : " " + parameter.getLabel();
        const int steps = parameter.getNumSteps() == 2 ? 1 : 40;

        for (int i = 0; i <= steps; ++i)
        {
            const float value =
                parameter.convertFrom0to1 (static_cast<float> (i) / static_cast<float> (steps));
            const auto text = juce::String (static_cast<double> (value), 7) + unit;
            EXPECT_NEAR (parameter.convertFrom0to1 (parameter.getValueForText (text)), value,
                         1e-5f * std::max (1.0f, std::abs (value)))
                << text;
        }
    }
}

TEST (Acceptance, TextThatIsNoNumberGivesTheHostAValueInRange)
{
    const DirectPlayer player;

    for (int number = 0; number < kNumParameters; ++number)
        for (const char* text : { "nan", "nan dB", "-NaN dB", " nan ms", "inf", "-inf", "inf dB",
                                  "1e999", "-1e999 dB", "", "dB", "rubbish" })
        {
            SCOPED_TRACE (juce::String (paramMapper[number].name) + ", " + text);
            auto& parameter = player.parameter (static_cast<NumericalParamID> (number));
            const float value = parameter.getValueForText (text);
            ASSERT_TRUE (value >= 0.0f && value <= 1.0f) << value;

            if (juce::String (text).containsIgnoreCase ("nan"))
            {
                EXPECT_EQ (value, parameter.getValueForText ("rubbish"));
            }

            parameter.setValueNotifyingHost (value);
            const float held = parameter.getValue();
            EXPECT_TRUE (held >= 0.0f && held <= 1.0f) << held;
        }
}

TEST (Acceptance, StatesRestoredInRandomOrderComeBackWholeWhateverWasPlayedBetween)
{
    struct Saved
    {
        juce::MemoryBlock state;
        Values values;
        std::vector<bool> cables;
    };

    Noise noise (37);
    std::vector<Saved> saved;

    for (int seed = 30; seed < 34; ++seed)
    {
        DirectPlayer player;
        player.load (makeState (seed));
        rewire (player, noise);
        saved.push_back ({ getState (player.processor), valuesOf (player), cablesOf (player) });
    }

    auto session = makeSession (48000.0, 36);
    session.state.reset();
    DirectPlayer player (48000.0);

    for (int i = 0; i < 24; ++i)
    {
        if (noise.chance (0.3f))
            player.processor.prepareToPlay (noise.chance (0.5f) ? 44100.0 : 96000.0,
                                            Session::kMaxBlock);

        if (noise.chance (0.5f))
            player.play (session);

        const auto& pick = saved[static_cast<std::size_t> (noise.below (4))];
        player.load (pick.state);
        EXPECT_EQ (cablesOf (player), pick.cables) << i;
        const auto values = valuesOf (player);

        // A value goes through its text and its range, and the logarithmic and cubic ones round.
        for (std::size_t number = 0; number < values.size(); ++number)
            ASSERT_NEAR (values[number], pick.values[number],
                         1e-6f + std::abs (pick.values[number]) * 4e-6f)
                << "restore " << i << ", " << paramMapper[number].name;

        player.play (withoutEvents (session));
        EXPECT_EQ (valuesOf (player), values) << "playing has changed it";
    }
}

TEST (Acceptance, OfflineSoundsAsInRealTimeAndNeitherTellsTheHostOfChanges)
{
    class Listener : public juce::AudioProcessorListener
    {
    public:
        void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override { ++told; }
        void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override
        {
            ++told;
        }

        int told = 0;
    };

    auto session = makeSession (48000.0, 110);
    const auto state = std::exchange (session.state, {});

    for (auto& block : session.blocks)
        block.changes.clear();

    std::vector<juce::AudioBuffer<float>> outputs;

    for (const bool isOffline : { false, true })
    {
        DirectPlayer player;
        player.load (state);
        player.processor.setNonRealtime (isOffline);
        player.processor.prepareToPlay (48000.0, Session::kMaxBlock);
        Listener listener;
        player.processor.addListener (&listener);
        outputs.push_back (player.play (session));
        EXPECT_EQ (listener.told, 0);
        player.processor.removeListener (&listener);
    }

    expectWorthComparing (outputs.front(), session);
    expectSameSamples (outputs.back(), outputs.front());
}
