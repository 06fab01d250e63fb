// SPDX-License-Identifier: AGPL-3.0-or-later
#include "acceptance_session.h"
#include "parameters/gain_parameter.h"
#include "support/duel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <thread>
#include <utility>
#include <vector>

// What hosts are free to do with parameters and states, on the processor itself, so that the sanitizers see it too.

namespace
{

std::vector<int> shuffledNumbers (int count, Noise& noise)
{
    std::vector<int> numbers (static_cast<std::size_t> (count));
    std::iota (numbers.begin(), numbers.end(), 0);

    for (int i = count - 1; i > 0; --i)
        std::swap (numbers[static_cast<std::size_t> (i)],
                   numbers[static_cast<std::size_t> (noise.below (i + 1))]);

    return numbers;
}

using Values = std::array<float, kNumParameters>;

Values randomValues (std::uint32_t seed)
{
    Noise noise (seed);
    Values values;
    std::generate (values.begin(), values.end(), [&noise] { return noise.unit(); });
    values[Kill] = values[Delay1Loop] = values[Delay2Loop] = 0.0f;
    values[InputLevel] = values[WetLevel] = 0.8f;
    return values;
}

/** Several threads set every parameter in orders of their own; the last value of each is that of one thread. */
void setFromManyThreads (DirectPlayer& player, const Values& values, int rounds)
{
    constexpr int kThreads = 4;
    std::vector<std::thread> threads;

    // No thread sets another's parameters once that one has come to its last values.
    std::atomic<int> roundsDone { 0 };

    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back (
            [&player, &values, &roundsDone, rounds, t]
            {
                Noise noise (100 + static_cast<std::uint32_t> (t));

                for (int round = 0; round < rounds; ++round)
                    for (const int number : shuffledNumbers (kNumParameters, noise))
                        player.set (static_cast<NumericalParamID> (number), noise.unit());

                for (++roundsDone; roundsDone < kThreads;)
                    std::this_thread::yield();

                for (const int number : shuffledNumbers (kNumParameters, noise))
                    if (number % kThreads == t)
                        player.set (static_cast<NumericalParamID> (number),
                                    values[static_cast<std::size_t> (number)]);
            });

    for (auto& thread : threads)
        thread.join();
}

/** What a state is made of, and playing must leave alone. */
struct Sound
{
    juce::String name;
    Values values {};
    std::vector<bool> cables;  ///< of both matrices

    bool operator== (const Sound&) const = default;
};

Sound soundOf (const DirectPlayer& player)
{
    Sound sound;
    sound.name = player.processor.getPresetName();

    for (std::size_t i = 0; i < kNumParameters; ++i)
        sound.values[i] = player.processor.paramValues[i]->load();

    for (int source = 0; source < kNumSignalSources; ++source)
        for (int dest = 0; dest < kNumSignalDests; ++dest)
            sound.cables.push_back (player.processor.getSignalConnection (source, dest));

    for (int source = 0; source < kNumModSources; ++source)
        for (int dest = 0; dest < kNumModDests; ++dest)
            sound.cables.push_back (player.processor.getModConnection (source, dest));

    return sound;
}

/** Counts what a host would hear of the parameters. */
class ChangeCount : public juce::AudioProcessorListener
{
public:
    explicit ChangeCount (juce::AudioProcessor& p) : processor (p) { processor.addListener (this); }
    ~ChangeCount() override { processor.removeListener (this); }

    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override
    {
        ++parameters;
    }
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails&) override { ++others; }

    int parameters = 0, others = 0;

private:
    juce::AudioProcessor& processor;
};

}  // namespace

TEST (Acceptance, ParametersSetByManyThreadsInAnyOrderSoundAsIfSetByOneInTheirOrder)
{
    const auto session = withoutEvents (makeSession (48000.0, 20));
    const auto values = randomValues (21);
    const auto state = makeState (22);

    DirectPlayer inOrder;
    inOrder.load (state);

    for (int number = 0; number < kNumParameters; ++number)
        inOrder.set (static_cast<NumericalParamID> (number),
                     values[static_cast<std::size_t> (number)]);

    inOrder.processor.prepareToPlay (48000.0, session.maxBlock);
    const auto want = inOrder.play (session);
    expectWorthComparing (want, session);

    DirectPlayer byMany;
    byMany.load (state);
    setFromManyThreads (byMany, values, 5);
    byMany.processor.prepareToPlay (48000.0, session.maxBlock);
    expectSameSamples (byMany.play (session), want);
}

TEST (Acceptance, ParametersSetByManyThreadsBesideAudioKeepTheLastValue)
{
    const auto values = randomValues (23);
    const auto session = withoutEvents (makeSession (48000.0, 24));
    const auto player = preparedPlayer (session);
    player->load (makeState (25));
    std::atomic<bool> stop { false };
    std::atomic<int> plays { 0 };
    bool allFinite = true;

    std::thread audio (
        [&]
        {
            while (! stop)
            {
                const auto output = player->play (shortened (session));
                allFinite =
                    allFinite && std::isfinite (output.getRMSLevel (0, 0, output.getNumSamples()));
                ++plays;
            }
        });

    while (plays < 3)
        setFromManyThreads (*player, values, 50);

    stop = true;
    audio.join();
    EXPECT_TRUE (allFinite);

    for (int number = 0; number < kNumParameters; ++number)
    {
        const auto& parameter = player->parameter (static_cast<NumericalParamID> (number));
        const float want = parameter.convertFrom0to1 (values[static_cast<std::size_t> (number)]);
        EXPECT_FLOAT_EQ (player->processor.paramValues[static_cast<std::size_t> (number)]->load(),
                         want)
            << paramMapper[number].name;
    }
}

TEST (Acceptance, EachParameterTakesANumberTypedInItsOwnUnit)
{
    const DirectPlayer player;

    for (int number = 0; number < kNumParameters; ++number)
    {
        const auto& parameter = player.parameter (static_cast<NumericalParamID> (number));
        const bool isGain = dynamic_cast<const AudioParameterGain*> (&parameter) != nullptr;
        SCOPED_TRACE (paramMapper[number].name);

        if (const auto* choice = dynamic_cast<const juce::AudioParameterChoice*> (&parameter))
        {
            for (int i = 0; i < choice->choices.size(); ++i)
                EXPECT_EQ (
                    parameter.convertFrom0to1 (parameter.getValueForText (choice->choices[i])),
                    static_cast<float> (i));

            continue;
        }

        // A level is typed as a linear gain, with " dB" behind it all the same.
        const auto unit = isGain ? juce::String (" dB") : " " + parameter.getLabel();
        const bool isSwitch = parameter.getNumSteps() == 2;

        for (int i = 0; i <= 40; ++i)
        {
            const float value = isSwitch
                                    ? static_cast<float> (i % 2)
                                    : parameter.convertFrom0to1 (static_cast<float> (i) / 40.0f);
            const auto text = juce::String (static_cast<double> (value), 7) + unit;
            const float typed = parameter.convertFrom0to1 (parameter.getValueForText (text));
            EXPECT_NEAR (typed, value, 1e-5f * std::max (1.0f, std::abs (value))) << text;
        }
    }
}

TEST (Acceptance, NoTypedTextLeavesTheTravelOfAParameter)
{
    const DirectPlayer player;
    const juce::String texts[] = { "",
                                   " ",
                                   "-",
                                   "+",
                                   ".",
                                   "e9",
                                   "1e99",
                                   "-1e99",
                                   "dB",
                                   "-INF",
                                   "-INF dB",
                                   "inf",
                                   "-inf   dB",
                                   "0x7f",
                                   "x",
                                   "1/4",
                                   "L 10",
                                   "Center",
                                   juce::String::repeatedString ("9", 5000),
                                   juce::String::charToString (0x221e) };

    for (int number = 0; number < kNumParameters; ++number)
        for (const auto& text : texts)
        {
            const float position =
                player.parameter (static_cast<NumericalParamID> (number)).getValueForText (text);
            EXPECT_TRUE (position >= 0.0f && position <= 1.0f)
                << paramMapper[number].name << ", \"" << text.substring (0, 20)
                << "\": " << position;
        }
}

TEST (Acceptance, StatesRestoredInRandomOrderComeBackWholeWhateverWasPlayedBetween)
{
    std::vector<juce::MemoryBlock> states;
    std::vector<Sound> sounds;
    Noise noise (37);

    for (int seed = 30; seed < 36; ++seed)
    {
        DirectPlayer saved, loaded;
        saved.load (makeState (seed));

        for (int i = 0; i < 20; ++i)
        {
            saved.processor.setSignalConnection (noise.below (kNumSignalSources),
                                                 noise.below (kNumSignalDests),
                                                 noise.chance (0.5f));
            saved.processor.setModConnection (noise.below (kNumModSources),
                                              noise.below (kNumModDests), noise.chance (0.5f));
        }

        states.push_back (getState (saved.processor));
        loaded.load (states.back());
        sounds.push_back (soundOf (loaded));
    }

    const auto session = shortened (makeSession (48000.0, 36));
    auto edits = session;
    edits.state.reset();
    DirectPlayer player;

    for (int i = 0; i < 60; ++i)
    {
        if (noise.chance (0.3f))
            player.processor.prepareToPlay (noise.chance (0.5f) ? 44100.0 : 96000.0,
                                            session.maxBlock);

        if (noise.chance (0.7f))
            player.play (edits);

        const auto pick = static_cast<std::size_t> (noise.below (6));
        setState (player.processor, states[pick]);
        const auto got = soundOf (player);
        EXPECT_EQ (got.cables, sounds[pick].cables) << i;
        EXPECT_EQ (got.name, sounds[pick].name);

        for (std::size_t number = 0; number < kNumParameters; ++number)
        {
            // The store takes a value through its range, and the logarithmic and cubic ones round.
            const float want = sounds[pick].values[number];
            ASSERT_NEAR (got.values[number], want, std::abs (want) * 2e-6f)
                << "restore " << i << ", " << paramMapper[number].name;
        }

        if (noise.chance (0.5f))
        {
            player.play (withoutEvents (session));
            EXPECT_EQ (soundOf (player), got) << "playing has changed it";
        }
    }
}

TEST (Acceptance, PlayingMovesNoParameterAndTellsTheHostNothing)
{
    auto session = makeSession (48000.0, 100);
    const auto player = preparedPlayer (session);
    player->load (std::exchange (session.state, {}));
    std::size_t sets = 0;

    for (const auto& block : session.blocks)
        sets += block.changes.size();

    ASSERT_GT (sets, 100u);
    Values values;

    for (int number = 0; number < kNumParameters; ++number)
        values[static_cast<std::size_t> (number)] =
            player->parameter (static_cast<NumericalParamID> (number)).getValue();

    const ChangeCount heard (player->processor);

    for (auto& block : session.blocks)
        block.changes.clear();

    player->play (session);
    EXPECT_EQ (heard.parameters, 0);
    EXPECT_EQ (heard.others, 0);

    for (int number = 0; number < kNumParameters; ++number)
        EXPECT_EQ (player->parameter (static_cast<NumericalParamID> (number)).getValue(),
                   values[static_cast<std::size_t> (number)])
            << paramMapper[number].name;
}
