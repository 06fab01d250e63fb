// SPDX-License-Identifier: AGPL-3.0-or-later
#include "promise_tools.h"

// Promises about what moves and what colours.

Check pitchSways (double low, double high)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset.wetOnly(), tone (500.0, 31.5, 0.1));
        double least = 1e9, most = 0.0;

        for (int second = 1; second <= 30; ++second)
        {
            double swing = 0.0;

            for (const int channel : { 0, 1 })
                if (levelAt (out, channel, second, 1.0) > -70.0)
                {
                    const auto track = pitchTrack (out, channel, 500.0, second, 1.0);
                    swing = std::max (
                        swing, 100.0 * semitones (quantile (track, 0.98) / quantile (track, 0.02)));
                }

            least = std::min (least, swing);
            most = std::max (most, swing);
        }

        return Verdict { least >= low && most <= high,
                         text (least, 0) + " to " + text (most, 0) + " cents" };
    };
}

Check movesEverySecond (double decibels, double pitches)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset, toneCluster (31.5));
        double least = 1e9;

        for (int second = 1; second <= 30; ++second)
        {
            const auto l = levels (out, 0, second, second + 1.0, 0.05),
                       r = levels (out, 1, second, second + 1.0, 0.05);
            std::vector<double> sides (l.size());
            std::transform (l.begin(), l.end(), r.begin(), sides.begin(), std::minus<>());
            double moved = span (sides) / decibels;

            if (pitches > 0.0)
                moved = std::max (moved, span (colours (out, 0, second, second + 1.0)) / pitches);

            least = std::min (least, moved);
        }

        return Verdict { least >= 1.0,
                         text (100.0 * least, 0) + " % of what is asked, in the stillest second" };
    };
}

Check colourTravels (double low, double high, Playing how)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset.wetOnly(), toneCluster (12.0), how);
        double way = 0.0;

        for (const int channel : { 0, 1 })
            if (levelAt (out, channel, 1.0, 11.0) > -60.0)
            {
                const auto track = colours (out, channel, 0.5, 12.0);
                way = std::max (way, quantile (track, 0.97) - quantile (track, 0.03));
            }

        return Verdict { within (way, low, high), text (way) + " semitones" };
    };
}

Check levelSwings (double decibels, double hertz)
{
    return [=] (const Preset& preset)
    {
        constexpr double kWindow = 0.01;
        const auto out = played (preset.wetOnly(), tone (500.0, 9.0, 0.1));
        Verdict verdict { false, {} };

        for (const int channel : { 0, 1 })
        {
            const auto track = levels (out, channel, 1.0, 9.0, kWindow);
            const double swing = quantile (track, 0.95) - quantile (track, 0.08);
            double best = 0.0, rate = 0.0;

            for (double f = 0.3; f < 25.0; f += 0.05)
            {
                double re = 0.0, im = 0.0;

                for (std::size_t i = 0; i < track.size(); ++i)
                {
                    const double value = std::pow (10.0, track[i] / 20.0);
                    const double angle = 2.0 * juce::MathConstants<double>::pi * f * kWindow *
                                         static_cast<double> (i);
                    re += value * std::cos (angle), im += value * std::sin (angle);
                }

                if (const double power = re * re + im * im; power > best)
                    best = power, rate = f;
            }

            verdict.holds =
                verdict.holds ||
                (swing >= decibels && (hertz == 0.0 || std::abs (rate / hertz - 1.0) < 0.08));
            verdict.found += text (swing) + " dB at " + text (rate) + " Hz ";
        }

        return verdict;
    };
}

Check pansAcross (double decibels, double steady)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset, tone (500.0, 9.0, 0.1));
        const auto l = levels (out, 0, 1.0, 9.0, 0.02), r = levels (out, 1, 1.0, 9.0, 0.02);
        std::vector<double> sides, powers;

        for (std::size_t i = 0; i < l.size(); ++i)
        {
            sides.push_back (l[i] - r[i]);
            powers.push_back (
                10.0 * std::log10 (std::pow (10.0, l[i] / 10.0) + std::pow (10.0, r[i] / 10.0)));
        }

        const double toLeft = quantile (sides, 0.97), toRight = quantile (sides, 0.03);
        const double loudnessSwing = quantile (powers, 0.97) - quantile (powers, 0.03);
        return Verdict { toLeft >= decibels && toRight <= -decibels && loudnessSwing <= steady,
                         text (toRight) + " to " + text (toLeft) + " dB, loudness over " +
                             text (loudnessSwing) + " dB" };
    };
}

Check shifts (double leftSemitones, double rightSemitones)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset.wetOnly(), tone (500.0, 5.0, 0.1));
        Verdict verdict { true, {} };

        for (const auto& [channel, wanted] :
             { std::pair (0, leftSemitones), std::pair (1, rightSemitones) })
        {
            std::vector<double> pitches;

            for (double t = 1.0; t < 4.9; t += 0.03)
                pitches.push_back (
                    semitones (peakHertz (spectrumAt (out, t, channel), 300.0, 830.0) / 500.0));

            const double found = median (pitches);
            verdict.holds = verdict.holds && std::abs (found - wanted) < 0.7;
            verdict.found += text (found) + " semitones ";
        }

        return verdict;
    };
}

Check pitchTravels (double low, double high)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset.wetOnly(), tone (500.0, 11.0, 0.1));
        double way = 0.0;

        for (const int channel : { 0, 1 })
        {
            std::vector<double> track;

            for (double t = 1.0; t < 10.5; t += 0.03)
                track.push_back (peakHertz (spectrumAt (out, t, channel), 150.0, 1600.0));

            way = std::max (way, semitones (quantile (track, 0.96) / quantile (track, 0.04)));
        }

        return Verdict { within (way, low, high), text (way) + " semitones" };
    };
}

Check swells (double beats, double decibels)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset.wetOnly(), pinkNoise (10.0));
        const double cycle = beats * 60.0 / kSourceTempo;
        double least = 1e9;

        for (double t = 2.0 * cycle; t + cycle < 9.9; t += cycle)
            if (t > 3.0)
                least = std::min (least, levelAt (out, t + 0.75 * cycle, 0.2 * cycle) -
                                             levelAt (out, t + 0.05 * cycle, 0.2 * cycle));

        return Verdict { least >= decibels, text (least) + " dB in each cycle" };
    };
}

Check rises (double decibels, double pitches)
{
    return [=] (const Preset& preset)
    {
        auto input = toneCluster (6.0);
        input.applyGain (1.4f);
        const auto out = played (preset.wetOnly(), input);
        const double louder = levelAt (out, 4.0, 1.9) - levelAt (out, 0.35, 0.4);
        const double brighter =
            median (colours (out, 0, 4.0, 5.9)) - median (colours (out, 0, 0.35, 0.75, 0.04));
        return Verdict { louder >= decibels && brighter >= pitches,
                         text (louder) + " dB, " + text (brighter) + " semitones" };
    };
}

Check gainOfBand (double lowHertz, double highHertz, double low, double high)
{
    return [=] (const Preset& preset)
    {
        const auto dry = pinkNoise (4.0);
        const auto out = played (preset, dry);
        double change = 0.0;

        for (double t = 0.5; t < 3.5; t += 0.1)
            change += (bandLevel (spectrumAt (out, t), lowHertz, highHertz) -
                       bandLevel (spectrumAt (dry, t), lowHertz, highHertz)) /
                      30.0;

        return Verdict { within (change, low, high),
                         text (change) + " dB at " + text (lowHertz, 0) + " Hz and up" };
    };
}

Check harmonics (double decibels)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset, tone (220.0, 3.0, 0.2));
        double best = -150.0;

        for (double t = 0.5; t < 2.8; t += 0.2)
        {
            const auto spectrum = spectrumAt (out, t);
            best = std::max (best, bandLevel (spectrum, 330.0, 12000.0) -
                                       bandLevel (spectrum, 150.0, 290.0));
        }

        return Verdict { best >= -decibels, text (best) + " dB" };
    };
}

Check wide (double correlation)
{
    return [=] (const Preset& preset)
    {
        const auto out = played (preset, pinkNoise (6.0));
        double both = 0.0, l = 0.0, r = 0.0;

        for (int i = framesIn (1.0); i < out.getNumSamples(); ++i)
        {
            const auto a = static_cast<double> (out.getSample (0, i)),
                       b = static_cast<double> (out.getSample (1, i));
            both += a * b, l += a * a, r += b * b;
        }

        const double found = both / std::sqrt (l * r);
        return Verdict { found <= correlation, "correlation " + text (found, 2) };
    };
}
