// SPDX-License-Identifier: AGPL-3.0-or-later
#include "session_player.h"

#include <gtest/gtest.h>
#include <memory>
#include <tuple>

// The built bundle in the framework's own host.

namespace
{

using PluginPtr = std::unique_ptr<juce::AudioPluginInstance>;

std::vector<juce::PluginDescription> findPlugins()
{
    juce::VST3PluginFormat format;
    juce::OwnedArray<juce::PluginDescription> found;
    format.findAllTypesForFile (found, VELKOR_VST3_BUNDLE);
    std::vector<juce::PluginDescription> result;

    for (const auto* description : found)
        result.push_back (*description);

    return result;
}

/** An instance, not prepared; null with a test failure if the bundle can't be loaded. */
PluginPtr makePlugin()
{
    juce::AudioPluginFormatManager formats;
    formats.addFormat (new juce::VST3PluginFormat());
    const auto found = findPlugins();

    if (found.size() != 1)
    {
        ADD_FAILURE() << found.size() << " plug-ins in " VELKOR_VST3_BUNDLE;
        return nullptr;
    }

    juce::String error;
    auto plugin = formats.createPluginInstance (found.front(), 44100.0, 512, error);

    if (plugin == nullptr)
        ADD_FAILURE() << error;

    return plugin;
}

/** Brings the bundle's process-wide rate to where DirectPlayer brings ours. */
void workAt44100()
{
    if (const auto plugin = makePlugin())
        plugin->prepareToPlay (44100.0, 512);
}

/** A chunk of the processor in the wrapping that this host keeps a plug-in's state in. */
juce::MemoryBlock wrapped (const juce::MemoryBlock& chunk)
{
    juce::XmlElement state ("VST3PluginState");
    state.createNewChildElement ("IComponent")->addTextElement (chunk.toBase64Encoding());
    juce::MemoryBlock result;
    juce::AudioProcessor::copyXmlToBinary (state, result);
    return result;
}

/** The plug-in's own chunk out of that wrapping, without what the framework's client adds behind it. */
juce::MemoryBlock unwrapped (const juce::MemoryBlock& state, std::size_t size)
{
    const auto xml = juce::AudioProcessor::getXmlFromBinary (state.getData(),
                                                             static_cast<int> (state.getSize()));
    juce::MemoryBlock result;

    if (xml != nullptr)
        result.fromBase64Encoding (xml->getChildElementAllSubText ("IComponent", {}));

    EXPECT_GE (result.getSize(), size);
    result.setSize (size);
    return result;
}

class Vst3Player : public SessionPlayer
{
public:
    Vst3Player()
    {
        workAt44100();
        plugin = makePlugin();

        if (plugin != nullptr)
            plugin->setPlayHead (&playHead);
    }

    void load (const juce::MemoryBlock& chunk) override { setState (*plugin, wrapped (chunk)); }

    void set (NumericalParamID id, float value) override
    {
        plugin->getParameters()[id]->setValueNotifyingHost (value);
    }

    void process (juce::AudioBuffer<float>& samples, const SessionBlock& block) override
    {
        playHead.block = &block;
        juce::MidiBuffer midi = block.midi;
        plugin->processBlock (samples, midi);
        EXPECT_TRUE (midi.isEmpty()) << "the plug-in sent MIDI";
    }

    PluginPtr plugin;
    SessionPlayHead playHead;
};

class Vst3Host : public testing::Test
{
protected:
    const juce::ScopedJuceInitialiser_GUI framework;
};

class Vst3Sound : public Vst3Host, public testing::WithParamInterface<std::tuple<double, int>>
{
};

}  // namespace

TEST_F (Vst3Host, IsFoundAsADelayEffectOfItsMaker)
{
    const auto found = findPlugins();
    ASSERT_EQ (found.size(), 1u);
    const auto plugin = makePlugin();
    ASSERT_NE (plugin, nullptr);

    // From the file beside the binary, which hosts read without loading it, and from the binary.
    for (const auto& description : { found.front(), plugin->getPluginDescription() })
    {
        EXPECT_EQ (description.name, "Velkor");
        EXPECT_EQ (description.manufacturerName, "Zubrow Labs");
        EXPECT_EQ (description.category, "Fx|Delay");
        EXPECT_EQ (description.version, VELKOR_VERSION);
        EXPECT_FALSE (description.isInstrument);
        EXPECT_EQ (description.uniqueId, found.front().uniqueId);
    }

    EXPECT_TRUE (plugin->acceptsMidi());
    EXPECT_FALSE (plugin->producesMidi());
    EXPECT_TRUE (plugin->hasEditor());
    EXPECT_EQ (plugin->getTailLengthSeconds(), 0.0);
}

TEST_F (Vst3Host, TakesStereoAndGivesStereoOrMono)
{
    using Set = juce::AudioChannelSet;
    const auto plugin = makePlugin();
    ASSERT_NE (plugin, nullptr);
    ASSERT_EQ (plugin->getBusCount (true), 1);
    ASSERT_EQ (plugin->getBusCount (false), 1);
    EXPECT_EQ (plugin->getBus (true, 0)->getName(), "Input");
    EXPECT_EQ (plugin->getBus (false, 0)->getName(), "Output");
    EXPECT_EQ (plugin->getChannelLayoutOfBus (true, 0), Set::stereo());
    EXPECT_EQ (plugin->getChannelLayoutOfBus (false, 0), Set::stereo());

    const auto accepts = [&] (const Set& in, const Set& out)
    {
        juce::AudioProcessor::BusesLayout layout;
        layout.inputBuses.add (in);
        layout.outputBuses.add (out);
        return plugin->setBusesLayout (layout);
    };

    EXPECT_TRUE (accepts (Set::stereo(), Set::mono()));
    EXPECT_TRUE (accepts (Set::stereo(), Set::stereo()));
    EXPECT_FALSE (accepts (Set::mono(), Set::stereo()));
    EXPECT_FALSE (accepts (Set::mono(), Set::mono()));
    EXPECT_FALSE (accepts (Set::stereo(), Set::create5point1()));
}

TEST_F (Vst3Host, ShowsTheParametersInOrderBeforeTheFrameworksOwn)
{
    const auto plugin = makePlugin();
    ASSERT_NE (plugin, nullptr);
    const auto& parameters = plugin->getParameters();

    // One bypass, and what stands for MIDI: 16 channels of 128 controllers, pressure and bend.
    ASSERT_EQ (parameters.size(), kNumParameters + 1 + 16 * 130);
    EXPECT_EQ (parameters[kNumParameters]->getName (100), "Bypass");
    EXPECT_EQ (parameters[kNumParameters + 1]->getName (100), "MIDI CC 0|0");
    EXPECT_EQ (parameters.getLast()->getName (100), "MIDI CC 15|129");

    const DirectPlayer direct;

    for (int number = 0; number < kNumParameters; ++number)
    {
        const auto& want = direct.parameter (static_cast<NumericalParamID> (number));
        const auto& got = *parameters[number];
        SCOPED_TRACE (paramMapper[number].name);
        EXPECT_EQ (got.getName (100), paramMapper[number].name);
        EXPECT_EQ (got.getLabel(), want.getLabel());
        EXPECT_EQ (got.getNumSteps(), want.getNumSteps());
        EXPECT_EQ (got.getValue(), want.getValue());
        EXPECT_EQ (got.getDefaultValue(), want.getDefaultValue());
        EXPECT_TRUE (got.isAutomatable());

        for (const float value : { 0.0f, 0.3f, 0.75f, 1.0f })
            EXPECT_EQ (got.getText (value, 100), want.getText (value, 100));
    }
}

TEST_P (Vst3Sound, IsTheProcessorsToTheBit)
{
    const auto [rate, seed] = GetParam();
    const auto session = makeSession (rate, seed);

    DirectPlayer direct;
    direct.processor.prepareToPlay (rate, session.maxBlock);
    const auto want = direct.play (session);
    expectWorthComparing (want, session);

    Vst3Player hosted;
    ASSERT_NE (hosted.plugin, nullptr);
    hosted.plugin->prepareToPlay (rate, session.maxBlock);
    expectSameSamples (hosted.play (session), want);

    // A host that changes its rate under a used instance.
    const auto next = makeSession (96000.0, seed + 1);
    direct.processor.prepareToPlay (96000.0, next.maxBlock);
    hosted.plugin->releaseResources();
    hosted.plugin->prepareToPlay (96000.0, next.maxBlock);
    expectSameSamples (hosted.play (next), direct.play (next));
}

INSTANTIATE_TEST_SUITE_P (Rates, Vst3Sound,
                          testing::Combine (testing::Values (44100.0, 48000.0),
                                            testing::Values (1, 2)));

TEST_F (Vst3Host, CarriesAStateFromOneInstanceToAnother)
{
    const auto state = makeState (3);
    const auto session = withoutEvents (makeSession (48000.0, 4));

    DirectPlayer untouched;
    untouched.processor.prepareToPlay (48000.0, session.maxBlock);
    const auto plain = untouched.play (session);

    DirectPlayer firstDirect;
    setState (firstDirect.processor, state);
    DirectPlayer direct;
    setState (direct.processor, getState (firstDirect.processor));
    direct.processor.prepareToPlay (48000.0, session.maxBlock);
    const auto want = direct.play (session);
    expectWorthComparing (want, session);
    EXPECT_TRUE (differ (want, plain)) << "the state says nothing";

    Vst3Player first;
    ASSERT_NE (first.plugin, nullptr);
    first.load (state);

    Vst3Player second;
    ASSERT_NE (second.plugin, nullptr);
    setState (*second.plugin, getState (*first.plugin));

    for (int number = 0; number < kNumParameters; ++number)
        EXPECT_EQ (second.plugin->getParameters()[number]->getValue(),
                   direct.parameter (static_cast<NumericalParamID> (number)).getValue())
            << paramMapper[number].name;

    second.plugin->prepareToPlay (48000.0, session.maxBlock);
    expectSameSamples (second.play (session), want);

    const auto chunk = getState (direct.processor);
    EXPECT_EQ (unwrapped (getState (*second.plugin), chunk.getSize()), chunk);
}

TEST_F (Vst3Host, PassesItsInputWhileTheHostBypassesIt)
{
    const auto session = withoutEvents (makeSession (48000.0, 12));
    Vst3Player hosted;
    ASSERT_NE (hosted.plugin, nullptr);
    hosted.plugin->prepareToPlay (48000.0, session.maxBlock);
    auto* const bypass = hosted.plugin->getBypassParameter();
    ASSERT_NE (bypass, nullptr);
    bypass->setValueNotifyingHost (1.0f);
    expectSameSamples (hosted.play (session), session.input);

    bypass->setValueNotifyingHost (0.0f);
    expectWorthComparing (hosted.play (session), session);
}
