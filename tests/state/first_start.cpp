// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/VelkorAudioProcessor.h"
#include "state/first_run_install.h"

#include <csignal>
#include <cstring>
#include <iostream>
#include <string>
#include <sys/resource.h>

// A process that can be killed, starved and started twice: makes an instance in the home folder that it is
// given by HOME, or, with the name of an archive, only installs that into the preset folder.
//
//   velkor_first_start [--max-file BYTES] [ARCHIVE]

int main (int argc, char** argv)
{
    int next = 1;

    if (argc > 2 && std::strcmp (argv[1], "--max-file") == 0)
    {
        // What a full disk does: the last write is short, those after it fail.
        const rlimit limit { std::stoul (argv[2]), std::stoul (argv[2]) };
        std::signal (SIGXFSZ, SIG_IGN);

        if (setrlimit (RLIMIT_FSIZE, &limit) != 0)
            return 2;

        next = 3;
    }

    if (next < argc)
    {
        juce::MemoryBlock archive;

        if (! juce::File (argv[next]).loadFileAsData (archive))
            return 2;

        installFirstRunContent (defaultPresetFolder(), archive.getData(), archive.getSize());
        return 0;
    }

    const juce::ScopedJuceInitialiser_GUI framework;
    const VelkorAudioProcessor processor;
    std::cout << processor.presetName << std::endl;
    return 0;
}
