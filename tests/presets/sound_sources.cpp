// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sound_sources.h"

#include "sound_measures.h"
#include "support/duel.h"

#include <array>
#include <cmath>

namespace
{
constexpr double kTwoPi = juce::MathConstants<double>::twoPi;
constexpr double kBeat = 60.0 / kSourceTempo;  // seconds

/** Adds a voice, a function of the seconds since its start; pan is -1 (left) to 1. */
template <typename Voice>
void add (Sound& sound, double start, double seconds, double pan, Voice voice)
{
    const int first = framesIn (start);
    const int n = std::min (framesIn (seconds), sound.getNumSamples() - first);

    for (int i = 0; i < n; ++i)
    {
        const double value = voice (i / kSoundRate);
        sound.addSample (0, first + i, static_cast<float> (value * std::min (1.0, 1.0 - pan)));
        sound.addSample (1, first + i, static_cast<float> (value * std::min (1.0, 1.0 + pan)));
    }
}

double hertzOf (double note)
{
    return 440.0 * std::exp2 ((note - 69.0) / 12.0);
}

/** A string: harmonics that fall and die faster the higher they are. */
auto pluckOf (double hertz, double peak, double bright = 1.0)
{
    return [=] (double t)
    {
        double sum = 0.0;

        for (int k = 1; k <= 14 && k * hertz < 12000.0; ++k)
            sum += std::sin (kTwoPi * hertz * k * t) * std::pow (k, -1.0 / bright) *
                   std::exp (-t * (2.0 + 0.8 * k));

        return 0.4 * peak * sum * std::min (1.0, t / 0.002);
    };
}

Sound drums()
{
    auto sound = silence (kPhraseSeconds);
    Noise noise (11);
    double last = 0.0, low = 0.0;
    const auto hiss = [&noise, &last]
    {
        const double now = static_cast<double> (noise());
        return now - std::exchange (last, now);  // +6 dB an octave
    };
    const auto rattle = [&noise, &low]
    { return low += 0.35 * (static_cast<double> (noise()) - low); };

    for (int step = 0; step * kBeat / 4.0 < kPhraseSeconds - 0.05; ++step)
    {
        const double start = step * kBeat / 4.0;
        const int place = step % 16;

        if (place == 0 || place == 6 || place == 8 || place == 13)
            add (sound, start, 0.3, 0.0,
                 [] (double t)
                 {
                     const double phase = 48.0 * t + 3.2 * (1.0 - std::exp (-t / 0.03));
                     return 1.05 * std::sin (kTwoPi * phase) * std::exp (-t / 0.09);
                 });

        if (place == 4 || place == 12)
            add (sound, start, 0.25, 0.1,
                 [&rattle] (double t)
                 {
                     return 1.9 * rattle() * std::exp (-t / 0.06) +
                            0.7 * (std::sin (kTwoPi * 190.0 * t) + std::sin (kTwoPi * 332.0 * t)) *
                                std::exp (-t / 0.07);
                 });

        if (place % 2 == 0 || place == 15)
            add (sound, start, 0.08, place % 4 == 0 ? -0.3 : 0.25,
                 [&hiss, place] (double t)
                 { return (place % 4 == 2 ? 0.13 : 0.08) * hiss() * std::exp (-t / 0.018); });
    }

    // Peaks rounded as on a drum bus.
    const float top = sound.getMagnitude (0, sound.getNumSamples());

    for (int channel = 0; channel < 2; ++channel)
        for (int n = 0; n < sound.getNumSamples(); ++n)
            sound.setSample (channel, n, std::tanh (1.25f * sound.getSample (channel, n) / top));

    return sound;
}

Sound melody()
{
    auto sound = silence (kPhraseSeconds);
    constexpr std::array notes {
        52, 59, 64, 55, 62, 67, 50, 57, 66, 69, 52, 64, 71, 59, 55, 52, 62
    };
    Noise noise (12);

    for (std::size_t i = 0; i < notes.size(); ++i)
    {
        const double start =
            0.33 * static_cast<double> (i) + 0.03 * static_cast<double> (noise.unit());
        add (sound, start, 1.2, 0.0,
             pluckOf (hertzOf (notes[i]), 0.5 + 0.5 * static_cast<double> (noise.unit())));
    }

    return sound;
}

Sound chords()
{
    auto sound = silence (kPhraseSeconds);
    constexpr int roots[] = { 50, 46, 53, 48 };

    for (int i = 0; i < 8; ++i)
        for (const int interval : { 0, 7, 12, 15, 22 })
            add (sound, i * 0.72, 1.4, 0.05 * (interval - 12),
                 [hertz = hertzOf (roots[i / 2] + interval),
                  loud = i % 2 == 0 ? 0.2 : 0.12] (double t)
                 {
                     const double bell =
                         0.7 * std::exp (-t / 0.25) * std::sin (kTwoPi * 2.0 * hertz * t);
                     return loud * std::sin (kTwoPi * hertz * t + bell) * std::exp (-t / 0.7) *
                            std::min (1.0, t / 0.004);
                 });

    return sound;
}

Sound pad()
{
    auto sound = silence (kPhraseSeconds);
    constexpr int roots[] = { 45, 41 };

    for (int i = 0; i < 2; ++i)
        for (const int interval : { 0, 12, 16, 19, 23 })
            for (const double detune : { -0.06, 0.05 })
                add (sound, 3.0 * i, 3.0, detune * 9.0,
                     [hertz = hertzOf (roots[i] + interval + detune), detune] (double t)
                     {
                         double sum = 0.0;

                         for (int k = 1; k <= 20 && k * hertz < 6000.0; ++k)
                             sum += std::sin (kTwoPi * hertz * k * t + k + 40.0 * detune) /
                                    (k * (1.0 + 0.06 * k));

                         return sum * std::min ({ 1.0, t / 0.5, (3.0 - t) / 0.4 });
                     });

    return sound;
}

/** Pulses through three formants that move from vowel to vowel, some four syllables a second. */
Sound voice()
{
    auto sound = silence (kPhraseSeconds);
    constexpr double vowels[][3] = { { 730, 1090, 2440 },
                                     { 270, 2290, 3010 },
                                     { 570, 840, 2410 },
                                     { 530, 1840, 2480 },
                                     { 300, 870, 2240 } };
    Noise noise (13);
    double phase = 0.0, state[3][2] = {};

    for (int i = 0; i < sound.getNumSamples(); ++i)
    {
        const double t = i / kSoundRate, place = t / 0.24;
        const auto syllable = static_cast<int> (place);
        const double in = place - syllable;
        const bool pause = syllable % 7 == 6;
        const double loud = pause ? 0.0 : std::min ({ 1.0, in / 0.15, (1.0 - in) / 0.3 });
        phase += (118.0 + 18.0 * std::sin (1.9 * t) + 9.0 * std::sin (7.0 * t)) / kSoundRate;
        const bool pulse = phase >= 1.0;
        phase -= std::floor (phase);
        const double breath = static_cast<double> (noise());
        const double excitation =
            (pulse ? 1.0 : 0.0) + (in < 0.12 && ! pause ? 0.12 : 0.004) * breath;
        double sum = 0.08 * excitation;

        for (int formant = 0; formant < 3; ++formant)
        {
            const double from = vowels[syllable % 5][formant],
                         to = vowels[(syllable + 1) % 5][formant];
            const double hertz = from + (to - from) * std::max (0.0, in - 0.6) / 0.4;
            const double r =
                std::exp (-juce::MathConstants<double>::pi * (70.0 + 40.0 * formant) / kSoundRate);
            const double y = excitation * (1.0 - r) * 6.0 +
                             2.0 * r * std::cos (kTwoPi * hertz / kSoundRate) * state[formant][0] -
                             r * r * state[formant][1];
            state[formant][1] = std::exchange (state[formant][0], y);
            sum += y / (1.0 + formant);
        }

        sound.setSample (0, i, static_cast<float> (loud * sum));
        sound.setSample (1, i, static_cast<float> (loud * sum));
    }

    return sound;
}
}  // namespace

int framesIn (double seconds)
{
    return static_cast<int> (std::lround (seconds * kSoundRate));
}

Sound silence (double seconds)
{
    Sound sound (2, framesIn (seconds));
    sound.clear();
    return sound;
}

Sound followedBySilence (const Sound& sound, double seconds)
{
    auto longer = sound;
    longer.setSize (2, sound.getNumSamples() + framesIn (seconds), true, true);
    return longer;
}

const std::vector<Source>& soundSources()
{
    static const auto sources = []
    {
        std::vector<Source> all { { "drums", drums() },
                                  { "pluck", melody() },
                                  { "chords", chords() },
                                  { "pad", pad() },
                                  { "voice", voice() } };

        for (auto& source : all)
            source.sound.applyGain (juce::Decibels::decibelsToGain (
                static_cast<float> (-18.0 - loudness (source.sound))));

        return all;
    }();

    return sources;
}

Sound tone (double hertz, double seconds, double peak)
{
    auto sound = silence (seconds);
    add (sound, 0.0, seconds, 0.0,
         [=] (double t)
         {
             return peak * std::sin (kTwoPi * hertz * t) *
                    std::min ({ 1.0, t / 0.01, (seconds - t) / 0.01 });
         });
    return sound;
}

Sound toneCluster (double seconds)
{
    auto sound = silence (seconds);

    for (int i = 0; i < 14; ++i)
        add (sound, 0.0, seconds, 0.0,
             [hertz = 80.0 * std::exp2 (0.5 * i), i] (double t)
             { return 0.04 * std::sin (kTwoPi * hertz * t + i * i); });

    return sound;
}

Sound pinkNoise (double seconds)
{
    auto sound = silence (seconds);
    Noise noise (14);
    std::array<double, 16> rows {};

    for (int i = 0; i < sound.getNumSamples(); ++i)  // row k is drawn anew each 2^k samples
    {
        double sum = static_cast<double> (noise());

        for (std::size_t k = 0; k < rows.size(); ++k)
        {
            if (i % (1 << k) == 0)
                rows[k] = static_cast<double> (noise());

            sum += rows[k];
        }

        sound.setSample (0, i, static_cast<float> (0.042 * sum));
        sound.setSample (1, i, static_cast<float> (0.042 * sum));
    }

    return sound;
}

Sound burst (double seconds, int side, double peak)
{
    auto sound = silence (seconds);
    Noise noise (15);
    add (sound, 0.0, 0.004, 0.0,
         [&noise, peak] (double) { return peak * static_cast<double> (noise()); });

    if (side < 2)
        sound.clear (1 - side, 0, sound.getNumSamples());

    return sound;
}

Sound plucks (const std::vector<double>& peaks, double every)
{
    auto sound = silence (every * static_cast<double> (peaks.size()));

    for (std::size_t i = 0; i < peaks.size(); ++i)
        add (sound, every * static_cast<double> (i), every, 0.0, pluckOf (196.0, peaks[i], 1.5));

    return sound;
}
