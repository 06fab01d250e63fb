// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/preset_file.h"

#include "processor/VelkorAudioProcessor.h"
#include "velkor_render/failure.h"
#include "velkor_render/patch.h"
#include "velkor_render/paths.h"

void loadPreset (VelkorAudioProcessor& processor, const std::filesystem::path& path)
{
    const auto document = juce::parseXML (existingFile (path));

    if (document == nullptr || ! document->getTagName().equalsIgnoreCase ("VelkorSettings"))
        fail (path.string() + ": is not a preset");

    for (const auto* child : document->getChildIterator())
    {
        if (child->getTagName().equalsIgnoreCase ("Parameters"))
            processor.parameterTree.replaceState (juce::ValueTree::fromXml (*child));

        const bool isSignal = child->getTagName().equalsIgnoreCase ("SignalMatrix");

        if (! isSignal && ! child->getTagName().equalsIgnoreCase ("ModMatrix"))
            continue;

        if (isSignal)
            clearSignalMatrix (processor);
        else
            clearModMatrix (processor);

        for (const auto* pair : child->getChildIterator())
        {
            if (isSignal)
                processor.setSignalConnection (pair->getIntAttribute ("input"),
                                               pair->getIntAttribute ("output"), true);
            else
                processor.setModConnection (pair->getIntAttribute ("source"),
                                            pair->getIntAttribute ("dest"), true);
        }
    }
}
