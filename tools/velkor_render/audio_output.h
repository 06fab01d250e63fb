// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_formats/juce_audio_formats.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>

/** What can be written. */
enum class AudioFileType
{
    wav,
    aiff,
    flac
};

/** The type that a file name's extension stands for, in any case; nothing for an unknown one. */
std::optional<AudioFileType> audioFileTypeOf (const std::filesystem::path& path);

/** A stereo file in the making. It grows under another name beside its place and gets its name at the
    end, so that nobody ever sees half of it. Every failure is by the place's name. */
class AudioOutput
{
public:
    /** Opens the temporary file; makes the place's folder if it is missing. bits is 16, 24, or 32 for
        floating point. */
    AudioOutput (std::filesystem::path place, AudioFileType, double rate, int bits);

    /** Takes the temporary file away unless it was committed. */
    ~AudioOutput();

    AudioOutput (const AudioOutput&) = delete;
    AudioOutput& operator= (const AudioOutput&) = delete;

    /** Appends the first count frames. Values become the nearest ones of the word length. */
    void write (const juce::AudioBuffer<float>& frames, int count);

    /** Completes the file and puts it into its place. */
    void commit();

private:
    /** A file that is removed unless somebody took it away. */
    struct TemporaryFile
    {
        ~TemporaryFile();
        std::filesystem::path path;  ///< empty: there is none
    };

    [[noreturn]] void failToWrite() const;
    void openTemporary();

    std::filesystem::path destination;
    int wordLength;
    TemporaryFile temporary;
    std::ofstream file;
    int errorNumber = 0;  ///< errno of the first write that failed
    std::unique_ptr<juce::AudioFormatWriter> writer;
    std::vector<int> integers[2];
};
