// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/parameter_text.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace
{
struct Rule
{
    const char* name;
    juce::String (*text) (float, int);
    std::vector<std::pair<float, const char*>> cases;
};

// clang-format off
const Rule kRules[] = {
    // Ties go to the even number; the unit changes at the value, not at the rounded number.
    { "delay time", delayTimeText, { { 2.5f, "2 ms" }, { 3.5f, "4 ms" }, { 999.4f, "999 ms" }, { 999.6f, "1000 ms" },
                                     { 1000.0f, "1.00 s" }, { 1239.0f, "1.24 s" } } },
    { "frequency", frequencyText, { { 40.5f, "40 Hz" }, { 41.5f, "42 Hz" }, { 999.9f, "1000 Hz" },
                                    { 1000.0f, "1.00 kHz" } } },
    // The sign is the value's, so that tiny negatives differ from tiny positives.
    { "ratio", signedRatioText, { { 0.0f, "+0.00" }, { 1.5f, "+1.50" }, { -0.001f, "-0.00" } } },
    { "hertz", signedHertzText, { { 0.0f, "+0.0 Hz" }, { -2.5f, "-2.5 Hz" } } },
    { "signed percent", signedPercentText, { { 0.0f, "+0%" }, { 0.001f, "+0%" }, { -0.001f, "0%" }, { 0.025f, "+2%" },
                                             { -0.125f, "-12%" } } },
    // 0.025f * 100 is a hair above 2.5 in double precision, and 2.5 in single.
    { "percent", percentText, { { 0.025f, "2%" }, { 0.035f, "4%" }, { 0.375f, "38%" } } },
    // Ten steps to each side; -2.5 and 7.5 are ties.
    { "pan", panText, { { 0.0f, "L 10" }, { 0.375f, "L 2" }, { 0.46875f, "L 1" }, { 0.484375f, "Center" },
                        { 0.515625f, "Center" }, { 0.53125f, "R 1" }, { 0.875f, "R 8" } } },
    // Each band ends below the next one.
    { "filter mode", filterModeText, { { 0.0999f, "Notch" }, { 0.1f, "Ntch/LP" }, { 0.2832f, "Ntch/LP" },
                                       { 0.2833f, "Lowpass" }, { 0.3832f, "Lowpass" }, { 0.3833f, "LP/BP" },
                                       { 0.6166f, "LP/BP" }, { 0.6167f, "Bandpass" }, { 0.7166f, "Bandpass" },
                                       { 0.7167f, "BP/HP" }, { 0.8999f, "BP/HP" }, { 0.9f, "Highpass" } } },
};
// clang-format on
}  // namespace

TEST (ParameterText, RoundsAndChangesUnitsAtTheReferencesBordersWhateverLengthIsAskedFor)
{
    for (const auto& [name, text, cases] : kRules)
        for (const auto& [value, expected] : cases)
            for (const int maximum : { 0, 2 })
                EXPECT_EQ (text (value, maximum).toStdString(), expected) << name << " " << value;
}
