// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/temporary_home.h"

#include <juce_events/juce_events.h>

#include <benchmark/benchmark.h>

int main (int argc, char** argv)
{
    const TemporaryHome
        home;  // before the first call into the framework: an instance works on the user's files
    const juce::ScopedJuceInitialiser_GUI framework;

    benchmark::Initialize (&argc, argv);

    if (benchmark::ReportUnrecognizedArguments (argc, argv))
        return 1;

    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
