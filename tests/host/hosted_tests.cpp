// SPDX-License-Identifier: AGPL-3.0-or-later
#include "session.h"

#ifdef VELKOR_LV2_BUNDLE
#include "lv2_instance.h"
#endif

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

// The built bundles: the VST3 in the framework's own host, the LV2 in a small one of ours.

namespace
{

/** Some hosts keep parameters in their own units: a value from 0 to 1 goes through them and back. */
class DirectInUnits : public DirectPlayer
{
public:
    using DirectPlayer::DirectPlayer;

    void set (NumericalParamID id, float value) override
    {
        DirectPlayer::set (id, inUnits (id, value));
    }

    float inUnits (NumericalParamID id, float value) const
    {
        return parameter (id).convertTo0to1 (parameter (id).convertFrom0to1 (value));
    }
};

/** A plug-in in a host that is ready to play. */
class HostedPlayer : public SessionPlayer
{
public:
    virtual void bypass (bool isBypassed) = 0;

    /** The state as the host's session file keeps it, and back. */
    virtual std::string save() = 0;
    virtual void restore (const std::string& state) = 0;

protected:
    DirectInUnits units;  ///< for the ranges alone
};

juce::PluginDescription findVst3()
{
    juce::VST3PluginFormat format;
    juce::OwnedArray<juce::PluginDescription> found;
    format.findAllTypesForFile (found, VELKOR_VST3_BUNDLE);

    if (found.size() != 1)
        throw std::runtime_error ("not one plug-in in " VELKOR_VST3_BUNDLE);

    return *found.getFirst();
}

std::unique_ptr<juce::AudioPluginInstance> makeVst3()
{
    juce::AudioPluginFormatManager formats;
    formats.addFormat (new juce::VST3PluginFormat());
    juce::String error;
    auto plugin = formats.createPluginInstance (findVst3(), 44100.0, 512, error);

    if (plugin == nullptr)
        throw std::runtime_error (error.toStdString());

    return plugin;
}

class Vst3Player : public HostedPlayer
{
public:
    Vst3Player (double sampleRate)
    {
        // Brings the bundle's process-wide rate to where DirectPlayer brings ours.
        makeVst3()->prepareToPlay (44100.0, 512);
        plugin = makeVst3();
        plugin->setPlayHead (this);
        plugin->prepareToPlay (sampleRate, Session::kMaxBlock);
    }

    void load (const juce::MemoryBlock& chunk) override
    {
        juce::XmlElement state ("VST3PluginState");
        state.createNewChildElement ("IComponent")->addTextElement (chunk.toBase64Encoding());
        juce::MemoryBlock wrapped;
        juce::AudioProcessor::copyXmlToBinary (state, wrapped);
        setState (*plugin, wrapped);
    }

    void set (NumericalParamID id, float value) override
    {
        plugin->getParameters()[id]->setValueNotifyingHost (units.inUnits (id, value));
    }

    void process (juce::AudioBuffer<float>& samples, const SessionBlock& block) override
    {
        juce::MidiBuffer midi = block.midi;
        plugin->processBlock (samples, midi);
        EXPECT_TRUE (midi.isEmpty()) << "the plug-in sent MIDI";
    }

    void bypass (bool isBypassed) override
    {
        plugin->getBypassParameter()->setValueNotifyingHost (isBypassed ? 1.0f : 0.0f);
    }

    std::string save() override { return getState (*plugin).toBase64Encoding().toStdString(); }

    void restore (const std::string& state) override
    {
        juce::MemoryBlock bytes;
        EXPECT_TRUE (bytes.fromBase64Encoding (state));
        setState (*plugin, bytes);
    }

private:
    std::unique_ptr<juce::AudioPluginInstance> plugin;
};

#ifdef VELKOR_LV2_BUNDLE
class Lv2Player : public HostedPlayer
{
public:
    Lv2Player (double sampleRate)
    {
        const Lv2Instance before (VELKOR_LV2_BUNDLE, 44100.0, 512);  // for the process-wide rate
        instance =
            std::make_unique<Lv2Instance> (VELKOR_LV2_BUNDLE, sampleRate, Session::kMaxBlock);
    }

    void load (const juce::MemoryBlock& chunk) override
    {
        restore ("<urn:session:state> a <http://lv2plug.in/ns/ext/presets#Preset> ; "
                 "<http://lv2plug.in/ns/lv2core#appliesTo> <urn:com.zubrow.Velkor> ; "
                 "<http://lv2plug.in/ns/ext/state#state> [ <urn:com.zubrow.Velkor:StateString> \"" +
                 chunk.toBase64Encoding().toStdString() + "\" ] .\n");
    }

    void set (NumericalParamID id, float value) override
    {
        const auto name = juce::String (paramMapper[id].name).replace (" ", "_20");
        instance->sendParameter ("urn:com.zubrow.Velkor:" + name.toStdString(),
                                 units.parameter (id).convertFrom0to1 (value));
    }

    void process (juce::AudioBuffer<float>& samples, const SessionBlock& block) override
    {
        // Hosts tell the transport when it changes, and without a tempo nobody can tell where the beat goes on.
        const auto& now = block.transport;
        const auto tempo = now.getBpm().orFallback (0.0);
        const std::tuple toSay { tempo, now.getPpqPosition().hasValue(), now.getIsPlaying() };

        if (std::exchange (lastSaid, toSay) != toSay || ! now.getBpm())
            instance->sendPosition (*now.getTimeInSamples(), now.getIsPlaying(),
                                    static_cast<float> (tempo),
                                    now.getPpqPosition().orFallback (-1.0));

        for (const auto event : block.midi)
            instance->sendMidi (event.samplePosition,
                                { event.data, static_cast<std::size_t> (event.numBytes) });

        EXPECT_EQ (instance->run (samples.getWritePointer (0), samples.getWritePointer (1),
                                  static_cast<std::uint32_t> (block.numSamples)),
                   0)
            << "the plug-in sent MIDI";
    }

    void bypass (bool isBypassed) override { instance->enabled = isBypassed ? 0.0f : 1.0f; }
    std::string save() override { return instance->saveState(); }
    void restore (const std::string& state) override { instance->restoreState (state); }

private:
    std::unique_ptr<Lv2Instance> instance;
    std::tuple<double, bool, bool> lastSaid { -1.0, false, false };
};
#endif

class Hosted : public testing::TestWithParam<const char*>
{
protected:
    static std::unique_ptr<HostedPlayer> makePlayer (const Session& session)
    {
#ifdef VELKOR_LV2_BUNDLE
        if (GetParam() == std::string ("LV2"))
            return std::make_unique<Lv2Player> (session.sampleRate);
#endif
        return std::make_unique<Vst3Player> (session.sampleRate);
    }

    const juce::ScopedJuceInitialiser_GUI framework;
};

}  // namespace

TEST_P (Hosted, SoundIsTheProcessorsToTheBit)
{
    for (const double rate : { 44100.0, 48000.0 })
    {
        SCOPED_TRACE (rate);
        const auto session = makeSession (rate, static_cast<int> (rate) / 1000);
        DirectInUnits direct (rate);
        const auto want = direct.play (session);
        expectWorthComparing (want, session);
        expectSameSamples (makePlayer (session)->play (session), want);
    }
}

TEST_P (Hosted, StateGoesFromOneInstanceToAnother)
{
    const auto state = makeState (3);
    const auto session = withoutEvents (makeSession (48000.0, 4));
    DirectPlayer direct (48000.0);
    setState (direct.processor, state);
    setState (direct.processor, getState (direct.processor));
    const auto want = direct.play (session);
    expectWorthComparing (want, session);

    const auto first = makePlayer (session);
    first->load (state);
    const auto second = makePlayer (session);
    second->restore (first->save());
    expectSameSamples (second->play (session), want);
}

TEST_P (Hosted, BypassPassesTheInputWhileTheSongGoesOn)
{
    auto early = makeSession (48000.0, 12);
    double quarterNotes = 0.0;

    for (auto& block :
         early.blocks)  // an LV2 host tells the song's place at the first of them only
    {
        block.transport.setIsPlaying (true);
        block.transport.setBpm (126.5);
        block.transport.setPpqPosition (quarterNotes);
        quarterNotes += block.numSamples / 48000.0 * 126.5 / 60.0;
        block.changes.clear();
    }

    const auto state = std::exchange (early.state, {});
    auto late = withoutEvents (early);
    const auto middle = static_cast<std::ptrdiff_t> (early.blocks.size() / 2);
    late.blocks.erase (late.blocks.begin(), late.blocks.begin() + middle);
    early.blocks.erase (early.blocks.begin() + middle, early.blocks.end());

    const auto player = makePlayer (early);
    DirectPlayer direct (48000.0);

    for (SessionPlayer* const each :
         { static_cast<SessionPlayer*> (player.get()), static_cast<SessionPlayer*> (&direct) })
    {
        each->load (state);
        each->set (LFO1Sync, 1.0f);
        each->set (LFO2Sync, 1.0f);
    }

    player->bypass (true);
    expectSameSamples (player->play (early), early.input);  // and of its notes none come out
    player->bypass (false);
    expectSameSamples (player->play (late), direct.play (late));
}

INSTANTIATE_TEST_SUITE_P (Formats, Hosted,
#ifdef VELKOR_LV2_BUNDLE
                          testing::Values ("VST3", "LV2")
#else
                          testing::Values ("VST3")
#endif
);

TEST (HostedVst3, IsFoundAsADelayEffectOfItsMaker)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    const auto plugin = makeVst3();
    EXPECT_EQ (plugin->getLatencySamples(), 0);

    // From the file beside the binary, which hosts read without loading it, and from the binary.
    for (const auto& found : { findVst3(), plugin->getPluginDescription() })
        EXPECT_EQ (found.manufacturerName + "|" + found.name + "|" + found.category + "|" +
                       found.version,
                   "Zubrow Labs|Velkor|Fx|Delay|" VELKOR_VERSION);
}
