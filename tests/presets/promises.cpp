// SPDX-License-Identifier: AGPL-3.0-or-later
#include "promise_tools.h"

// Promises about echoes, ringing and touch.

namespace
{
Verdict echoesIn (const Sound& sound, const std::vector<Echo>& echoes, double secondsPerPlace)
{
    double top = -150.0;

    for (double t = 0.002; t < 2.0; t += 0.002)
        top = std::max (top, levelAt (sound, t, 0.002));

    for (const auto& echo : echoes)
    {
        const double due = echo.place * secondsPerPlace;
        const auto heard = [&sound, side = echo.side] (double t)
        { return side == either ? levelAt (sound, t, 0.002) : levelAt (sound, side, t, 0.002); };
        double loudest = -150.0, at = 0.0, before = -150.0, other = -150.0;

        for (double t = due - 0.030; t < due + 0.030; t += 0.001)
        {
            const double level = heard (t);

            if (level > loudest)
                loudest = level, at = t;

            if (t < due - 0.008)
                before = std::max (before, level);
        }

        for (double t = at - 0.003; t < at + 0.003; t += 0.001)
            other = std::max (other, levelAt (sound, echo.side == left ? 1 : 0, t, 0.002));

        // The burst is 4 ms long: its loudest 2 ms may start up to 2 ms late.
        if (std::abs (at - due - 0.001) > 0.005 || loudest < before + 6.0 || loudest < top - 45.0)
            return { false, text (due * 1000.0, 0) + " ms: loudest at " + text (at * 1000.0, 0) +
                                " ms, " + text (loudest) + " dB after " + text (before) +
                                " dB, of " + text (top) + " dB" };

        if (echo.side != either && loudest < other + 3.0)
            return { false, text (due * 1000.0, 0) + " ms: " + text (loudest) + " dB, other side " +
                                text (other) };
    }

    return { true, juce::String (static_cast<int> (echoes.size())) + " echoes" };
}

double slowest (const std::vector<Echo>& echoes)
{
    return std::max_element (echoes.begin(), echoes.end(),
                             [] (const Echo& a, const Echo& b) { return a.place < b.place; })
        ->place;
}
}  // namespace

Check allOf (std::vector<Check> checks)
{
    return [checks = std::move (checks)] (const Preset& preset)
    {
        Verdict all { true, {} };

        for (const auto& check : checks)
        {
            const auto one = check (preset);
            all.holds = all.holds && one.holds;
            all.found += (all.found.isEmpty() ? "" : "; ") + one.found;
        }

        return all;
    };
}

Check given (const char* parameter, double value, Check check)
{
    return [=] (const Preset& preset) { return check (preset.with (parameter, value)); };
}

Check echoesOnBeats (std::vector<Echo> echoes)
{
    return [echoes = std::move (echoes)] (const Preset& preset)
    {
        Verdict verdict { false, {} };

        for (const double tempo : { 60.0, 105.0, 174.0 })
        {
            Playing how;
            how.tempo = tempo;
            const double beat = 60.0 / tempo;
            verdict =
                echoesIn (played (preset.wetOnly(), burst (slowest (echoes) * beat + 2.1, 2), how),
                          echoes, beat);

            if (! verdict.holds)
                return Verdict { false, text (tempo, 0) + " bpm, " + verdict.found };
        }

        return verdict;
    };
}

Check echoesAt (std::vector<Echo> echoes)
{
    return [echoes = std::move (echoes)] (const Preset& preset)
    {
        return echoesIn (played (preset.wetOnly(), burst (slowest (echoes) / 1000.0 + 2.1, 2)),
                         echoes, 0.001);
    };
}

Check silentAfter (double seconds)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset.wetOnly(), burst (seconds + 1.0, 2));
        const double top = levelAt (out, 0.0, seconds), rest = levelAt (out, seconds, 1.0);
        return Verdict { rest < top - 50.0,
                         text (rest - top) + " dB after " + text (seconds, 2) + " s" };
    };
}

Check ringsAt (std::vector<double> hertz, double cents, double low, double high)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset.wetOnly(), burst (4.0, 2, 0.3));
        const auto after = spectrumAt (out, 0.08, -1, 16384);
        auto verdict = ringsFor (low, high) (preset);

        for (const double due : hertz)
        {
            const double off = 100.0 * semitones (peakHertz (after, due / 1.06, due * 1.06) / due);
            verdict.found += ", " + text (due, 0) + " Hz " + text (off, 0) + " cents";
            verdict.holds = verdict.holds && std::abs (off) <= cents;
        }

        return verdict;
    };
}

Check ringsFor (double low, double high)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset.wetOnly(), burst (6.0, 2, 0.3));
        double top = -150.0;

        for (double t = 0.0; t < 1.0; t += 0.02)
            top = std::max (top, levelAt (out, t, 0.02));

        double last = 0.0;

        for (double t = 0.0; t < 5.9; t += 0.02)
            if (levelAt (out, t, 0.02) > top - 30.0)
                last = t;

        return Verdict { within (last, low, high), text (last, 2) + " s to -30 dB" };
    };
}

Check tailLasts (double low, double high)
{
    return [=] (const Preset& preset)
    {
        const auto& dry = soundSources()[2].sound;
        const auto out = played (preset, followedBySilence (dry, high + 2.0));
        const double tail =
            secondsUntilBelow (out, kPhraseSeconds, levelAt (dry, 0.0, kPhraseSeconds), 60.0);
        return Verdict { within (tail, low, high), "tail of " + text (tail) + " s" };
    };
}

Check ducks (double low, double high)
{
    return [=] (const Preset& preset)
    {
        double sum = 0.0;

        for (const std::size_t source : { 0u, 2u })  // drums and chords
        {
            // Without the envelope it is the same echo unducked.
            const auto input = followedBySilence (soundSources()[source].sound, 2.0);
            const auto out = played (preset.wetOnly(), input);
            const auto free = played (preset.wetOnly().with ("Env Sensitivity", 0.0), input);
            const auto held = [&] (double from, double n)
            { return levelAt (free, from, n) - levelAt (out, from, n); };
            sum += 0.5 * (held (1.5, 4.0) - held (kPhraseSeconds + 0.7, 1.2));
        }

        return Verdict { within (sum, low, high), "held back by " + text (sum) + " dB" };
    };
}

Check touch (double brighter, double louder, double softest)
{
    return [=] (const Preset& preset)
    {
        const std::vector<double> peaks { 0.5, 0.5, 0.07, 0.07, 0.5, 0.07 };
        const auto dry = plucks (peaks, 1.2);
        const auto out = played (preset.wetOnly(), dry);
        double colour = 0.0, level = 0.0, least = 1e9;

        for (std::size_t i = 1; i < peaks.size(); ++i)
        {
            const double start = 1.2 * static_cast<double> (i),
                         gain = levelAt (out, start, 0.3) - levelAt (dry, start, 0.3);
            const bool loud = peaks[i] > 0.3;
            const double share = loud ? 1.0 / 2.0 : -1.0 / 3.0;
            const double whole = levelAt (out, start, 1.2) - levelAt (dry, start, 1.2);
            double top = -150.0;

            for (double t = 0.0; t < 0.4; t += 0.04)
            {
                const auto spectrum = spectrumAt (out, start + t);
                top = std::max (top, bandLevel (spectrum, 1000.0, 8000.0) -
                                         bandLevel (spectrum, 100.0, 1000.0));
            }

            colour += share * top;
            level += share * whole;
            least = loud ? least : std::min (least, std::max (gain, whole));
        }

        return Verdict { colour >= brighter && level >= louder && least >= softest,
                         "brighter by " + text (colour) + " dB, louder by " + text (level) +
                             " dB; soft ones " + text (least) + " dB" };
    };
}
