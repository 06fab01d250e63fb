// SPDX-License-Identifier: AGPL-3.0-or-later
#include "lv2_instance.h"
#include "session_player.h"

#include <gtest/gtest.h>
#include <memory>
#include <tuple>
#include <utility>

// The built bundle in a small host of our own, which reads it with lilv as most hosts of Linux do.

namespace
{

/** LV2 hosts keep parameters in their own units: a value from 0 to 1 goes through them and back. */
class DirectInUnits : public DirectPlayer
{
public:
    void set (NumericalParamID id, float value) override
    {
        auto& p = parameter (id);
        p.setValueNotifyingHost (p.convertTo0to1 (p.convertFrom0to1 (value)));
    }
};

/** Brings the bundle's process-wide rate to where DirectPlayer brings ours. */
const Lv2Bundle& afterWorkAt44100 (const Lv2Bundle& bundle)
{
    const Lv2Instance instance (bundle, 44100.0, 512);
    return bundle;
}

class Lv2Player : public SessionPlayer
{
public:
    Lv2Player (const Lv2Bundle& bundle, double sampleRate, int maxBlock)
        : parameters (bundle.getParameters()),
          instance (afterWorkAt44100 (bundle), sampleRate, maxBlock)
    {
    }

    void load (const juce::MemoryBlock& chunk) override
    {
        EXPECT_TRUE (instance.restoreProperty ("urn:com.zubrow.Velkor:StateString",
                                               chunk.toBase64Encoding().toStdString()));
    }

    void set (NumericalParamID id, float value) override
    {
        instance.sendParameter (parameters.at (paramMapper[id].name).uri,
                                units.parameter (id).convertFrom0to1 (value));
    }

    void process (juce::AudioBuffer<float>& samples, const SessionBlock& block) override
    {
        if (! tellsChangesOnly || isNews (block))
            tellPosition (block);

        for (const auto event : block.midi)
            instance.sendMidi (event.samplePosition,
                               { event.data, static_cast<std::size_t> (event.numBytes) });

        // In place, as the standard allows: a host may connect both sides to the same memory.
        auto* const left = samples.getWritePointer (0);
        auto* const right = samples.getWritePointer (1);
        instance.run (left, right, left, right, static_cast<std::uint32_t> (block.numSamples));

        EXPECT_EQ (instance.getNumOtherEvents(), 0) << "the plug-in sent something";
    }

    std::map<std::string, Lv2Parameter> parameters;
    DirectPlayer units;  ///< for the ranges alone
    Lv2Instance instance;
    bool tellsChangesOnly = false;

private:
    void tellPosition (const SessionBlock& block)
    {
        Lv2Position position;
        position.frame = block.time;
        position.isRolling = block.isPlaying;
        position.beat = block.position;

        if (block.tempo)
            position.beatsPerMinute = static_cast<float> (*block.tempo);

        instance.sendPosition (position);
    }

    /** Whether the transport does something else than go on. */
    bool isNews (const SessionBlock& block)
    {
        const auto said =
            std::exchange (lastSaid, { block.tempo, block.position.has_value(), block.isPlaying });
        return said != lastSaid;
    }

    std::tuple<std::optional<double>, bool, bool> lastSaid { -1.0, false, false };
};

class Lv2Host : public testing::Test
{
protected:
    const juce::ScopedJuceInitialiser_GUI framework;
    const Lv2Bundle bundle { VELKOR_LV2_BUNDLE };
};

class Lv2Sound : public Lv2Host, public testing::WithParamInterface<std::tuple<double, int>>
{
};

}  // namespace

TEST_F (Lv2Host, FindsAStereoEffectThatAsksForNothingUnusual)
{
    using Ports = std::map<std::uint32_t, std::string>;
    EXPECT_EQ (bundle.getUri(), "urn:com.zubrow.Velkor");
    EXPECT_EQ (bundle.getName(), "Velkor");
    EXPECT_EQ (bundle.getAuthor(), "Zubrow Labs");
    EXPECT_EQ (bundle.getRequiredFeatures(),
               (std::vector<std::string> { "http://lv2plug.in/ns/ext/buf-size#boundedBlockLength",
                                           "http://lv2plug.in/ns/ext/options#options",
                                           "http://lv2plug.in/ns/ext/urid#map" }));
    EXPECT_EQ (bundle.getPorts ("AudioPort", "InputPort"),
               (Ports { { 0, "audio_in_1" }, { 1, "audio_in_2" } }));
    EXPECT_EQ (bundle.getPorts ("AudioPort", "OutputPort"),
               (Ports { { 2, "audio_out_1" }, { 3, "audio_out_2" } }));
    EXPECT_EQ (bundle.getPorts ("AtomPort", "InputPort"), (Ports { { 4, "in" } }));
    EXPECT_EQ (bundle.getPorts ("AtomPort", "OutputPort"), (Ports { { 5, "out" } }));
}

TEST_F (Lv2Host, ReadsEveryParameterFromTheTurtleAsTheStoreHasIt)
{
    const auto parameters = bundle.getParameters();
    EXPECT_EQ (parameters.size(), static_cast<std::size_t> (kNumParameters));
    const DirectPlayer direct;

    for (int number = 0; number < kNumParameters; ++number)
    {
        const std::string name = paramMapper[number].name;
        SCOPED_TRACE (name);
        ASSERT_TRUE (parameters.contains (name));
        const auto& got = parameters.at (name);
        const auto& want = direct.parameter (static_cast<NumericalParamID> (number));
        EXPECT_TRUE (got.writable);
        EXPECT_TRUE (got.readable);

        // The text in the file has fewer digits than a float.
        const auto& range = want.getNormalisableRange();
        EXPECT_NEAR (got.minimum, range.start, 1.0e-4f * std::abs (range.start));
        EXPECT_NEAR (got.maximum, range.end, 1.0e-4f * std::abs (range.end));
        const float defaultValue = want.convertFrom0to1 (want.getDefaultValue());
        EXPECT_NEAR (got.defaultValue, defaultValue, 1.0e-4f * std::abs (defaultValue));

        if (! want.isDiscrete())
            continue;

        EXPECT_EQ (got.scalePoints.size(), static_cast<std::size_t> (want.getNumSteps()));

        for (const auto& [value, label] : got.scalePoints)
            EXPECT_EQ (label, want.getText (want.convertTo0to1 (value), 100).toStdString());
    }
}

TEST_P (Lv2Sound, IsTheProcessorsToTheBit)
{
    const auto [rate, seed] = GetParam();
    const auto session = makeSession (rate, seed);

    DirectInUnits direct;
    direct.processor.prepareToPlay (rate, session.maxBlock);
    const auto want = direct.play (session);
    expectWorthComparing (want, session);

    Lv2Player hosted (bundle, rate, session.maxBlock);
    expectSameSamples (hosted.play (session), want);
    EXPECT_TRUE (hosted.instance.getSentParameters().empty()) << "an echo of the host's own values";
}

INSTANTIATE_TEST_SUITE_P (Rates, Lv2Sound,
                          testing::Combine (testing::Values (44100.0, 48000.0),
                                            testing::Values (5, 6)));

TEST_F (Lv2Host, GoesOnWithATransportThatIsToldOnlyWhenItChanges)
{
    auto session = makeSession (48000.0, 10);

    for (auto& block : session.blocks)  // without a tempo nobody can tell where the beat goes on
        if (! block.tempo)
            block.position.reset();

    DirectInUnits direct;
    direct.processor.prepareToPlay (48000.0, session.maxBlock);
    const auto want = direct.play (session);

    Lv2Player hosted (bundle, 48000.0, session.maxBlock);
    hosted.tellsChangesOnly = true;
    expectSameSamples (hosted.play (session), want);
}

TEST_F (Lv2Host, CarriesAStateFromOneInstanceToAnother)
{
    const auto state = makeState (7);
    const auto session = withoutEvents (makeSession (48000.0, 8));

    DirectPlayer untouched;
    untouched.processor.prepareToPlay (48000.0, session.maxBlock);
    const auto plain = untouched.play (session);

    // Hosts make an LV2 at its rate and restore its state after that.
    DirectPlayer firstDirect;
    setState (firstDirect.processor, state);
    DirectPlayer direct;
    direct.processor.prepareToPlay (48000.0, session.maxBlock);
    setState (direct.processor, getState (firstDirect.processor));
    const auto want = direct.play (session);
    expectWorthComparing (want, session);
    EXPECT_TRUE (differ (want, plain)) << "the state says nothing";

    Lv2Player first (bundle, 48000.0, session.maxBlock);
    first.load (state);

    Lv2Player second (bundle, 48000.0, session.maxBlock);
    ASSERT_TRUE (second.instance.restoreState (first.instance.saveState()));
    expectSameSamples (second.play (session), want);

    const auto chunk = getState (direct.processor).toBase64Encoding().toStdString();
    EXPECT_NE (second.instance.saveState().find ('"' + chunk + '"'), std::string::npos);
}

TEST_F (Lv2Host, IsToldOfEachParameterThatAStateHasChanged)
{
    const auto state = makeState (9);
    DirectPlayer direct;
    const DirectPlayer before;
    setState (direct.processor, state);

    Lv2Player hosted (bundle, 48000.0, 64);
    hosted.load (state);
    std::vector<float> silence (64, 0.0f);
    auto* const samples = silence.data();
    hosted.instance.run (samples, samples, samples, samples, 64);
    const auto sent = hosted.instance.getSentParameters();
    int changed = 0;

    for (int number = 0; number < kNumParameters; ++number)
    {
        const auto id = static_cast<NumericalParamID> (number);
        const auto& want = direct.parameter (id);

        if (want.getValue() == before.parameter (id).getValue())
            continue;

        const auto& uri = hosted.parameters.at (paramMapper[number].name).uri;
        ASSERT_TRUE (sent.contains (uri)) << uri;
        EXPECT_EQ (sent.at (uri), want.convertFrom0to1 (want.getValue())) << uri;
        ++changed;
    }

    EXPECT_GT (changed, 40);
}

TEST_F (Lv2Host, PassesItsInputWhileTheHostBypassesIt)
{
    const auto session = withoutEvents (makeSession (48000.0, 12));
    Lv2Player hosted (bundle, 48000.0, session.maxBlock);
    hosted.instance.setEnabled (false);
    expectSameSamples (hosted.play (session), session.input);

    hosted.instance.setEnabled (true);
    expectWorthComparing (hosted.play (session), session);
}
