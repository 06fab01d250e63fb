// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/delay_heads.h"

#include <gtest/gtest.h>

// Which ticks the short way is for; that it gives the same bits is the golden tests' matter.

namespace
{

/** Two lines at 44.1 kHz that have settled, with their write heads at the given slot and their read heads behind. */
class SettledPair : public testing::Test
{
public:
    SettledPair()
    {
        setAudioSamplingRate (44100.0);

        for (auto* line : { &one, &two })
        {
            delay_fad_init (*line);
            delay_fad_set_time (*line, false, 1, 0.0f, 100.0f, 120.0);
            line->resetPending = false;
            placeAt (*line, 10000.0f);
        }
    }

    ~SettledPair() override
    {
        delay_fad_free (one);
        delay_fad_free (two);
    }

    static void placeAt (DelayFad& line, float writePos)
    {
        line.writePos = writePos;
        line.readPos = writePos - static_cast<float> (line.delaySamples) + 1.0f;
    }

    bool isPaired()
    {
        delay_pair_take (pair, one, two);
        return pair.canBePaired;
    }

    bool isSteady()
    {
        delay_pair_take (pair, one, two);
        return headsAreInside (pair) && headsAreSteady (pair);
    }

    DelayFad one, two;
    DelayPair pair;
};

}  // namespace

TEST_F (SettledPair, IsSteadyAndGoesOnBeingSo)
{
    one.readPos -= 0.25f;
    EXPECT_TRUE (isPaired());
    EXPECT_TRUE (isSteady());
    steadyFinish (pair, Floats {});
    EXPECT_TRUE (headsAreSteady (pair));
}

TEST_F (SettledPair, IsNotWhenAnythingButTheHeadsPlacesCouldChange)
{
    two.readRate = 0.99f;
    EXPECT_FALSE (isSteady()) << "speed";
    two.readRate = 1.0f;
    two.reverse = two.reverseRequest = true;
    EXPECT_FALSE (isSteady()) << "direction";
    two.reverse = two.reverseRequest = false;
    two.readPos -= 1.0f;
    EXPECT_FALSE (isSteady()) << "distance";
    two.readPos += 1.0f;
    two.writePos += 0.5f;
    EXPECT_FALSE (isSteady()) << "a write head between slots";
    placeAt (two, static_cast<float> (two.bufferSize) - 4.0f);
    EXPECT_FALSE (isSteady()) << "a write head near the end";
    placeAt (two, 8190.0f + 4409.0f);
    EXPECT_FALSE (isSteady()) << "a read head near a power of two";
    placeAt (two, 10000.0f);
    EXPECT_TRUE (isSteady()) << "all as it was";
}

TEST_F (SettledPair, IsTakenLineByLineInItsRarerStates)
{
    one.loop = true;
    EXPECT_FALSE (isPaired()) << "loop";
    one.loop = false;
    one.resetPending = true;
    EXPECT_FALSE (isPaired()) << "reset";
    one.resetPending = false;
    one.reverseRequest = true;
    EXPECT_FALSE (isPaired()) << "turn";
    one.reverseRequest = false;
    one.delaySamples = 4;
    EXPECT_FALSE (isPaired()) << "a delay within a tick or two";
    one.delaySamples = 4410;
    one.readPos = static_cast<float> (one.bufferSize);
    EXPECT_TRUE (isPaired());
    EXPECT_FALSE (headsAreInside (pair));
}
