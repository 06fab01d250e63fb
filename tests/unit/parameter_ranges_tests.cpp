// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/parameter_ranges.h"

#include <gtest/gtest.h>

// The expected values were computed apart from the source, with every step rounded to 32 bits. Those
// compared exactly come out otherwise if a step is taken in double precision.

TEST (LogFreqRange, TravelIsLogarithmicInSinglePrecision)
{
    const LogFreqRange rate (0.01f, 10.0f);
    const LogFreqRange cutoff (40.0f, 18000.0f);

    EXPECT_EQ (rate.convertFrom0to1 (0.0f), 0.01f);
    EXPECT_EQ (cutoff.convertFrom0to1 (1.0f), 18000.0f);
    EXPECT_NEAR (rate.convertFrom0to1 (0.5f), 0.316228f, 1e-6f);
    EXPECT_NEAR (cutoff.convertFrom0to1 (0.5f), 848.528f, 1e-3f);
    EXPECT_EQ (cutoff.convertFrom0to1 (0.2f), 135.738342f);
    EXPECT_EQ (cutoff.convertFrom0to1 (0.9f), 9771.27344f);

    EXPECT_EQ (cutoff.convertTo0to1 (40.0f), 0.0f);
    EXPECT_EQ (cutoff.convertTo0to1 (18000.0f), 1.0f);
    EXPECT_EQ (cutoff.convertTo0to1 (5312.0f), 0.800236762f);
    EXPECT_EQ (rate.convertTo0to1 (0.05f), 0.232989997f);
}

TEST (CubicGainRange, TravelIsCubicInSinglePrecision)
{
    const CubicGainRange level (1.41253754f);
    const CubicGainRange feedback (1.0f);

    EXPECT_EQ (level.start, 0.0f);
    EXPECT_EQ (level.convertFrom0to1 (0.0f), 0.0f);
    EXPECT_EQ (level.convertFrom0to1 (1.0f), 1.41253754f);
    EXPECT_EQ (level.convertFrom0to1 (0.7f), 0.484500378f);
    EXPECT_EQ (level.convertFrom0to1 (0.9f), 1.02973974f);

    EXPECT_EQ (level.convertTo0to1 (0.0f), 0.0f);
    EXPECT_NEAR (level.convertTo0to1 (1.0f), 0.891251f, 1e-6f);
    EXPECT_NEAR (feedback.convertTo0to1 (0.0001f), 0.046416f, 1e-6f);
}

TEST (ParameterRanges, ValuesAreClippedButNeverSnapped)
{
    const LogFreqRange cutoff (40.0f, 18000.0f);
    const CubicGainRange level (1.41253754f);

    EXPECT_EQ (cutoff.snapToLegalValue (39.0f), 40.0f);
    EXPECT_EQ (cutoff.snapToLegalValue (20000.0f), 18000.0f);
    EXPECT_EQ (cutoff.snapToLegalValue (123.456001f), 123.456001f);
    EXPECT_EQ (level.snapToLegalValue (-6.0f), 0.0f);
    EXPECT_EQ (level.snapToLegalValue (0.123456001f), 0.123456001f);
}
