// SPDX-License-Identifier: AGPL-3.0-or-later
#include "preset_run.h"

#include "support/duel.h"

#include <algorithm>

juce::Array<juce::File> factoryFiles()
{
    const auto folder = juce::File (VELKOR_TEST_DATA).getSiblingFile ("resources/presets/Factory");
    auto files = folder.findChildFiles (juce::File::findFiles, false, "*.zbpreset");
    files.sort();
    return files;
}

Preset::Preset (int presetNumber) : number (presetNumber)
{
    const auto file = factoryFiles()[number];
    fileName = file.getFileNameWithoutExtension();
    document = juce::parseXML (file);
}

Preset Preset::with (const char* parameter, double value) const
{
    auto copy = *this;
    auto changed = std::make_shared<juce::XmlElement> (*document);

    for (auto* const element : changed->getChildByName ("Parameters")->getChildIterator())
        if (element->getStringAttribute ("id") == parameter)
            element->setAttribute ("value", value);

    copy.document = changed;
    return copy;
}

Playing withNote (int note, int wheel)
{
    Playing how;
    how.midi.push_back ({ 0.0, juce::MidiMessage::controllerEvent (1, 1, wheel) });
    how.midi.push_back ({ 0.0, juce::MidiMessage::noteOn (1, note, juce::uint8 { 100 }) });
    return how;
}

Playing withMidiLine()
{
    Playing how;
    constexpr int notes[] = { 60, 67, 48, 72, 55, 64, 60, 52, 69, 57 };

    for (int i = 0; i < 10; ++i)
    {
        const double start = 0.625 * i;
        how.midi.push_back (
            { start, juce::MidiMessage::controllerEvent (1, 1, i < 5 ? 30 * i : 150 - 15 * i) });
        how.midi.push_back (
            { start, juce::MidiMessage::noteOn (1, notes[i], juce::uint8 { 100 }) });
        how.midi.push_back ({ start + 0.5, juce::MidiMessage::noteOff (1, notes[i]) });
    }

    return how;
}

Sound played (const Preset& preset, const Sound& input, const Playing& how)
{
    constexpr int kBlock = 256;

    // The lines are sized at construction for the rate of the instance before, so that one of
    // this rate goes before all.
    [[maybe_unused]] static const bool isRateSet = []
    {
        VelkorAudioProcessor().prepareToPlay (kSoundRate, kBlock);
        return true;
    }();

    VelkorAudioProcessor processor;
    FakePlayHead playHead;
    playHead.tempo = how.tempo;
    playHead.position = 0.0;
    processor.setPlayHead (&playHead);
    processor.prepareToPlay (kSoundRate, kBlock);
    processor.loadStateFromXML (
        std::make_unique<juce::XmlElement> (how.before != nullptr ? *how.before : *preset.document)
            .get());
    const int loadAt = how.before != nullptr ? framesIn (how.loadAt) : -1;
    auto sound = input;
    auto event = how.midi.begin();

    for (int start = 0, n = 0; start < sound.getNumSamples(); start += n)
    {
        n = std::min (kBlock, sound.getNumSamples() - start);
        juce::MidiBuffer events;

        for (; event != how.midi.end() && framesIn (event->seconds) < start + n; ++event)
            events.addEvent (event->message, 0);

        if (start <= loadAt && loadAt < start + n)
            processor.loadStateFromXML (
                std::make_unique<juce::XmlElement> (*preset.document).get());

        if (how.running)
            playHead.position = how.tempo / 60.0 * start / kSoundRate;

        Sound block (sound.getArrayOfWritePointers(), 2, start, n);
        processor.processBlock (block, events);
    }

    return sound;
}
