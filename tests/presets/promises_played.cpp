// SPDX-License-Identifier: AGPL-3.0-or-later
#include "promise_tools.h"

// Promises to be played: by keys, the wheel, and a preset loaded over another.

Check gateOpens (double low, double high)
{
    return [=] (const Preset& preset)
    {
        Playing how;
        how.midi.push_back ({ 1.0, juce::MidiMessage::noteOn (1, 60, juce::uint8 { 100 }) });
        how.midi.push_back ({ 2.0, juce::MidiMessage::noteOff (1, 60) });
        const auto out = played (preset, tone (500.0, 3.0, 0.1), how);
        const double shut = levelAt (out, 0.3, 0.6), open = levelAt (out, 1.3, 0.6),
                     again = levelAt (out, 2.3, 0.6);
        return Verdict { within (open - shut, low, high) && std::abs (again - shut) < 1.0,
                         text (shut) + ", " + text (open) + ", " + text (again) + " dB" };
    };
}

Check wheelOpens (double pitches)
{
    return [=] (const Preset& preset)
    {
        std::vector<double> colour, level;

        for (const int wheel : { 0, 64, 127 })
        {
            const auto out = played (preset, toneCluster (2.0), withNote (60, wheel));
            colour.push_back (median (colours (out, 0, 0.5, 2.0)));
            level.push_back (levelAt (out, 0.5, 1.4));
        }

        return Verdict { colour[1] > colour[0] && colour[2] > colour[1] &&
                             colour[2] - colour[0] >= pitches && span (level) < 6.0,
                         text (colour[2] - colour[0]) + " semitones, level over " +
                             text (span (level)) + " dB" };
    };
}

Check keysRing (std::vector<int> notes, double cents)
{
    return [=] (const Preset& preset)
    {
        double worst = 0.0;

        for (const int note : notes)
        {
            const double due = juce::MidiMessage::getMidiNoteInHertz (note);
            const auto out = played (preset.wetOnly(), pinkNoise (2.5), withNote (note));
            std::vector<double> mean (8192);

            for (double t = 0.5; t < 2.1; t += 0.1)
            {
                const auto one = spectrumAt (out, t, -1, 16384);
                std::transform (mean.begin(), mean.end(), one.begin(), mean.begin(), std::plus<>());
            }

            const double off = 100.0 * semitones (peakHertz (mean, 40.0, 4000.0) / due);
            worst = std::abs (off) > std::abs (worst) ? off : worst;
        }

        return Verdict { std::abs (worst) <= cents, text (worst, 0) + " cents at worst" };
    };
}

Check keysSetTime()
{
    return [] (const Preset& preset)
    {
        double times[3] = {};

        for (int i = 0; i < 3; ++i)
        {
            auto input = silence (3.0);
            input.copyFrom (0, framesIn (0.5), burst (2.0, 2), 0, 0, framesIn (2.0));
            const auto out = played (preset.wetOnly(), input, withNote (36 + 24 * i));
            double top = -150.0;

            for (double t = 0.51; t < 1.6; t += 0.001)
                if (const double level = levelAt (out, 0, t, 0.004); level > top + 0.5)
                    top = level, times[i] = t - 0.5;
        }

        return Verdict { times[0] > 1.5 * times[1] && times[1] > 1.3 * times[2],
                         text (1000.0 * times[0], 0) + ", " + text (1000.0 * times[1], 0) + ", " +
                             text (1000.0 * times[2], 0) + " ms" };
    };
}

Check noteIsHeld()
{
    return [] (const Preset& preset)
    {
        const auto input = followedBySilence (soundSources()[2].sound, 14.0);
        Playing pour;
        pour.midi.push_back ({ 2.0, juce::MidiMessage::noteOn (1, 60, juce::uint8 { 100 }) });
        pour.midi.push_back ({ 4.0, juce::MidiMessage::noteOff (1, 60) });
        const double kept = levelAt (played (preset, input, pour), 16.0, 3.0);
        const double without = levelAt (played (preset, input), 16.0, 3.0);
        return Verdict { kept > -50.0 && without < kept - 25.0,
                         text (kept) + " dB held, " + text (without) + " dB without" };
    };
}

Check turnsBackwards()
{
    return [] (const Preset& preset)
    {
        // Ramps that rise for 200 ms and break off: backwards they break in and fall.
        constexpr double kLoad = 4.0;
        auto input = silence (6.0);
        Sound ramp = tone (500.0, 0.2, 0.5);
        ramp.applyGainRamp (0, ramp.getNumSamples(), 0.0f, 1.0f);

        for (double t = 0.0; t < kLoad - 0.21; t += 0.25)
            for (const int channel : { 0, 1 })
                input.copyFrom (channel, framesIn (t), ramp, channel, 0, ramp.getNumSamples());

        Playing how;
        how.before = std::make_shared<juce::XmlElement> (*Preset (63).document);
        how.loadAt = kLoad;
        const auto out = played (
            preset.wetOnly().with ("Level 1 Mod", 0.0).with ("Level 2 Mod", 0.0), input, how);

        // How like the half bar's levels are to those of the last half bar, either way round.
        const double length = 2.0 * 60.0 / kSourceTempo;
        const auto heard = levels (out, 0, kLoad + 0.01, kLoad + length - 0.02, 0.005);
        const auto steps = heard.size();
        const auto likeness = [&] (bool backwards)
        {
            double best = -1.0;

            for (double from = kLoad - length - 0.12; from < kLoad - length + 0.12; from += 0.005)
            {
                auto model = levels (input, 0, from, from + length, 0.005);
                model.resize (steps, -150.0);

                if (backwards)
                    std::reverse (model.begin(), model.end());

                double ab = 0.0, aa = 0.0, bb = 0.0;

                for (std::size_t i = 0; i < steps; ++i)
                {
                    const double a = std::pow (10.0, heard[i] / 20.0),
                                 b = std::pow (10.0, model[i] / 20.0);
                    ab += a * b, aa += a * a, bb += b * b;
                }

                best = std::max (best, ab / std::sqrt (aa * bb + 1e-30));
            }

            return best;
        };
        const double back = likeness (true), forth = likeness (false);
        return Verdict { back > 0.9 && back > forth + 0.1, "likeness " + text (back, 2) +
                                                               " backwards, " + text (forth, 2) +
                                                               " forwards" };
    };
}
