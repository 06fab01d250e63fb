// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine_globals.h"
#include "engine/filter_multimode.h"
#include "velkor_plots/curves.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <string>
#include <vector>

namespace
{
constexpr std::size_t kResponseSamples = 32768;  ///< longer than anything here rings
constexpr double kLowest = 40.0, kHighest = 18000.0;

/** The filter's answer to an impulse that is too small for its limiter to matter. */
std::vector<double> impulseResponse (double rate, double freq, double reso, double mode)
{
    constexpr float kSmall = 1.0e-4f;
    setAudioSamplingRate (rate);

    FilterMultimode filter;
    filter_multimode_init (filter);
    filter_multimode_set_response (filter, static_cast<float> (reso), static_cast<float> (mode));
    setCoef (filter, static_cast<float> (freq));
    setDamp (filter);

    std::vector<double> response (kResponseSamples);

    for (std::size_t n = 0; n < kResponseSamples; ++n)
    {
        filter_multimode_dsp_morph (filter, n == 0 ? kSmall : 0.0f);
        response[n] = static_cast<double> (filter.out) / static_cast<double> (kSmall);
    }

    return response;
}

/** Gain at one frequency: the sum of the response turned by the frequency's angle, one factor a sample. */
double gainAt (const std::vector<double>& response, double hertz, double rate)
{
    const double angle = 2.0 * std::numbers::pi * hertz / rate;
    const double turnRe = std::cos (angle), turnIm = -std::sin (angle);
    double re = 1.0, im = 0.0, sumRe = 0.0, sumIm = 0.0;

    for (const double sample : response)
    {
        sumRe += sample * re;
        sumIm += sample * im;
        const double next = re * turnRe - im * turnIm;
        im = re * turnIm + im * turnRe;
        re = next;
    }

    return std::hypot (sumRe, sumIm);
}

/** The frequency that far along, from 0 to 1, in equal ratios. */
double between (double low, double high, double place)
{
    return low * std::pow (high / low, place);
}

void printResponse (const std::string& name, double reso, double mode)
{
    constexpr int kPoints = 480;
    const auto response = impulseResponse (kPlotRate, 1000.0, reso, mode);
    beginCurve (name.c_str());

    for (int i = 0; i <= kPoints; ++i)
    {
        const double hertz = between (kLowest, kHighest, static_cast<double> (i) / kPoints);
        point (hertz, 20.0 * std::log10 (std::max (gainAt (response, hertz, kPlotRate), 1.0e-6)));
    }

    endCurve();
}

/** Where a gain is highest: the best of a few frequencies, looked for again around it, finer. */
double peakOf (const std::vector<double>& response, double rate)
{
    constexpr int kSteps = 40;
    double low = 0.5 * kLowest, high = 1.2 * kHighest, best = low;

    for (int round = 0; round < 3; ++round)
    {
        double most = -1.0;
        const double ratio = std::pow (high / low, 1.0 / kSteps);

        for (int i = 0; i <= kSteps; ++i)
        {
            const double hertz = low * std::pow (ratio, i);
            const double gain = gainAt (response, hertz, rate);

            if (gain > most)
            {
                most = gain;
                best = hertz;
            }
        }

        low = best / ratio;
        high = best * ratio;
    }

    return best;
}
}  // namespace

void printFilterMorph()
{
    constexpr std::array names { "Notch",    "Ntch/LP", "Lowpass", "LP/BP",
                                 "Bandpass", "BP/HP",   "Highpass" };

    for (std::size_t i = 0; i < names.size(); ++i)
        printResponse (names[i], 3.0, static_cast<double> (i) / 6.0);
}

void printFilterResonance()
{
    for (const double reso : { 0.0, 1.0, 3.0, 6.0, 9.0 })
        printResponse (std::to_string (static_cast<int> (reso)), reso, 1.0 / 3.0);
}

void printFilterReach()
{
    constexpr int kPoints = 48;

    for (const int rate : { 44100, 48000, 96000, 192000 })
    {
        beginCurve (std::to_string (rate).c_str());

        for (int i = 0; i <= kPoints; ++i)
        {
            const double shown = between (kLowest, kHighest, static_cast<double> (i) / kPoints);
            // The bandpass rings longest at its own frequency: that is where it stands.
            point (shown, peakOf (impulseResponse (rate, shown, 6.0, 2.0 / 3.0), rate));
        }

        endCurve();
    }
}
