// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine_globals.h"
#include "engine/filter_multimode.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace
{

constexpr double kRate = 44100.0;

FilterMultimode filterAt (float cutoffHz, float reso, float mode)
{
    setAudioSamplingRate (kRate);
    FilterMultimode filter;
    filter_multimode_init (filter);
    filter_multimode_set_response (filter, reso, mode);
    setCoef (filter, cutoffHz);
    setDamp (filter);
    return filter;
}

/** Gain in dB at a frequency, from half a second of a quiet sine: quiet, so that the limiter is idle. */
double gainAt (FilterMultimode filter, double frequency)
{
    constexpr int kSettle = 22050;
    constexpr float kLevel = 0.01f;
    double sine = 0.0;
    double cosine = 0.0;

    for (int n = 0; n < 2 * kSettle; ++n)
    {
        const double phase = 2.0 * std::numbers::pi * frequency * n / kRate;
        filter_multimode_dsp_morph (filter, kLevel * static_cast<float> (std::sin (phase)), 0.0f);

        if (n >= kSettle)
        {
            sine += static_cast<double> (filter.out) * std::sin (phase);
            cosine += static_cast<double> (filter.out) * std::cos (phase);
        }
    }

    return 20.0 *
           std::log10 (std::hypot (sine, cosine) * 2.0 / kSettle / static_cast<double> (kLevel));
}

constexpr float kNotch = 0.0f, kLowpass = 1.0f / 3.0f, kBandpass = 2.0f / 3.0f, kHighpass = 1.0f;

}  // namespace

TEST (FilterMultimode, MorphsOverNotchLowpassBandpassAndHighpass)
{
    constexpr float kCutoff = 1000.0f;
    const auto response = [] (float mode, double frequency)
    { return gainAt (filterAt (kCutoff, 5.0f, mode), frequency); };

    // At each end of the pass band, and around the cut-off. The passes count in full and the second gets no
    // input, so that the pass band lies at the level measured here, not at 0 dB.
    EXPECT_NEAR (response (kLowpass, 50.0), response (kLowpass, 100.0), 0.5);
    EXPECT_LT (response (kLowpass, 8000.0), response (kLowpass, 100.0) - 30.0);
    EXPECT_LT (response (kHighpass, 100.0), response (kHighpass, 8000.0) - 30.0);
    EXPECT_GT (response (kBandpass, 1000.0), response (kBandpass, 100.0) + 10.0);
    EXPECT_GT (response (kBandpass, 1000.0), response (kBandpass, 8000.0) + 10.0);
    EXPECT_LT (response (kNotch, 1000.0), response (kNotch, 50.0) - 10.0);
}

TEST (FilterMultimode, StopsOpeningAtAboutEightPercentOfTheSampleRate)
{
    setAudioSamplingRate (kRate);
    FilterMultimode filter;
    filter_multimode_init (filter);

    setCoef (filter, 3500.0f);
    EXPECT_LT (filter.coef, 0.25);
    setCoef (filter, 3540.0f);
    EXPECT_EQ (filter.coef, 0.25);
    setCoef (filter, 18000.0f);
    EXPECT_EQ (filter.coef, 0.25);
}

TEST (FilterMultimode, RingsForGoodAtFullResonanceWithinItsLimiter)
{
    auto filter = filterAt (1000.0f, 10.0f, kBandpass);
    EXPECT_EQ (filter.damp, 0.0);
    filter_multimode_dsp_morph (filter, 50.0f, 0.0f);
    double early = 0.0;
    double late = 0.0;

    for (int n = 0; n < 400000; ++n)
    {
        filter_multimode_dsp_morph (filter, 0.0f, 0.0f);
        ASSERT_LE (std::abs (filter.out), 0.946f);
        auto& energy = n < 44100 ? early : late;

        if (n < 44100 || n >= 400000 - 44100)
            energy += filter.band * filter.band;
    }

    EXPECT_NEAR (late / early, 1.0, 0.01);
}

TEST (FilterMultimode, EachCallFlipsTheOffsetThatAllFiltersShare)
{
    gFilterRenormal.store (1.0e-15f);
    auto one = filterAt (1000.0f, 0.0f, kLowpass);
    auto other = one;

    filter_multimode_dsp_morph (one, 0.0f);
    EXPECT_EQ (gFilterRenormal.load(), -1.0e-15f);
    filter_multimode_dsp_morph (other, 0.0f);
    EXPECT_EQ (gFilterRenormal.load(), 1.0e-15f);
    EXPECT_EQ (one.low, -other.low);
    EXPECT_NE (one.low, 0.0);
}
