// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/unseen_presets.h"

#include "state/folder_listing.h"

#include <algorithm>

bool isPassedOver (const juce::String& name)
{
    return (name.startsWithChar ('.') && name != "." && name != "..") || name == "__MACOSX";
}

void addUnseenPresets (const juce::File& presetFolder, int numLevels, KnownPresets& known)
{
    const auto start = juce::File::addTrailingSeparator (presetFolder.getFullPathName()).length();

    for (const auto& [file, isFolder] : listEntriesBelow (presetFolder))
    {
        if (isFolder || ! file.hasFileExtension (kPresetExtension))
            continue;

        const auto path = file.getFullPathName().substring (start).replaceCharacter (
            juce::File::getSeparatorChar(), '/');
        const auto names = juce::StringArray::fromTokens (path, "/", {});

        if (names.size() <= numLevels && std::any_of (names.begin(), names.end(), isPassedOver))
            known.try_emplace (path);
    }
}
