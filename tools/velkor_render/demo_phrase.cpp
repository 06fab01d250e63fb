// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/demo_phrase.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace
{
constexpr int kBars = 4;
constexpr int kStepsPerBar = 16;
constexpr double kTwoPi = juce::MathConstants<double>::twoPi;

/** Who plays on which of a bar's sixteenths: 'x' loud, '-' soft. */
struct BarPattern
{
    const char *kick, *snare, *hat;
};

// clang-format off
constexpr BarPattern kDrums[kBars] = {
    { "x.......  x.-.....", "....x...  ....x...", "-.x.-.x.  -.x.-.x-" },
    { "x......-  x.......", "....x...  ....x..-", "-.x.-.x.  -.x.-.x." },
    { "x.......  x.-.....", "....x...  ....x...", "-.x.-.x.  -.x.-.x-" },
    { "x......-  x.......", "....x...  ....x...", "-.x.-.x.  -......." },
};
// clang-format on

/** A bar's harmony, as MIDI notes: D minor 9, B flat major 9, G minor 7, A 7 sus 4. */
struct Chord
{
    int bass;
    std::array<int, 5> notes;
};

constexpr Chord kChords[kBars] = {
    { 38, { 50, 53, 57, 60, 64 } },
    { 34, { 46, 53, 57, 60, 62 } },
    { 31, { 43, 53, 58, 62, 65 } },
    { 33, { 45, 52, 55, 62, 64 } },
};

double hertzOf (int note)
{
    return 440.0 * std::exp2 ((note - 69) / 12.0);
}

/** Noise that is the same every time, between two frequencies. */
class Hiss
{
public:
    explicit Hiss (double rateToUse) : rate (rateToUse) {}

    /** Falls off by 6 dB per octave below lowHertz and above highHertz. */
    double next (double lowHertz, double highHertz)
    {
        state = state * 1664525u + 1013904223u;  // Numerical Recipes' "quick and dirty" generator
        const double white = static_cast<double> (state >> 8) / 8388608.0 - 1.0;
        below += (1.0 - std::exp (-kTwoPi * highHertz / rate)) * (white - below);
        slow += (1.0 - std::exp (-kTwoPi * lowHertz / rate)) * (below - slow);
        return below - slow;
    }

private:
    double rate;
    std::uint32_t state = 2463534242u;
    double below = 0.0;
    double slow = 0.0;
};

/** Mixes voices into a buffer. A voice is a function of the seconds since its start. */
class Mixer
{
public:
    Mixer (juce::AudioBuffer<float>& target, double rateToUse) : mix (target), rate (rateToUse) {}

    /** pan is -1 (left) to 1. */
    template <typename Voice>
    void add (double startSeconds, double seconds, double level, double pan, Voice voice)
    {
        const int start = static_cast<int> (startSeconds * rate);
        const int end = std::min (start + static_cast<int> (seconds * rate), mix.getNumSamples());
        const double angle = (pan + 1.0) * kTwoPi / 8.0;
        const float left = static_cast<float> (level * std::cos (angle));
        const float right = static_cast<float> (level * std::sin (angle));

        for (int i = start; i < end; ++i)
        {
            const float sample = static_cast<float> (voice ((i - start) / rate));
            mix.addSample (0, i, left * sample);
            mix.addSample (1, i, right * sample);
        }
    }

private:
    juce::AudioBuffer<float>& mix;
    double rate;
};

// --- the voices; all levels, times and modulation depths are taste -------------------------------------

void addKick (Mixer& mixer, double start, double level)
{
    // A sine that falls from 160 to 48 Hz; the phase is the integral of that.
    mixer.add (start, 0.8, 0.9 * level, 0.0,
               [] (double t)
               {
                   const double phase = 48.0 * t + 112.0 / 38.0 * (1.0 - std::exp (-38.0 * t));
                   return std::sin (kTwoPi * phase) * std::exp (-9.0 * t);
               });
}

void addSnare (Mixer& mixer, Hiss& hiss, double start, double level)
{
    mixer.add (start, 0.45, 0.5 * level, -0.1,
               [&hiss] (double t)
               {
                   return 0.9 * hiss.next (600.0, 5000.0) * std::exp (-19.0 * t) +
                          0.6 * std::sin (kTwoPi * 188.0 * t) * std::exp (-26.0 * t);
               });
}

void addHat (Mixer& mixer, Hiss& hiss, double start, double level)
{
    mixer.add (start, 0.14, 0.3 * level, 0.35,
               [&hiss] (double t) { return hiss.next (6000.0, 11000.0) * std::exp (-65.0 * t); });
}

/** Two-operator frequency modulation, whose brightness dies away first: an electric piano. */
void addPiano (Mixer& mixer, double start, double seconds, double hertz, double level, double pan)
{
    mixer.add (start, seconds + 0.12, level, pan,
               [hertz, seconds] (double t)
               {
                   const double attack = std::min (1.0, t / 0.004);
                   const double release = t < seconds ? 1.0 : 1.0 - (t - seconds) / 0.12;
                   const double tine =
                       0.12 * std::sin (kTwoPi * 7.0 * hertz * t) * std::exp (-18.0 * t);
                   const double bend = 1.7 * std::exp (-5.0 * t) * std::sin (kTwoPi * hertz * t);
                   return attack * release * std::exp (-1.9 * t) *
                          (std::sin (kTwoPi * hertz * t + bend) + tine);
               });
}

void addBass (Mixer& mixer, double start, double seconds, double hertz)
{
    mixer.add (start, seconds, 0.36, 0.0,
               [hertz, seconds] (double t)
               {
                   const double edge = std::min ({ 1.0, t / 0.006, (seconds - t) / 0.03 });
                   const double phase = kTwoPi * hertz * t;
                   return edge * std::exp (-1.2 * t) *
                          (std::sin (phase) + 0.35 * std::sin (2.0 * phase) +
                           0.12 * std::sin (3.0 * phase));
               });
}

// --- the phrase ----------------------------------------------------------------------------------------

void addDrums (Mixer& mixer, Hiss hiss, double step)
{
    for (int bar = 0; bar < kBars; ++bar)
    {
        const auto levelAt = [] (const char* pattern, int i)
        {
            const char hit = pattern[i < 8 ? i : i + 2];  // two blanks between the halves
            return hit == 'x' ? 1.0 : (hit == '-' ? 0.45 : 0.0);
        };

        for (int i = 0; i < kStepsPerBar; ++i)
        {
            const double start = (bar * kStepsPerBar + i) * step;

            if (const double level = levelAt (kDrums[bar].kick, i); level > 0.0)
                addKick (mixer, start, level);

            if (const double level = levelAt (kDrums[bar].snare, i); level > 0.0)
                addSnare (mixer, hiss, start, level);

            if (const double level = levelAt (kDrums[bar].hat, i); level > 0.0)
                addHat (mixer, hiss, start, level);
        }
    }
}

void addHarmony (Mixer& mixer, double step)
{
    for (int bar = 0; bar < kBars; ++bar)
    {
        const auto& chord = kChords[bar];
        const double start = bar * kStepsPerBar * step;
        const bool isLast = bar == kBars - 1;

        for (std::size_t i = 0; i < chord.notes.size(); ++i)
        {
            const double hertz = hertzOf (chord.notes[i]);
            const double pan = -0.4 + 0.2 * static_cast<double> (i);
            const double strum = 0.006 * static_cast<double> (i);
            addPiano (mixer, start + strum, 5.5 * step, hertz, 0.17, pan);

            if (! isLast)  // the last bar ends in a rest, for the echoes
                addPiano (mixer, start + 11.0 * step + strum, 1.5 * step, hertz, 0.14, pan);
        }

        addBass (mixer, start, 5.0 * step, hertzOf (chord.bass));
        addBass (mixer, start + 6.0 * step, 1.5 * step, hertzOf (chord.bass + 12));

        if (! isLast)
            addBass (mixer, start + 10.0 * step, 3.0 * step, hertzOf (chord.bass));
    }
}
}  // namespace

juce::AudioBuffer<float> demoPhrase (double rate, double tempo)
{
    constexpr float kPeak = 0.5012f;  // -6 dBFS
    const double step = 60.0 / tempo / 4.0;
    juce::AudioBuffer<float> phrase (2, static_cast<int> (kBars * kStepsPerBar * step * rate));
    phrase.clear();

    Mixer mixer (phrase, rate);
    addDrums (mixer, Hiss (rate), step);
    addHarmony (mixer, step);
    phrase.applyGain (kPeak / phrase.getMagnitude (0, phrase.getNumSamples()));
    return phrase;
}
