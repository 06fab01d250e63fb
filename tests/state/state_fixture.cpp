// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state_fixture.h"

#include "state/first_run_install.h"
#include "state/state_carriers.h"
#include "support/duel.h"

#include <fstream>
#include <sstream>

std::string bytesOf (const juce::File& file)
{
    std::ifstream in (file.getFullPathName().toStdString(), std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

std::string keptDocument (const std::string& name)
{
    return bytesOf (juce::File (VELKOR_TEST_DATA).getChildFile ("state/kept").getChildFile (name));
}

juce::StringArray factoryDocuments()
{
    auto files = defaultPresetFolder().getChildFile ("Factory").findChildFiles (
        juce::File::findFiles, false, "*.zbpreset");
    files.sort();
    juce::StringArray texts;

    for (const auto& file : files)
        texts.add (file.loadFileAsString());

    return texts;
}

void putFile (const juce::File& file, std::string_view bytes)
{
    ASSERT_TRUE (file.getParentDirectory().createDirectory());
    std::ofstream out (file.getFullPathName().toStdString(), std::ios::binary);
    out << bytes;
    ASSERT_TRUE (out.flush().good());
}

juce::String documentWith (const juce::String& children, const juce::String& name)
{
    return "<VelkorSettings PresetName=\"" + name + "\" Version=\"65536\">" + children +
           "</VelkorSettings>";
}

juce::String documentWithParams (const juce::String& params)
{
    return documentWith ("<Parameters>" + params + "</Parameters>");
}

juce::MemoryBlock chunkAround (const juce::String& text)
{
    juce::MemoryOutputStream out;
    out.write ("VC2!", 4);
    out.writeInt (static_cast<int> (text.getNumBytesAsUTF8()));
    out.writeString (text);  // with the zero at the end
    return out.getMemoryBlock();
}

void scramble (VelkorAudioProcessor& processor, std::uint32_t seed)
{
    Noise noise (seed);

    for (auto* parameter : processor.getParameters())
        parameter->setValueNotifyingHost (noise.unit());

    for (int i = 0; i < 12; ++i)
    {
        processor.setSignalConnection (noise.below (8), noise.below (10), noise.chance (0.7f));
        processor.setModConnection (noise.below (6), noise.below (10), noise.chance (0.7f));
    }
}

float valueOf (const VelkorAudioProcessor& processor, juce::StringRef id)
{
    return processor.parameterTree.getRawParameterValue (id)->load();
}

static std::string arrow (int from, int to)
{
    return std::to_string (from) + ">" + std::to_string (to);
}

std::vector<std::string> connectionList (const VelkorAudioProcessor& processor)
{
    const auto& matrix = processor.engine->signal;
    std::vector<std::string> list;

    for (std::size_t i = 0; i < static_cast<std::size_t> (matrix.connectionCount); ++i)
        list.push_back (arrow (matrix.connSource[i], matrix.connDest[i]));

    return list;
}

std::vector<std::string> routeList (const VelkorAudioProcessor& processor)
{
    std::vector<std::string> list;

    for (const auto* route : processor.engine->modulation.router.routes)
        list.push_back (arrow (route->source, route->dest));

    return list;
}

juce::String textOf (VelkorAudioProcessor& processor)
{
    juce::String text;
    getStateAsText (processor, text);
    return text;
}

juce::String valueTextIn (const juce::String& document, const juce::String& id)
{
    const auto start = "<PARAM id=\"" + id + "\" value=\"";
    const auto first = document.indexOf (start);

    if (first < 0)
        return "(none)";

    if (document.indexOf (first + start.length(), "id=\"" + id + "\"") >= 0)
        return "(several)";

    return document.substring (first + start.length()).upToFirstOccurrenceOf ("\"", false, false);
}

std::thread playNoise (int numSamples, const std::atomic<bool>& stop,
                       std::function<void (juce::AudioBuffer<float>&, juce::MidiBuffer&)> play)
{
    return std::thread (
        [numSamples, &stop, play]
        {
            juce::AudioBuffer<float> buffer (2, numSamples);
            juce::MidiBuffer midi;
            Noise noise (8);

            while (! stop)
            {
                for (int channel = 0; channel < 2; ++channel)
                    for (int n = 0; n < numSamples; ++n)
                        buffer.setSample (channel, n, noise());

                midi.clear();
                midi.addEvent (juce::MidiMessage::noteOn (1, 30 + noise.below (70), 1.0f), 0);
                play (buffer, midi);
            }
        });
}

void HostListener::audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details)
{
    ++changes;
    last = details;
}

juce::File StateTest::homeFile (const juce::String& path) const
{
    return juce::File (home.path.string()).getChildFile (path);
}

juce::File StateTest::presets (const juce::String& path) const
{
    const auto folder = homeFile ("Music/Zubrow Labs/Velkor/Presets");
    return path.isEmpty() ? folder : folder.getChildFile (path);
}

juce::File StateTest::globals() const
{
    return homeFile ("Music/Zubrow Labs/Velkor/Velkor_globals.txt");
}
