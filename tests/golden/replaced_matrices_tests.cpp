// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/duel.h"

#include <gtest/gtest.h>

// A load replaces a matrix at once; the sound has to be that of the single steps.

TEST (ReplacedMatrices, SoundAsIfAllHadBeenBrokenAndTheNewOnesMadeOneByOne)
{
    for (std::uint32_t seed = 1; seed <= 8; ++seed)
    {
        SCOPED_TRACE (seed);
        Noise noise (seed);
        Duel duel;
        duel.prepare (48000.0);
        duel.set (Filter1Reso, 6.0f);
        duel.set (Filter1Mod, 0.7f);
        duel.set (Level1Mod, -0.5f);
        duel.set (EnvSensitivity, 0.8f);

        for (int round = 0; round < 6; ++round)
        {
            std::vector<SignalPair> signal;
            std::vector<ModPair> modulation;

            for (int i = noise.below (30); i > 0; --i)
                signal.push_back ({ noise.below (9) - 1, noise.below (12) - 1 });

            for (int i = noise.below (12); i > 0; --i)
                modulation.push_back ({ noise.below (8) - 1, noise.below (12) - 1 });

            engine_replace_connections (*duel.product.engine, signal);
            mod_router_replace (duel.product.engine->modulation, modulation);

            for (int source = 0; source < kNumSignalSources; ++source)
                for (int destination = 0; destination < kNumSignalDests; ++destination)
                    duel.engine->connect (source, destination, false);

            for (int source = 0; source < kNumModSources; ++source)
                for (int dest = 0; dest < kNumModDests; ++dest)
                    duel.engine->route (source, dest, false);

            for (const auto& pair : signal)
                duel.engine->connect (pair.source, pair.destination, true);

            for (const auto& pair : modulation)
                duel.engine->route (pair.source, pair.dest, true);

            auto left = noise.samples (777, 1.0f);
            auto right = noise.samples (777, 1.0f);
            ASSERT_TRUE (duel.process (left, right));
        }
    }
}
