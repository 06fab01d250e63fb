// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/parameter_text.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <utility>

namespace
{
using Cases = std::initializer_list<std::pair<float, const char*>>;

void expectTexts (juce::String (*rule) (float, int), Cases cases)
{
    for (const auto& [value, text] : cases)
    {
        EXPECT_EQ (rule (value, 0).toStdString(), text) << "at " << value;
        EXPECT_EQ (rule (value, 2).toStdString(), text) << "with a short maximum, at " << value;
    }
}
}  // namespace

TEST (ParameterText, DelayTimeTurnsToSecondsAtTheValueNotAtTheRoundedNumber)
{
    expectTexts (delayTimeText, { { 2.0f, "2 ms" },
                                  { 2.5f, "2 ms" },  // ties go to the even number
                                  { 3.5f, "4 ms" },
                                  { 999.4f, "999 ms" },
                                  { 999.5f, "1000 ms" },
                                  { 999.6f, "1000 ms" },
                                  { 1000.0f, "1.00 s" },
                                  { 1239.0f, "1.24 s" } });
}

TEST (ParameterText, FrequencyTurnsToKilohertzAtTheValueNotAtTheRoundedNumber)
{
    expectTexts (frequencyText, { { 40.5f, "40 Hz" },
                                  { 41.5f, "42 Hz" },
                                  { 999.9f, "1000 Hz" },
                                  { 1000.0f, "1.00 kHz" },
                                  { 18000.0f, "18.00 kHz" } });
}

TEST (ParameterText, SignComesFromTheValueSoThatTinyNegativesDifferFromTinyPositives)
{
    expectTexts (
        signedRatioText,
        { { 0.0f, "+0.00" }, { 1.5f, "+1.50" }, { -0.25f, "-0.25" }, { -0.001f, "-0.00" } });
    expectTexts (signedHertzText,
                 { { 0.0f, "+0.0 Hz" }, { 5.0f, "+5.0 Hz" }, { -2.5f, "-2.5 Hz" } });
    expectTexts (signedPercentText, { { 0.0f, "+0%" },
                                      { 0.001f, "+0%" },
                                      { -0.001f, "0%" },
                                      { -0.5f, "-50%" },
                                      { 1.0f, "+100%" } });
}

TEST (ParameterText, PercentIsScaledInSinglePrecisionAndTiesGoToTheEvenNumber)
{
    // 0.025f * 100 is a hair above 2.5 in double precision, and 2.5 in single
    expectTexts (percentText,
                 { { 0.025f, "2%" }, { 0.035f, "4%" }, { 0.125f, "12%" }, { 0.375f, "38%" } });
    expectTexts (signedPercentText, { { 0.025f, "+2%" }, { -0.125f, "-12%" } });
}

TEST (ParameterText, PanCountsTenStepsToEachSideOfTheCenter)
{
    expectTexts (panText, { { 0.0f, "L 10" },
                            { 0.375f, "L 2" },  // -2.5, a tie
                            { 0.46875f, "L 1" },
                            { 0.484375f, "Center" },
                            { 0.5f, "Center" },
                            { 0.515625f, "Center" },
                            { 0.53125f, "R 1" },
                            { 0.875f, "R 8" },  // 7.5, a tie
                            { 1.0f, "R 10" } });
}

TEST (ParameterText, EachFilterModeBandEndsBelowTheNextOne)
{
    expectTexts (filterModeText, { { 0.0f, "Notch" },
                                   { 0.0999f, "Notch" },
                                   { 0.1f, "Ntch/LP" },
                                   { 0.2832f, "Ntch/LP" },
                                   { 0.2833f, "Lowpass" },
                                   { 0.3832f, "Lowpass" },
                                   { 0.3833f, "LP/BP" },
                                   { 0.6166f, "LP/BP" },
                                   { 0.6167f, "Bandpass" },
                                   { 0.7166f, "Bandpass" },
                                   { 0.7167f, "BP/HP" },
                                   { 0.8999f, "BP/HP" },
                                   { 0.9f, "Highpass" },
                                   { 1.0f, "Highpass" } });
}
