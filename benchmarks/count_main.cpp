// SPDX-License-Identifier: AGPL-3.0-or-later
#include "patches.h"
#include "support/temporary_home.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

// Runs a patch for a number of blocks under an instruction counter: see count_instructions. It prints
// nothing when all is well; what counts is counted outside.

namespace
{

int run (const char* patchName, int blockSize, int blocks, double sampleRate)
{
    const auto patch = findPatch (patchName);

    if (! patch || blockSize < 1 || blocks < 1 || ! (sampleRate > 0.0))
    {
        std::fputs ("velkor_count: no such patch, or a number below 1\n", stderr);
        return 2;
    }

    PatchedInstance instance (*patch, sampleRate, blockSize);

    for (int i = 1; i < blocks; ++i)
        if (! instance.process())
        {
            std::fprintf (stderr, "velkor_count: the patch ran away in block %d\n", i);
            return 1;
        }

    return 0;
}

int usage()
{
    std::fputs ("usage: velkor_count PATCH BLOCK_SIZE BLOCKS [SAMPLE_RATE]\npatches:", stderr);

    for (const auto& patch : kPatches)
        std::fprintf (stderr, " %s", std::string (patch.name).c_str());

    std::fputs ("\n", stderr);
    return 2;
}

}  // namespace

int main (int argc, char** argv)
{
    if (argc != 4 && argc != 5)
        return usage();

    const TemporaryHome
        home;  // before the first call into the framework: an instance works on the user's files
    const juce::ScopedJuceInitialiser_GUI framework;

    try
    {
        return run (argv[1], std::stoi (argv[2]), std::stoi (argv[3]),
                    argc == 5 ? std::stod (argv[4]) : 48000.0);
    }
    catch (const std::exception&)
    {
        return usage();
    }
}
