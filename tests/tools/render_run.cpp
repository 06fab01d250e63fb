// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <sys/wait.h>

namespace
{
std::string inQuotes (const std::string& text)
{
    return "'" + juce::String (text).replace ("'", "'\\''").toStdString() + "'";
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

juce::var RenderTest::savedSettings (const Words& arguments) const
{
    const auto result = render (arguments + Words { "--json", "--save-preset", "p.zbpreset" });
    return juce::JSON::parse (result.out)["settings"];
}

void RenderTest::expectSamePatch (const juce::var& got, const juce::var& want)
{
    for (const auto* matrix : { "connections", "routes" })
        EXPECT_EQ (juce::JSON::toString (got[matrix]), juce::JSON::toString (want[matrix]));

    const auto& values = want["parameters"].getDynamicObject()->getProperties();
    EXPECT_EQ (values.size(), 57);

    for (const auto& [id, value] : values)
        EXPECT_NEAR (static_cast<double> (got["parameters"][id]), static_cast<double> (value),
                     1e-6 * std::max (1.0, std::abs (static_cast<double> (value))))
            << id.toString();
}

void RenderTest::write (const std::string& name, const juce::AudioBuffer<float>& samples,
                        double rate) const
{
    file (name).deleteFile();
    ASSERT_TRUE (file (name).create().wasOk());
    const std::unique_ptr<juce::AudioFormatWriter> writer (juce::WavAudioFormat().createWriterFor (
        file (name).createOutputStream().release(), rate,
        static_cast<unsigned> (samples.getNumChannels()), 32, {}, 0));
    ASSERT_NE (writer, nullptr) << name;
    ASSERT_TRUE (writer->writeFromAudioSampleBuffer (samples, 0, samples.getNumSamples()));
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
             "--set",        "Pan 1=L 10",    "--set",     "Wet Level=1", "--set", "Pan 2=0",
             "--set",        "Input Level=1", "--bits",    "32" };
}

Words oneDelay()
{
    return emptyPatch() +
           Words { "--connect", "Input L > Delay 1",        "--connect", "Delay 1 > Output 1",
                   "--set",     "Delay 1 Feedback=-INF dB", "--set",     "Delay 1 Multiplier=x1" };
}
