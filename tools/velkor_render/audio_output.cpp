// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/audio_output.h"

#include "velkor_render/failure.h"
#include "velkor_render/paths.h"
#include "velkor_render/text.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <random>
#include <system_error>
#include <tuple>

namespace fs = std::filesystem;

namespace
{
/** The way of the framework's writers into a file that outlives them: they delete their stream, and say
    nothing about what went wrong when they wrote their header last. */
class WriterStream : public juce::OutputStream
{
public:
    WriterStream (std::ofstream& target, int& firstErrorNumber)
        : file (target), errorNumber (firstErrorNumber)
    {
    }

    void flush() override { note (file.flush().good()); }
    bool setPosition (juce::int64 position) override { return note (file.seekp (position).good()); }
    juce::int64 getPosition() override { return static_cast<juce::int64> (file.tellp()); }

    bool write (const void* data, size_t size) override
    {
        return note (
            file.write (static_cast<const char*> (data), static_cast<std::streamsize> (size))
                .good());
    }

private:
    bool note (bool succeeded)
    {
        if (! succeeded && errorNumber == 0)
            errorNumber = errno;

        return succeeded;
    }

    std::ofstream& file;
    int& errorNumber;
};

std::unique_ptr<juce::AudioFormat> makeFormat (AudioFileType type)
{
    switch (type)
    {
    case AudioFileType::wav:
        return std::make_unique<juce::WavAudioFormat>();
    case AudioFileType::aiff:
        return std::make_unique<juce::AiffAudioFormat>();
    case AudioFileType::flac:
        break;
    }

    return std::make_unique<juce::FlacAudioFormat>();
}
}  // namespace

std::optional<AudioFileType> audioFileTypeOf (const fs::path& path)
{
    const auto name = path.filename().string();
    const auto extension = lowerCase (name.substr (std::min (name.rfind ('.'), name.size())));

    if (extension == ".wav")
        return AudioFileType::wav;

    if (extension == ".aif" || extension == ".aiff")
        return AudioFileType::aiff;

    if (extension == ".flac")
        return AudioFileType::flac;

    return std::nullopt;
}

AudioOutput::TemporaryFile::~TemporaryFile()
{
    std::error_code ignored;

    if (! path.empty())
        fs::remove (path, ignored);
}

AudioOutput::AudioOutput (fs::path place, AudioFileType type, double rate, int bits)
    : destination (std::move (place)), wordLength (bits)
{
    openTemporary();

    auto stream = std::make_unique<WriterStream> (file, errorNumber);
    writer.reset (makeFormat (type)->createWriterFor (stream.get(), rate, 2, bits, {}, 0));

    if (writer == nullptr)
        fail (destination.string() + ": this format can't hold " + std::to_string (bits) +
              " bits at " + numberText (rate) + " Hz");

    std::ignore = stream.release();  // the writer has taken it
}

AudioOutput::~AudioOutput() = default;

void AudioOutput::openTemporary()
{
    makeWay (destination);

    const auto folder = behindLinks (destination).parent_path();
    const auto name = ".velkor-render-" + std::to_string (std::random_device()()) + ".part";
    file.open (folder / name, std::ios::binary | std::ios::trunc);

    if (! file)
        fail (destination.string() +
              ": can't be written: " + std::error_code (errno, std::generic_category()).message());

    temporary.path = folder / name;
}

void AudioOutput::failToWrite() const
{
    const std::error_code error (errorNumber, std::generic_category());
    fail (destination.string() +
          ": can't be written: " + (error ? error.message() : "write error"));
}

void AudioOutput::write (const juce::AudioBuffer<float>& frames, int count)
{
    if (wordLength == 32)
    {
        if (! writer->writeFromAudioSampleBuffer (frames, 0, count))
            failToWrite();

        return;
    }

    // The writers take the upper bits of 32 and would cut the rest off, which is an offset of half a step.
    const float scale = static_cast<float> (1 << (wordLength - 1));

    for (int channel = 0; channel < 2; ++channel)
    {
        const float* const source = frames.getReadPointer (channel);
        auto& target = integers[channel];
        target.resize (static_cast<std::size_t> (count));
        std::transform (source, source + count, target.begin(),
                        [this, scale] (float x)
                        {
                            const float limited =
                                std::clamp (std::nearbyint (x * scale), -scale, scale - 1.0f);
                            return static_cast<int> (limited) * (1 << (32 - wordLength));
                        });
    }

    const int* samples[] = { integers[0].data(), integers[1].data() };

    if (! writer->write (samples, count))
        failToWrite();
}

void AudioOutput::commit()
{
    writer.reset();  // writes the header
    file.close();

    if (! file || errorNumber != 0)
        failToWrite();

    std::error_code error;
    fs::rename (temporary.path, behindLinks (destination), error);

    if (error)
        fail (destination.string() + ": can't be written: " + error.message());

    temporary.path.clear();
}
