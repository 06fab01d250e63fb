// SPDX-License-Identifier: AGPL-3.0-or-later
#include "sound_measures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numeric>

namespace
{
constexpr double kPi = juce::MathConstants<double>::pi;
constexpr double kSilence = 1e-15;  // power, -150 dB

double powerToDb (double power)
{
    return 10.0 * std::log10 (std::max (power, kSilence));
}

/** One biquad of BS.1770-4 in direct form II. */
struct Biquad
{
    double b0, b1, b2, a1, a2, s1 = 0.0, s2 = 0.0;

    double operator() (double x)
    {
        const double w = x - a1 * s1 - a2 * s2;
        const double y = b0 * w + b1 * s1 + b2 * s2;
        s2 = std::exchange (s1, w);
        return y;
    }
};

/** The K-weighted channel; the coefficients are BS.1770-4's tables 1 and 2, for 48 kHz. */
std::vector<double> weighted (const float* samples, int n)
{
    Biquad shelf { 1.53512485958697, -2.69169618940638, 1.19839281085285, -1.69065929318241,
                   0.73248077421585 };
    Biquad highpass { 1.0, -2.0, 1.0, -1.99004745483398, 0.99007225036621 };
    std::vector<double> out (static_cast<std::size_t> (n));
    std::transform (samples, samples + n, out.begin(),
                    [&] (float x) { return highpass (shelf (static_cast<double> (x))); });
    return out;
}

double energy (std::span<const double> samples)
{
    return std::transform_reduce (samples.begin(), samples.end(), 0.0, std::plus<>(),
                                  [] (double x) { return x * x; });
}

/** Mean square of the K-weighted channel within a part of the sound. */
double weightedPower (const Sound& sound, int channel, int start, int n)
{
    return energy (weighted (sound.getReadPointer (channel, start), n)) / n;
}

double lufs (double power)
{
    return power > 0.0 ? std::max (-120.0, -0.691 + 10.0 * std::log10 (power)) : -120.0;
}

void transform (std::vector<std::complex<double>>& x)
{
    const std::size_t n = x.size();

    for (std::size_t i = 1, j = 0; i < n; ++i)
    {
        std::size_t bit = n >> 1;

        for (; (j & bit) != 0; bit >>= 1)
            j ^= bit;

        j ^= bit;

        if (i < j)
            std::swap (x[i], x[j]);
    }

    for (std::size_t half = 1; half < n; half *= 2)
    {
        const auto step = std::polar (1.0, -kPi / static_cast<double> (half));

        for (std::size_t i = 0; i < n; i += 2 * half)
        {
            std::complex<double> turn = 1.0;

            for (std::size_t k = i; k < i + half; ++k, turn *= step)
            {
                const auto odd = turn * x[k + half];
                x[k + half] = x[k] - odd;
                x[k] += odd;
            }
        }
    }
}
}  // namespace

double loudness (const Sound& sound, int start, int n)
{
    return lufs (weightedPower (sound, 0, start, n) + weightedPower (sound, 1, start, n));
}

double loudness (const Sound& sound)
{
    const int n = sound.getNumSamples(), block = framesIn (0.4), hop = framesIn (0.1);
    const auto left = weighted (sound.getReadPointer (0), n),
               right = weighted (sound.getReadPointer (1), n);
    std::vector<double> powers;

    for (int start = 0; start + block <= n; start += hop)
    {
        const auto part = [&] (const std::vector<double>& channel)
        {
            return energy (std::span (channel).subspan (static_cast<std::size_t> (start),
                                                        static_cast<std::size_t> (block))) /
                   block;
        };
        powers.push_back (part (left) + part (right));
    }

    const auto meanAbove = [&powers] (double gate)
    {
        double sum = 0.0;
        int count = 0;

        for (const double power : powers)
            if (lufs (power) > gate)
                sum += power, ++count;

        return count > 0 ? sum / count : 0.0;
    };

    return lufs (meanAbove (lufs (meanAbove (-70.0)) - 10.0));
}

double truePeak (const Sound& sound)
{
    constexpr int kTaps = 12, kPhases = 4;  // 48 in all
    static const auto coefficients = []
    {
        std::array<std::array<float, kTaps>, kPhases> rows {};

        for (int phase = 0; phase < kPhases; ++phase)
            for (int tap = 0; tap < kTaps; ++tap)
            {
                const double x = tap - (kTaps / 2 - 1) - phase / static_cast<double> (kPhases);
                const double window = 0.5 + 0.5 * std::cos (kPi * x / (kTaps / 2));
                rows[static_cast<std::size_t> (phase)][static_cast<std::size_t> (tap)] =
                    static_cast<float> (x == 0.0 ? 1.0 : window * std::sin (kPi * x) / (kPi * x));
            }

        return rows;
    }();

    const float loud = 0.5f * sound.getMagnitude (0, sound.getNumSamples());
    float top = 0.0f;

    for (int channel = 0; channel < 2; ++channel)
    {
        const auto* const samples = sound.getReadPointer (channel);

        for (int i = 0; i + kTaps <= sound.getNumSamples(); ++i)
            if (std::max (std::abs (samples[i + kTaps / 2 - 1]),
                          std::abs (samples[i + kTaps / 2])) >= loud)
                for (const auto& row : coefficients)
                    top = std::max (top, std::abs (std::inner_product (row.begin(), row.end(),
                                                                       samples + i, 0.0f)));
    }

    return juce::Decibels::gainToDecibels (static_cast<double> (top), -150.0);
}

int clippedRuns (const Sound& sound)
{
    int runs = 0;

    for (int channel = 0; channel < 2; ++channel)
        for (int i = 0, length = 0; i < sound.getNumSamples(); ++i)
        {
            length = std::abs (sound.getSample (channel, i)) >= 0.9999f ? length + 1 : 0;
            runs += length == 3 ? 1 : 0;
        }

    return runs;
}

double balance (const Sound& sound, int start, int n)
{
    return powerToDb (weightedPower (sound, 0, start, n)) -
           powerToDb (weightedPower (sound, 1, start, n));
}

double monoLoss (const Sound& sound, int start, int n)
{
    Sound mono (2, n);

    for (int channel = 0; channel < 2; ++channel)
    {
        mono.copyFrom (channel, 0, sound, 0, start, n);
        mono.addFrom (channel, 0, sound, 1, start, n);
    }

    mono.applyGain (0.5f);
    return loudness (mono, 0, n) - loudness (sound, start, n);
}

double levelAt (const Sound& sound, int channel, double seconds, double length)
{
    const double rms =
        static_cast<double> (sound.getRMSLevel (channel, framesIn (seconds), framesIn (length)));
    return powerToDb (rms * rms);
}

double levelAt (const Sound& sound, double seconds, double length)
{
    const double left = levelAt (sound, 0, seconds, length),
                 right = levelAt (sound, 1, seconds, length);
    return powerToDb (0.5 * (std::pow (10.0, left / 10.0) + std::pow (10.0, right / 10.0)));
}

double secondsUntilBelow (const Sound& sound, double from, double reference, double decibels)
{
    constexpr double kWindow = 0.2;
    const double end = sound.getNumSamples() / kSoundRate;
    double last = from;

    for (double t = from; t + kWindow <= end; t += kWindow)
        if (levelAt (sound, t, kWindow) > reference - decibels)
            last = t + kWindow;

    return last - from;
}

std::vector<double> spectrumAt (const Sound& sound, double seconds, int channel, int size)
{
    const int start = framesIn (seconds);
    std::vector<double> power (static_cast<std::size_t> (size) / 2);

    for (int c = 0; c < 2; ++c)
    {
        if (channel >= 0 && c != channel)
            continue;

        std::vector<std::complex<double>> x (static_cast<std::size_t> (size));

        for (int i = 0; i < size && start + i < sound.getNumSamples(); ++i)
            x[static_cast<std::size_t> (i)] = static_cast<double> (sound.getSample (c, start + i)) *
                                              (0.5 - 0.5 * std::cos (2.0 * kPi * i / size));

        transform (x);

        for (std::size_t k = 0; k < power.size(); ++k)
            power[k] += std::norm (x[k]) / (0.375 * size * size / 2.0);
    }

    return power;
}

double centroid (std::span<const double> spectrum)
{
    const double step = kSoundRate / (2.0 * static_cast<double> (spectrum.size()));
    double sum = 0.0, weight = kSilence;

    for (std::size_t k = 1; k < spectrum.size(); ++k)
        if (const double hertz = step * static_cast<double> (k); hertz >= 40.0 && hertz <= 16000.0)
        {
            sum += spectrum[k] * std::log (hertz);
            weight += spectrum[k];
        }

    return std::exp (sum / weight);
}

double peakHertz (std::span<const double> spectrum, double low, double high)
{
    const double step = kSoundRate / (2.0 * static_cast<double> (spectrum.size()));
    const auto first = static_cast<std::ptrdiff_t> (low / step),
               last = static_cast<std::ptrdiff_t> (high / step);
    const auto top = std::max_element (spectrum.begin() + first, spectrum.begin() + last + 1);
    const auto k = static_cast<std::size_t> (top - spectrum.begin());

    if (k == 0 || k + 1 >= spectrum.size())
        return step * static_cast<double> (k);

    const double a = powerToDb (spectrum[k - 1]), b = powerToDb (spectrum[k]),
                 c = powerToDb (spectrum[k + 1]);
    const double bend = a - 2.0 * b + c;
    return step * (static_cast<double> (k) + (bend < 0.0 ? 0.5 * (a - c) / bend : 0.0));
}

double bandLevel (std::span<const double> spectrum, double low, double high)
{
    const double step = kSoundRate / (2.0 * static_cast<double> (spectrum.size()));
    double sum = 0.0;

    for (auto k = static_cast<std::size_t> (low / step);
         k < spectrum.size() && static_cast<double> (k) * step < high; ++k)
        sum += spectrum[k];

    return powerToDb (sum);
}

std::vector<double> pitchTrack (const Sound& sound, int channel, double hertz, double start,
                                double seconds)
{
    constexpr double kStep = 0.01;
    std::vector<double> track;
    std::complex<double> last = 0.0;

    for (double t = start; t + kStep <= start + seconds; t += kStep)
    {
        std::complex<double> sum = 0.0;
        const int first = framesIn (t), n = 2 * framesIn (kStep);

        for (int i = 0; i < n && first + i < sound.getNumSamples(); ++i)
            sum += static_cast<double> (sound.getSample (channel, first + i)) *
                   (0.5 - 0.5 * std::cos (2.0 * kPi * i / n)) *
                   std::polar (1.0, -2.0 * kPi * hertz * (first + i) / kSoundRate);

        if (last != 0.0)
            track.push_back (hertz + std::arg (sum / last) / (2.0 * kPi * kStep));

        last = sum;
    }

    return track;
}

double semitones (double ratio)
{
    return 12.0 * std::log2 (ratio);
}
