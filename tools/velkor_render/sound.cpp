// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/sound.h"

#include "processor/VelkorAudioProcessor.h"
#include "state/document_guard.h"
#include "state/preset_document.h"
#include "state/state_carriers.h"
#include "velkor_render/factory_bank.h"
#include "velkor_render/failure.h"
#include "velkor_render/paths.h"
#include "velkor_render/text.h"

Sound readSound (const std::optional<std::string>& preset)
{
    if (! preset)
        return { {}, readShippedDefault() };

    // The bank first: the same words mean the same sound in every folder.
    if (const auto factory = findFactoryPreset (*preset))
        return { factory->title, readFactoryPreset (*factory) };

    std::error_code error;

    if (! std::filesystem::exists (*preset, error))
        fail ((preset->empty() ? inQuotes (*preset) : *preset) +
              ": no such file or factory preset (--list-presets lists the bank)");

    const auto file = existingFile (*preset);

    if (! file.hasReadAccess())
        fail (*preset + ": can't be read");

    Sound sound { *preset, parseDocument (file) };

    if (sound.document == nullptr)
        fail (*preset + ": is damaged, or is not a preset");

    return sound;
}

void loadSound (VelkorAudioProcessor& processor, const Sound& sound)
{
    if (sound.document == nullptr || ! isPresetDocument (*sound.document, processor.stateTag))
        fail (sound.preset + ": is not a preset of Velkor");

    processor.loadStateFromXML (sound.document.get());
}

void savePreset (VelkorAudioProcessor& processor, const std::filesystem::path& path)
{
    makeWay (path);

    if (! saveStateToFile (processor, frameworkFile (path)))
        fail (path.string() + ": can't be written");
}
