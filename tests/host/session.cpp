// SPDX-License-Identifier: AGPL-3.0-or-later
#include "session.h"

#include "session_player.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <memory>
#include <numbers>
#include <numeric>
#include <utility>

namespace
{

/** Plucked notes, low on the left and high on the right, over a little noise. */
juce::AudioBuffer<float> synthesise (double sampleRate, juce::Random& random)
{
    const int length = static_cast<int> (3.0 * sampleRate);
    const int noteLength = static_cast<int> (0.19 * sampleRate);
    juce::AudioBuffer<float> sound (2, length);

    for (int channel = 0; channel < 2; ++channel)
    {
        double frequency = 0.0;

        for (int n = 0; n < length; ++n)
        {
            const int age = n % noteLength;

            if (age == 0)
                frequency = 110.0 * (1 + 3 * channel) * (1.0 + random.nextInt (12) / 8.0);

            const double seconds = age / sampleRate;
            const double pluck =
                std::exp (-9.0 * seconds) * std::sin (2.0 * std::numbers::pi * frequency * seconds);
            const double noise = 0.05 * (2.0 * random.nextDouble() - 1.0);
            sound.setSample (channel, n, static_cast<float> (0.6 * pluck + noise));
        }
    }

    return sound;
}

/** Through a file and back, as 24-bit PCM. */
juce::AudioBuffer<float> throughFile (const juce::AudioBuffer<float>& sound, double sampleRate)
{
    const auto file =
        juce::File::getSpecialLocation (juce::File::userHomeDirectory).getChildFile ("take.wav");
    file.deleteFile();
    juce::WavAudioFormat wav;

    {
        auto stream = std::make_unique<juce::FileOutputStream> (file);
        const std::unique_ptr<juce::AudioFormatWriter> writer (
            wav.createWriterFor (stream.get(), sampleRate, 2, 24, {}, 0));

        if (writer == nullptr)
            return {};

        static_cast<void> (stream.release());  // the writer's now
        writer->writeFromAudioSampleBuffer (sound, 0, sound.getNumSamples());
    }

    const std::unique_ptr<juce::AudioFormatReader> reader (
        wav.createReaderFor (file.createInputStream().release(), true));

    if (reader == nullptr || ! juce::approximatelyEqual (reader->sampleRate, sampleRate))
        return {};

    juce::AudioBuffer<float> result (2, static_cast<int> (reader->lengthInSamples));
    reader->read (&result, 0, result.getNumSamples(), 0, true, true);
    return result;
}

/** Makes one block after the other. */
class SessionWriter
{
public:
    explicit SessionWriter (juce::Random& r) : random (r)
    {
        std::iota (order.begin(), order.end(), 0);

        for (int i = kNumParameters - 1; i > 0; --i)
            std::swap (order[static_cast<std::size_t> (i)],
                       order[static_cast<std::size_t> (random.nextInt (i + 1))]);
    }

    SessionBlock next (int numSamples, std::int64_t time, double sampleRate)
    {
        SessionBlock block;
        block.numSamples = numSamples;
        block.time = time;
        addChanges (block);
        addMidi (block);
        addTransport (block, sampleRate);
        return block;
    }

private:
    void addChanges (SessionBlock& block)
    {
        // What silences everything, or freezes it, lasts one block: the comparison needs sound.
        for (const auto id : { Kill, Delay1Loop, Delay2Loop })
            if (std::exchange (isOn[id], false))
                block.changes.push_back ({ id, 0.0f });

        for (int i = random.nextInt (4); --i >= 0;)
        {
            const auto id = static_cast<NumericalParamID> (order[nextParameter]);
            nextParameter = (nextParameter + 1) % order.size();
            const float value = random.nextFloat();
            block.changes.push_back ({ id, value });
            isOn[id] = value > 0.5f;
        }
    }

    void addMidi (SessionBlock& block)
    {
        for (int i = random.nextInt (3); --i >= 0;)
        {
            const int channel = 1 + random.nextInt (16);
            const int data = random.nextInt (128);
            const int place = random.nextInt (std::max (1, block.numSamples));

            switch (random.nextInt (5))
            {
            case 0:
            case 1:
                block.midi.addEvent (juce::MidiMessage::noteOn (channel, data, juce::uint8 { 90 }),
                                     place);
                break;
            case 2:
                block.midi.addEvent (juce::MidiMessage::noteOff (channel, data), place);
                break;
            case 3:
                block.midi.addEvent (juce::MidiMessage::controllerEvent (channel, 1, data), place);
                break;
            default:
                block.midi.addEvent (juce::MidiMessage::pitchWheel (channel, data << 7), place);
                break;
            }
        }
    }

    void addTransport (SessionBlock& block, double sampleRate)
    {
        if (--blocksToStay < 0)
        {
            blocksToStay = random.nextInt (40);
            isPlaying = random.nextBool();
            tellsTempo = random.nextInt (4) > 0;
            tellsPosition = random.nextInt (4) > 0;
            tempo = 60.0 + 0.5 * random.nextInt (240);
        }

        block.isPlaying = isPlaying;

        if (tellsTempo)
            block.tempo = tempo;

        if (tellsPosition)
            block.position = quarterNotes;

        if (isPlaying)
            quarterNotes += block.numSamples / sampleRate * tempo / 60.0;
    }

    juce::Random& random;
    std::array<int, kNumParameters> order;  ///< every parameter gets its turn
    std::size_t nextParameter = 0;
    std::array<bool, kNumParameters> isOn {};
    int blocksToStay = 0;
    bool isPlaying = false, tellsTempo = true, tellsPosition = true;
    double tempo = 120.0, quarterNotes = 0.0;
};

}  // namespace

Session makeSession (double sampleRate, std::int64_t seed)
{
    constexpr int kSizes[] = { 0, 1, 3, 4, 32, 61, 64, 127, 128, 441, 512, 1021, 1024 };

    juce::Random random (seed);
    Session session;
    session.sampleRate = sampleRate;
    session.maxBlock = 1024;
    session.state = makeState (seed);
    session.input = throughFile (synthesise (sampleRate, random), sampleRate);
    SessionWriter writer (random);

    for (int start = 0; start < session.input.getNumSamples();)
    {
        const int size = std::min (kSizes[random.nextInt (static_cast<int> (std::size (kSizes)))],
                                   session.input.getNumSamples() - start);
        session.blocks.push_back (writer.next (size, start, sampleRate));
        start += size;
    }

    return session;
}

Session withoutEvents (Session session)
{
    session.state.reset();

    for (auto& block : session.blocks)
    {
        block.changes.clear();
        block.midi.clear();
    }

    return session;
}
