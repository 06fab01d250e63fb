// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/legal_state.h"
#include "support/temporary_home.h"

#include <cstdio>
#include <cstdlib>

// Feeds a host's chunks to one instance for as long as it is let: what a chunk holds is a document. Run with
// the kept documents, framed or not, as a corpus; an input without the frame gets one.

namespace
{
/** What lives as long as the process. One object, made whole before its end is noted down: each on its own,
    the framework's shutdown would come after that of the lists that it made for the instance. */
struct Target
{
    TemporaryHome home;
    juce::ScopedJuceInitialiser_GUI framework;
    VelkorAudioProcessor processor;
};
}  // namespace

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    static Target target;
    auto& processor = target.processor;

    juce::MemoryOutputStream chunk;

    if (size < 4 || data[0] != 'V' || data[1] != 'C')
    {
        chunk.write ("VC2!", 4);
        chunk.writeInt (static_cast<int> (size));
    }

    chunk.write (data, size);
    processor.setStateInformation (chunk.getData(), static_cast<int> (chunk.getDataSize()));

    if (const auto fault = faultOf (processor); ! fault.empty())
    {
        std::fprintf (stderr, "%s\n", fault.c_str());
        std::abort();
    }

    return 0;
}
