// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/Lv2AudioProcessor.h"
#include "session.h"

#ifdef VELKOR_LV2_BUNDLE
#include "lv2_instance.h"
#endif

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
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

/** Some hosts keep parameters in their own units: a value from 0 to 1 goes through them and back.
    */
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
    Vst3Player (double sampleRate, juce::AudioChannelSet output = juce::AudioChannelSet::stereo())
    {
        // Brings the bundle's process-wide rate to where DirectPlayer brings ours.
        makeVst3()->prepareToPlay (44100.0, 512);
        plugin = makeVst3();
        EXPECT_TRUE (plugin->setBusesLayout ({ { juce::AudioChannelSet::stereo() }, { output } }));
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
        if (const auto said = positionOf (block); isNews (block))
            instance->sendPosition (0, said);

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

    std::unique_ptr<Lv2Instance> instance;

    static Lv2Position positionOf (const SessionBlock& block)
    {
        const auto& now = block.transport;
        const auto meter =
            now.getTimeSignature().orFallback (juce::AudioPlayHead::TimeSignature {});
        const double bar = meter.numerator * 4.0 / meter.denominator;
        const double ppq = now.getPpqPosition().orFallback (0.0);
        const auto bars = now.getBarCount().orFallback (static_cast<std::int64_t> (ppq / bar));
        const double barStart =
            now.getPpqPositionOfLastBarStart().orFallback (static_cast<double> (bars) * bar);
        return { now.getTimeInSamples().orFallback (0),
                 now.getIsPlaying() ? 1.0f : 0.0f,
                 static_cast<float> (now.getBpm().orFallback (120.0)),
                 bars,
                 static_cast<float> ((ppq - barStart) * meter.denominator / 4.0),
                 static_cast<float> (meter.numerator),
                 meter.denominator };
    }

private:
    /** Hosts say the position when it is not what the block before leads to. */
    bool isNews (const SessionBlock& block)
    {
        const auto said = positionOf (block);
        const std::tuple now { said.speed, said.tempo, said.beatsPerBar, said.beatUnit };
        const bool isNew = std::exchange (lastSaid, now) != now || said.frame != nextFrame;
        nextFrame = said.frame + (said.speed > 0.0f ? block.numSamples : 0);
        return isNew;
    }

    std::tuple<float, float, float, int> lastSaid { -1.0f, 0.0f, 0.0f, 0 };
    std::int64_t nextFrame = 0;
};
#endif

/** A song that plays from its start and goes through all that transports do: the tempo changes, the
    meter does, the song jumps back as loops do, stops, and starts elsewhere. */
struct Song
{
    struct Step
    {
        int numSamples, numerator, denominator;
        double tempo;
        bool plays;
        int bars;                   ///< since the song's start, by the host's count
        double barStart, quarters;  ///< in quarter notes
        std::int64_t frame;
    };

    // At 48 kHz. A quarter note has 24000 samples at 120 beats per minute, and 32000 at 90.
    static constexpr Step kSteps[] {
        { 24000, 4, 4, 120.0, true, 0, 0.0, 0.0, 0 },
        { 72000, 4, 4, 120.0, true, 0, 0.0, 1.0, 24000 },
        { 64000, 4, 4, 90.0, true, 1, 4.0, 4.0, 96000 },
        { 64000, 4, 4, 90.0, true, 1, 4.0, 6.0, 160000 },
        { 96000, 6, 8, 90.0, true, 2, 8.0, 8.0, 224000 },
        { 56000, 7, 8, 90.0, true, 3, 11.0, 11.0, 320000 },
        { 40000, 4, 4, 120.0, true, 0, 0.0, 2.0, 48000 },
        { 30000, 7, 8, 90.0, true, 3, 11.0, 11.5, 336000 },
        { 20000, 7, 8, 90.0, false, 3, 11.0, 12.25, 360000 },
        { 20000, 6, 8, 90.0, true, 2, 8.0, 9.75, 280000 },
    };

    static SessionBlock block (const Step& step, int start, int numSamples)
    {
        SessionBlock result;
        result.numSamples = numSamples;
        auto& now = result.transport;
        const int moved = step.plays ? start : 0;
        now.setIsPlaying (step.plays);
        now.setBpm (step.tempo);
        now.setTimeSignature (
            juce::AudioPlayHead::TimeSignature { step.numerator, step.denominator });
        now.setTimeInSamples (step.frame + moved);
        now.setPpqPosition (step.quarters + moved / 48000.0 * step.tempo / 60.0);
        now.setBarCount (step.bars);
        now.setPpqPositionOfLastBarStart (step.barStart);
        return result;
    }
};

/** A constant sound whose level follows LFO 1, a cycle a whole note. */
juce::MemoryBlock makeLfoState()
{
    DirectPlayer player;

    for (int i = 0; i < kNumSignalSources * kNumSignalDests; ++i)
        player.processor.setSignalConnection (i % kNumSignalSources, i / kNumSignalSources, false);

    for (const auto& [id, value] : { std::pair { LFO1Sync, 1.0f },
                                     { LFO1Rate, 0.0f },
                                     { LFO1Wave, 0.0f },
                                     { DryLevel, 0.0f },
                                     { Output1Level, 0.5f },
                                     { Output2Level, 0.5f },
                                     { Level1Mod, 1.0f },
                                     { Kill, 0.0f } })
        player.set (id, value);

    player.processor.setSignalConnection (sourceInputL, destOutput1, true);
    player.processor.setModConnection (1, 8, true);
    return getState (player.processor);
}

Session makeLfoSession (int blockSize)
{
    Session session { 48000.0, makeLfoState(), {}, {} };
    int length = 0;

    for (const auto& step : Song::kSteps)
    {
        for (int start = 0; start < step.numSamples; start += blockSize)
            session.blocks.push_back (
                Song::block (step, start, std::min (blockSize, step.numSamples - start)));

        session.blocks.push_back (Song::block (step, step.numSamples, 0));
        length += step.numSamples;
    }

    session.input.setSize (2, length);

    for (int channel = 0; channel < 2; ++channel)
        juce::FloatVectorOperations::fill (session.input.getWritePointer (channel), 0.5f, length);

    return session;
}

void expectSameSound (const juce::AudioBuffer<float>& got, const juce::AudioBuffer<float>& want)
{
    const auto range = want.findMinMax (0, 0, want.getNumSamples());
    ASSERT_GT (range.getLength(), 0.2f) << "no LFO is heard";

    for (int n = 0; n < want.getNumSamples(); ++n)
        ASSERT_NEAR (got.getSample (0, n), want.getSample (0, n), 1.0e-4f) << "at sample " << n;
}

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

/** A host that says the position only now and then never takes one back. */
void completeTransport (Session& session)
{
    double quarters = 0.0, tempo = 0.0;
    std::int64_t frame = 0;

    for (auto& block : session.blocks)
    {
        auto& now = block.transport;

        if (std::exchange (tempo, now.getBpm().orFallback (120.0)) != tempo)
            quarters = std::round (quarters * 1920.0) / 1920.0;  // hosts say it in ticks

        now.setBpm (tempo);
        now.setPpqPosition (quarters);
        now.setTimeInSamples (frame);

        if (now.getIsPlaying())
        {
            quarters += block.numSamples / session.sampleRate * tempo / 60.0;
            frame += block.numSamples;
        }
    }
}

}  // namespace

TEST_P (Hosted, SoundIsTheProcessorsToTheBit)
{
    for (const double rate : { 44100.0, 48000.0 })
    {
        SCOPED_TRACE (rate);
        auto session = makeSession (rate, static_cast<int> (rate) / 1000);

        if (GetParam() == std::string ("LV2"))
            completeTransport (session);

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

    for (auto& block : early.blocks)
    {
        block.transport.setIsPlaying (true);
        block.transport.setBpm (126.5);
        block.changes.clear();
    }

    completeTransport (early);
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

    for (const auto& block : early.blocks)
    {
        auto midi = block.midi;
        juce::AudioBuffer<float> passed (2, 0);
        direct.processor.processBlockBypassed (passed, midi);
    }

    player->bypass (true);
    expectSameSamples (player->play (early), early.input);  // and of its notes none come out
    player->bypass (false);
    expectSameSamples (player->play (late), direct.play (late));
}

TEST_P (Hosted, SyncedLfoFollowsTheSongThroughTempoMeterLoopAndStop)
{
    for (const int blockSize : { 64, 1000 })
    {
        SCOPED_TRACE (blockSize);
        const auto session = makeLfoSession (blockSize);
        expectSameSound (makePlayer (session)->play (session),
                         DirectPlayer (48000.0).play (session));
    }
}

TEST (VelkorAudioProcessor, MidiThatTheEngineUsesLightsTheLampAlsoInBypass)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    DirectPlayer player (48000.0);
    juce::AudioBuffer<float> samples (2, 16);
    samples.clear();
    juce::MidiBuffer midi;
    midi.addEvent (juce::MidiMessage::pitchWheel (1, 5), 0);
    player.processor.processBlock (samples, midi);
    EXPECT_FALSE (player.processor.midiActivity.exchange (false));
    midi.addEvent (juce::MidiMessage::noteOn (1, 60, 1.0f), 7);
    player.processor.processBlock (samples, midi);
    EXPECT_TRUE (player.processor.midiActivity.exchange (false));
    player.processor.processBlockBypassed (samples, midi);
    EXPECT_TRUE (player.processor.midiActivity.exchange (false));
    EXPECT_EQ (midi.getNumEvents(), 2);
}

// A key that the host lets go while it bypasses the plug-in is let go.
TEST_P (Hosted, BypassGoesOnReadingMidi)
{
    auto session = makeLfoSession (480);
    session.blocks.resize (60);
    session.input.setSize (2, 60 * 480, true);
    session.blocks[10].midi.addEvent (juce::MidiMessage::noteOn (1, 60, 1.0f), 0);
    session.blocks[30].midi.addEvent (juce::MidiMessage::noteOff (1, 60), 0);

    DirectPlayer gated;
    setState (gated.processor, session.state);
    gated.processor.setModConnection (1, 8, false);
    gated.processor.setModConnection (4, 8, true);
    gated.set (Output1Level, 0.0f);
    session.state = getState (gated.processor);

    const auto player = makePlayer (session);
    auto first = session, second = session;
    first.blocks.resize (20);
    first.input.setSize (2, 20 * 480, true);
    EXPECT_GT (player->play (first).getMagnitude (0, 19 * 480, 480), 0.1f);

    second.state.reset();
    second.blocks.erase (second.blocks.begin(), second.blocks.begin() + 20);
    auto third = second;
    second.blocks.resize (20);
    player->bypass (true);
    player->play (second);
    player->bypass (false);
    third.blocks.erase (third.blocks.begin(), third.blocks.begin() + 20);
    EXPECT_LT (player->play (third).getMagnitude (0, 18 * 480, 480), 0.001f);
}

#ifdef VELKOR_LV2_BUNDLE
TEST (HostedLv2, PositionInsideABlockActsAtItsSample)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    constexpr int kBlockSize = 700, kFirstJump = 6;  // steps before it go on where the last ended
    auto session = makeLfoSession (64);
    session.blocks.clear();

    for (const bool hasMidi : { true, false })
    {
        Lv2Player player (48000.0);
        player.load (session.state);
        player.instance->hasMidi = hasMidi;
        auto got = session.input;
        std::vector<SessionBlock> blocks;
        const auto* step = std::begin (Song::kSteps);
        int stepStart = 0;

        for (int start = 0; start < got.getNumSamples(); start += kBlockSize)
        {
            const int end = std::min (start + kBlockSize, got.getNumSamples());
            int cut = start;

            if (start == 0)
                player.instance->sendPosition (0,
                                               Lv2Player::positionOf (Song::block (*step, 0, 0)));

            auto head = Song::block (*step, start - stepStart, 0);

            while (step + 1 != std::end (Song::kSteps) && stepStart + step->numSamples < end)
            {
                stepStart += step++->numSamples;
                player.instance->sendPosition (stepStart - start,
                                               Lv2Player::positionOf (Song::block (*step, 0, 0)));

                if (step - std::begin (Song::kSteps) >= kFirstJump || stepStart == start)
                {
                    head.numSamples = stepStart - cut;
                    blocks.push_back (head);
                    cut = stepStart;
                    head = Song::block (*step, 0, 0);
                }
            }

            head.numSamples = end - cut;
            blocks.push_back (head);
            player.instance->run (got.getWritePointer (0, start), got.getWritePointer (1, start),
                                  static_cast<std::uint32_t> (end - start));
        }

        session.blocks = blocks;
        expectSameSound (got, DirectPlayer (48000.0).play (session));
    }
}

TEST (HostedLv2, WhatTheHostDoesIsNoUnsavedWork)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    Lv2Player player (48000.0);
    std::vector<float> samples (2 * 64);
    player.load (makeState (5));
    player.set (Filter1Freq, 0.3f);
    player.instance->run (samples.data(), samples.data() + 64, 64);
    player.instance->run (samples.data(), samples.data() + 64, 64);
    EXPECT_EQ (player.instance->numStateChanges, 0);
}
#endif

TEST (NoticingAudioProcessor, GivesOneNoticeForAnEditOfTheUserAndNoneForTheHosts)
{
    struct Host : juce::AudioProcessorListener
    {
        void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override {}
        void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details) override
        {
            numNotices += details.nonParameterStateChanged ? 1 : 0;
            numOthers += details.programChanged ? 1 : 0;
        }

        int numNotices = 0, numOthers = 0;
    };

    const juce::ScopedJuceInitialiser_GUI framework;
    Lv2AudioProcessor processor;
    Host host;
    processor.addListener (&host);
    const auto count = [&host] { return std::exchange (host.numNotices, 0); };
    auto& fader = *processor.parameterTree.getParameter (paramMapper[Filter1Freq].name);

    processor.setSignalConnection (0, 5, true);
    EXPECT_EQ (count(), 1);
    processor.setModConnection (0, 5, true);
    EXPECT_EQ (count(), 1);
    EXPECT_EQ (host.numOthers, 2);

    fader.beginChangeGesture();
    fader.setValueNotifyingHost (0.1f);
    fader.setValueNotifyingHost (0.2f);
    EXPECT_EQ (count(), 0);
    fader.endChangeGesture();
    EXPECT_EQ (count(), 1);
    fader.beginChangeGesture();
    fader.endChangeGesture();
    EXPECT_EQ (count(), 0);
    fader.setValueNotifyingHost (0.3f);  // as undo does
    EXPECT_EQ (count(), 1);

    setState (processor, makeState (3));
    processor.beginRun ({});
    fader.setValueNotifyingHost (0.4f);
    processor.endRun();
    EXPECT_EQ (count(), 0);

    juce::XmlElement preset ("");
    processor.saveStateToXML (preset);
    fader.setValueNotifyingHost (0.4f);
    count();
    processor.loadStateFromXML (&preset);
    EXPECT_GE (count(), 1);
    processor.removeListener (&host);
}

INSTANTIATE_TEST_SUITE_P (Formats, Hosted,
#ifdef VELKOR_LV2_BUNDLE
                          testing::Values ("VST3", "LV2")
#else
                          testing::Values ("VST3")
#endif
);

// JUCE hands over two channels for a stereo input, and the first of them is the output.
TEST (HostedVst3, MonoOutputIsTheLeftOfStereo)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    const auto session = makeSession (48000.0, 48);
    DirectInUnits direct (48000.0);
    auto want = direct.play (session);
    auto got = Vst3Player (48000.0, juce::AudioChannelSet::mono()).play (session);
    EXPECT_GT (want.getRMSLevel (1, 0, want.getNumSamples()), 0.0f);

    for (auto* output : { &want, &got })
        output->copyFrom (1, 0, *output, 0, 0, output->getNumSamples());

    expectSameSamples (got, want);
}

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
