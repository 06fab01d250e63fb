// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/zb_AudioProcessor.h"

#include "state/document_guard.h"
#include "state/folder_listing.h"
#include "state/name_cache.h"
#include "state/preset_document.h"

#include <utility>

zb_AudioProcessor::zb_AudioProcessor (const BusesProperties& buses) : juce::AudioProcessor (buses)
{
}

juce::AudioProcessorListener::ChangeDetails zb_AudioProcessor::stateChanged()
{
    return juce::AudioProcessorListener::ChangeDetails::getDefaultFlags();
}

void zb_AudioProcessor::setPresetName (juce::String name)
{
    // The old text goes with the argument, when the lock is free again.
    const juce::SpinLock::ScopedLockType lock (programListLock);
    std::swap (presetName, name);
}

juce::String zb_AudioProcessor::getPresetName() const
{
    const juce::SpinLock::ScopedLockType lock (programListLock);
    return presetName;
}

int zb_AudioProcessor::getNumPrograms()
{
    const juce::SpinLock::ScopedLockType lock (programListLock);
    return juce::jmax (1, programList.size());
}

int zb_AudioProcessor::getCurrentProgram()
{
    const juce::SpinLock::ScopedLockType lock (programListLock);
    return juce::jlimit (0, juce::jmax (1, programList.size()) - 1, currentProgram.load());
}

void zb_AudioProcessor::setCurrentProgram (int index)
{
    juce::File file;

    {
        const juce::SpinLock::ScopedLockType lock (programListLock);

        if (! juce::isPositiveAndBelow (index, programList.size()))
            return;

        file = programList.getReference (index).file;
    }

    const auto document = parseDocument (file);

    if (document == nullptr || ! isPresetDocument (*document, stateTag))
        return;

    loadStateFromXML (document.get());

    currentProgram = index;
    updateHostDisplay (stateChanged());
    editorRepaint.triggerAsyncUpdate();
}

void zb_AudioProcessor::EditorRepaint::handleAsyncUpdate()
{
    if (auto* const editor = owner.getActiveEditor())
        editor->repaint();
}

/** The display name that a preset file tells, its file name if it tells none. The documents of the other
    products of the frame keep it in other places, all of which are looked at. */
static juce::String readDisplayName (const juce::File& file)
{
    const auto document = parseDocument (file);

    if (document == nullptr)
        return file.getFileNameWithoutExtension();

    if (const auto* const pluginState = findChild (*document, "PluginState"))
        if (auto name = pluginState->getStringAttribute ("PresetName"); name.isNotEmpty())
            return name;

    const auto name = document->getStringAttribute (
        document->hasAttribute ("presetName") ? "presetName" : "PresetName");
    return name.isNotEmpty() ? name : file.getFileNameWithoutExtension();
}

const juce::String zb_AudioProcessor::getProgramName (int index)
{
    const juce::SpinLock::ScopedLockType lock (programListLock);

    if (! juce::isPositiveAndBelow (index, programList.size()))
        return presetName;

    auto& row = programList.getReference (index);

    if (! row.nameLoaded)
    {
        row.name = readDisplayName (row.file);
        row.nameLoaded = true;
    }

    return row.name;
}

void zb_AudioProcessor::refreshProgramList()
{
    if (! programFolder.isDirectory())
        return;

    const auto names = readNameCache (programFolder);
    juce::Array<PresetInfo> fresh;

    for (const auto& file : listPresetsBelow (programFolder))
    {
        auto path = file.getRelativePathFrom (programFolder);

#if JUCE_WINDOWS
        path = path.replaceCharacter ('\\', '/');  // elsewhere it may be part of a name
#endif

        const auto found = names.find (path);
        const auto name = found == names.end() ? juce::String() : found->second;
        fresh.add ({ file, name, name.isNotEmpty() });
    }

    const juce::SpinLock::ScopedLockType lock (programListLock);
    programList.swapWith (fresh);
}
