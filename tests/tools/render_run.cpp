// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <set>
#include <sys/wait.h>
#include <tuple>

namespace
{
std::string inQuotes (const std::string& text)
{
    return "'" + juce::String (text).replace ("'", "'\\''").toStdString() + "'";
}

std::unique_ptr<juce::AudioFormat> formatOf (const juce::String& extension)
{
    if (extension == ".aiff")
        return std::make_unique<juce::AiffAudioFormat>();

    if (extension == ".flac")
        return std::make_unique<juce::FlacAudioFormat>();

    if (extension == ".ogg")
        return std::make_unique<juce::OggVorbisAudioFormat>();

    return std::make_unique<juce::WavAudioFormat>();
}
}  // namespace

std::vector<int> Sound::framesAbove (float level, int channel) const
{
    std::vector<int> frames;

    for (int i = 0; i < length(); ++i)
        if (std::abs (at (channel, i)) > level)
            frames.push_back (i);

    return frames;
}

RenderTest::RenderTest()
{
    const auto root = juce::File::createTempFile ({});  // a name that nobody has
    folder = root.getChildFile ("work");
    home = root.getChildFile ("home");
    temporaries = root.getChildFile ("tmp");

    for (const auto& each : { folder, home, temporaries })
        EXPECT_TRUE (each.createDirectory().wasOk());
}

RenderTest::~RenderTest()
{
    folder.getParentDirectory().deleteRecursively();
}

Outcome RenderTest::run (const Words& arguments, const std::string& setUp) const
{
    const auto out = folder.getSiblingFile ("out.txt");
    const auto err = folder.getSiblingFile ("err.txt");
    std::string command = "cd " + inQuotes (folder.getFullPathName().toStdString()) +
                          " && export HOME=" + inQuotes (home.getFullPathName().toStdString()) +
                          " TMPDIR=" + inQuotes (temporaries.getFullPathName().toStdString()) +
                          " && { " + setUp + " " + inQuotes (VELKOR_RENDER_PATH);

    for (const auto& argument : arguments)
        command += " " + inQuotes (argument);

    command += "; } >" + inQuotes (out.getFullPathName().toStdString()) + " 2>" +
               inQuotes (err.getFullPathName().toStdString());
    const int status = std::system (command.c_str());

    // A debug build of the framework remarks on headers that a full disk did not take.
    juce::StringArray said;

    for (const auto& line : juce::StringArray::fromLines (err.loadFileAsString()))
        if (! (line.startsWith ("JUCE Assertion failure in juce_") &&
               line.contains ("AudioFormat.cpp")))
            said.add (line);

    return { WIFEXITED (status) ? WEXITSTATUS (status) : -1, out.loadFileAsString().toStdString(),
             said.joinIntoString ("\n").toStdString() };
}

Outcome RenderTest::render (const Words& arguments) const
{
    auto result = run (arguments);
    EXPECT_EQ (result.exitCode, 0);
    EXPECT_EQ (result.err, "");
    return result;
}

void RenderTest::write (const std::string& name, const juce::AudioBuffer<float>& samples,
                        double rate, int bits) const
{
    const auto format = formatOf (file (name).getFileExtension());
    file (name).deleteFile();
    auto stream = file (name).createOutputStream();
    ASSERT_NE (stream, nullptr);
    const std::unique_ptr<juce::AudioFormatWriter> writer (format->createWriterFor (
        stream.get(), rate, static_cast<unsigned> (samples.getNumChannels()), bits, {}, 5));
    ASSERT_NE (writer, nullptr) << name;
    std::ignore = stream.release();  // the writer has taken it

    if (writer->isFloatingPoint())
    {
        ASSERT_TRUE (writer->writeFromAudioSampleBuffer (samples, 0, samples.getNumSamples()));
        return;
    }

    // The writer's own conversion of floats may come out one step below what a value stands for.
    std::vector<std::vector<int>> steps (static_cast<std::size_t> (samples.getNumChannels()));
    std::vector<const int*> channels;

    for (int channel = 0; auto& ofChannel : steps)
    {
        for (int i = 0; i < samples.getNumSamples(); ++i)
            ofChannel.push_back (static_cast<int> (samples.getSample (channel, i) * 2147483648.0));

        channels.push_back (ofChannel.data());
        ++channel;
    }

    channels.push_back (nullptr);
    ASSERT_TRUE (writer->write (channels.data(), samples.getNumSamples()));
}

Sound RenderTest::read (const std::string& name) const
{
    juce::AudioFormatManager formats;
    formats.registerBasicFormats();
    const std::unique_ptr<juce::AudioFormatReader> reader (
        formats.createReaderFor (file (name).createInputStream()));

    if (reader == nullptr)
    {
        ADD_FAILURE() << name << " is no sound file";
        return {};
    }

    Sound sound;
    sound.samples.setSize (static_cast<int> (reader->numChannels),
                           static_cast<int> (reader->lengthInSamples));
    reader->read (&sound.samples, 0, sound.length(), 0, true, true);
    sound.rate = reader->sampleRate;
    sound.bits = static_cast<int> (reader->bitsPerSample);
    sound.isFloat = reader->usesFloatingPointData;
    sound.format = reader->getFormatName().toStdString();
    return sound;
}

juce::StringArray RenderTest::content() const
{
    juce::StringArray names;

    for (const auto& entry :
         juce::RangedDirectoryIterator (folder, true, "*", juce::File::findFilesAndDirectories))
        names.add (entry.getFile().getRelativePathFrom (folder));

    names.sort (false);
    return names;
}

juce::AudioBuffer<float> impulses (int length, int frame, float left, float right)
{
    juce::AudioBuffer<float> samples (2, length);
    samples.clear();
    samples.setSample (0, frame, left);
    samples.setSample (1, frame, right);
    return samples;
}

juce::AudioBuffer<float> sine (double hertz, double rate, int length, float level)
{
    juce::AudioBuffer<float> samples (2, length);

    for (int i = 0; i < length; ++i)
        for (int channel = 0; channel < 2; ++channel)
            samples.setSample (
                channel, i,
                level * static_cast<float> (std::sin (2.0 * std::numbers::pi * hertz * i / rate)));

    return samples;
}

Words operator+ (Words a, const Words& b)
{
    a.insert (a.end(), b.begin(), b.end());
    return a;
}

Words emptyPatch()
{
    return { "--disconnect", "all",           "--unroute", "all",         "--set", "Dry Level=0",
             "--set",        "Pan 1=0",       "--set",     "Wet Level=1", "--set", "Pan 2=0",
             "--set",        "Input Level=1", "--bits",    "32" };
}

Words oneDelay()
{
    return emptyPatch() +
           Words { "--connect", "Input L > Delay 1",        "--connect", "Delay 1 > Output 1",
                   "--set",     "Delay 1 Feedback=-INF dB", "--set",     "Delay 1 Multiplier=x1" };
}

void expectSamePatch (const juce::File& got, const juce::File& want)
{
    const auto made = juce::parseXML (got), kept = juce::parseXML (want);
    ASSERT_TRUE (made != nullptr && kept != nullptr) << want.getFullPathName();

    const auto cables = [] (const juce::XmlElement& document, const char* matrix)
    {
        std::multiset<juce::String> texts;  // the bank's files have them in orders of their own

        for (const auto* cable : document.getChildByName (matrix)->getChildIterator())
            texts.insert (cable->toString());

        return texts;
    };

    for (const auto* matrix : { "SignalMatrix", "ModMatrix" })
        EXPECT_EQ (cables (*made, matrix), cables (*kept, matrix));

    const auto* const values = made->getChildByName ("Parameters");
    EXPECT_EQ (values->getNumChildElements(), 57);

    for (const auto* param : kept->getChildByName ("Parameters")->getChildIterator())
    {
        const auto id = param->getStringAttribute ("id");
        const auto value = param->getDoubleAttribute ("value");
        const auto* const same = values->getChildByAttribute ("id", id);
        ASSERT_NE (same, nullptr) << id;
        EXPECT_NEAR (same->getDoubleAttribute ("value"), value,
                     1e-6 * std::max (1.0, std::abs (value)))
            << id;
    }
}
