// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/audio_input.h"

#include "velkor_render/failure.h"
#include "velkor_render/paths.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <algorithm>
#include <memory>

/** Whether an uncompressed file ends before the audio that its header announces. Its reader would give
    silence for what is missing. The compressed formats don't tell. */
static bool isCutShort (const juce::AudioFormatReader& reader, juce::int64 fileSize)
{
    const auto format = reader.getFormatName();
    const auto bytesPerFrame =
        static_cast<juce::int64> (reader.numChannels * reader.bitsPerSample / 8);
    return (format.startsWith ("WAV") || format.startsWith ("AIFF")) &&
           reader.lengthInSamples * bytesPerFrame > fileSize;
}

AudioInput openAudioFile (const std::filesystem::path& path)
{
    const auto file = existingFile (path);
    auto stream = file.createInputStream();

    if (stream == nullptr)
        fail (path.string() + ": can't be read");

    juce::AudioFormatManager formats;
    formats.registerBasicFormats();
    std::shared_ptr<juce::AudioFormatReader> reader (formats.createReaderFor (std::move (stream)));

    if (reader == nullptr || ! (reader->sampleRate > 0.0) || reader->numChannels == 0)
        fail (path.string() + ": is not audio in a known format (WAV, AIFF, FLAC, Ogg Vorbis)");

    if (reader->numChannels > 2)
        fail (path.string() + ": has " + std::to_string (reader->numChannels) +
              " channels, and mono and stereo are all that can be rendered");

    if (isCutShort (*reader, file.getSize()))
        fail (path.string() + ": is cut short: its header announces more audio than there is");

    return { reader->sampleRate, reader->lengthInSamples,
             [reader, path] (juce::AudioBuffer<float>& frames, juce::int64 position, int count)
             {
                 if (! reader->read (&frames, 0, count, position, true, true))
                     fail (path.string() + ": can't be read from frame " +
                           std::to_string (position) + " on");
             } };
}

AudioInput inputFromMemory (juce::AudioBuffer<float> audio, double rate)
{
    const auto length = audio.getNumSamples();
    const auto shared = std::make_shared<juce::AudioBuffer<float>> (std::move (audio));

    return { rate, length,
             [shared, length] (juce::AudioBuffer<float>& frames, juce::int64 position, int count)
             {
                 const int start = static_cast<int> (std::min<juce::int64> (position, length));
                 const int there = std::min (count, length - start);
                 frames.clear (0, count);

                 for (int channel = 0; channel < 2; ++channel)
                     frames.copyFrom (channel, 0, *shared, channel, start, there);
             } };
}
