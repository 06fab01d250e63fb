// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/gain_parameter.h"
#include "parameters/parameter_ranges.h"

#include <gtest/gtest.h>
#include <string>

namespace
{
std::string textOf (const juce::RangedAudioParameter& parameter, float gain)
{
    return parameter.getText (parameter.convertTo0to1 (gain), 0).toStdString();
}

float typed (const juce::RangedAudioParameter& parameter, const char* text)
{
    return parameter.convertFrom0to1 (parameter.getValueForText (text));
}
}  // namespace

TEST (AudioParameterGain, ReadsInDecibelsDownToMinusOneHundred)
{
    const AudioParameterGain unityAtTop ({ "G", 100 }, "G", CubicGainRange (1.0f), 1.0f);

    EXPECT_EQ (textOf (unityAtTop, 1.0f), "+0.00 dB");
    EXPECT_EQ (textOf (unityAtTop, 0.5f), "-6.02 dB");
    EXPECT_EQ (textOf (unityAtTop, 0.0001f), "-80.00 dB");
    EXPECT_EQ (textOf (unityAtTop, 0.0000100115241f), "-99.99 dB");
    EXPECT_EQ (textOf (unityAtTop, 0.00001f), "-INF dB");
    EXPECT_EQ (textOf (unityAtTop, 0.000001f), "-INF dB");
    EXPECT_EQ (textOf (unityAtTop, 0.0f), "-INF dB");

    const AudioParameterGain headroom ({ "G", 100 }, "G", CubicGainRange (1.41253754f), 1.0f);

    EXPECT_EQ (textOf (headroom, 1.41253754f), "+3.00 dB");
    EXPECT_EQ (headroom.getText (0.891251f, 0), "+0.00 dB");
    EXPECT_EQ (headroom.getText (1.0f, 3), "+3.00 dB") << "the maximum length is not heeded";
}

TEST (AudioParameterGain, TakesTypedDecibelsForALinearGain)
{
    const AudioParameterGain parameter ({ "G", 100 }, "G", CubicGainRange (1.41253754f), 1.0f);

    EXPECT_FLOAT_EQ (typed (parameter, "0.50 dB"), 0.5f);
    EXPECT_FLOAT_EQ (typed (parameter, "+1.00 dB"), 1.0f);
    EXPECT_FLOAT_EQ (typed (parameter, "+3.00 dB"), 1.41253754f) << "clipped to the top";
    EXPECT_EQ (typed (parameter, "-6.00 dB"), 0.0f);
    EXPECT_EQ (typed (parameter, "-INF dB"), 0.0f);
    EXPECT_EQ (typed (parameter, "+0.00 dB"), 0.0f) << "what unity reads is silence when typed";
}

TEST (AudioParameterGain, DropsTheLastThreeCharactersWhateverTheyAre)
{
    const AudioParameterGain parameter ({ "G", 100 }, "G", CubicGainRange (1.41253754f), 1.0f);

    EXPECT_FLOAT_EQ (typed (parameter, "0.5xyz"), 0.5f);
    EXPECT_FLOAT_EQ (typed (parameter, "0.75123"), 0.75f);
    EXPECT_FLOAT_EQ (typed (parameter, "1abc"), 1.0f) << "four are enough";
    EXPECT_EQ (typed (parameter, "1.0"), 0.0f);
    EXPECT_EQ (typed (parameter, "1"), 0.0f);
    EXPECT_EQ (typed (parameter, ""), 0.0f);
}
