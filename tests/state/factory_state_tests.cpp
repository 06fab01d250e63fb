// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/state_carriers.h"
#include "state_fixture.h"

#include <algorithm>

class FactoryState : public StateTest
{
};

static std::vector<std::string> sorted (std::vector<std::string> list)
{
    std::sort (list.begin(), list.end());
    return list;
}

TEST_F (FactoryState, OfEveryPresetComesBackFromItsChunkAsItWent)
{
    VelkorAudioProcessor processor;
    auto files = presets ("Factory").findChildFiles (juce::File::findFiles, false, "*.zbpreset");
    ASSERT_EQ (files.size(), 64);
    files.sort();

    for (const auto& file : files)
    {
        SCOPED_TRACE (file.getFileName());
        setStateFromFile (processor, file);
        EXPECT_EQ (processor.presetName,
                   file.getFileNameWithoutExtension().fromFirstOccurrenceOf (" - ", false, false));

        std::vector<float> values;

        for (const auto& info : parameterInfo)
            values.push_back (valueOf (processor, info.name));

        const auto connections = sorted (connectionList (processor));
        const auto routes = sorted (routeList (processor));
        juce::MemoryBlock saved, again;
        processor.getStateInformation (saved);
        processor.setStateInformation (saved.getData(), static_cast<int> (saved.getSize()));
        processor.getStateInformation (again);
        EXPECT_EQ (saved, again);

        for (std::size_t i = 0; i < values.size(); ++i)
            EXPECT_EQ (valueOf (processor, parameterInfo[i].name), values[i])
                << parameterInfo[i].name;

        EXPECT_EQ (sorted (connectionList (processor)), connections);
        EXPECT_EQ (sorted (routeList (processor)), routes);
        EXPECT_FALSE (connections.empty());
    }
}
