// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/factory_bank.h"

#include "state/document_guard.h"
#include "velkor_render/text.h"

#include <BinaryData.h>
#include <algorithm>

namespace
{
constexpr auto kFactoryFolder = "Factory/";
constexpr auto kDefaultPreset = "User/Default.zbpreset";
constexpr auto kExtension = ".zbpreset";
constexpr auto kBetweenNumberAndName = " - ";

/** The archive, opened. */
struct Archive
{
    juce::MemoryInputStream stream { BinaryData::Presets_zip, BinaryData::Presets_zipSize, false };
    juce::ZipFile zip { stream };
};

std::unique_ptr<juce::XmlElement> readEntry (const juce::String& path)
{
    Archive archive;
    const auto* const entry = archive.zip.getEntry (path);

    if (entry == nullptr)
        return nullptr;

    juce::MemoryBlock bytes;
    const std::unique_ptr<juce::InputStream> in (archive.zip.createStreamForEntry (*entry));
    in->readIntoMemoryBlock (bytes);
    return parseDocument (bytes);
}

bool isNumber (const std::string& text, int number)
{
    return ! text.empty() && text.find_first_not_of ("0123456789") == std::string::npos &&
           juce::String (text).getLargeIntValue() == number;
}
}  // namespace

std::vector<FactoryPreset> factoryBank()
{
    Archive archive;
    std::vector<FactoryPreset> bank;

    for (int i = 0; i < archive.zip.getNumEntries(); ++i)
    {
        const auto& path = archive.zip.getEntry (i)->filename;

        if (! path.startsWith (kFactoryFolder))
            continue;

        const auto title = path.fromFirstOccurrenceOf (kFactoryFolder, false, false)
                               .upToLastOccurrenceOf (kExtension, false, false);
        const auto name = title.fromFirstOccurrenceOf (kBetweenNumberAndName, false, false);
        bank.push_back ({ title.getIntValue(), name.toStdString(), title.toStdString() });
    }

    std::sort (bank.begin(), bank.end(),
               [] (const auto& a, const auto& b) { return a.number < b.number; });
    return bank;
}

std::optional<FactoryPreset> findFactoryPreset (const std::string& wanted)
{
    const auto word = lowerCase (trimmed (wanted));

    for (const auto& preset : factoryBank())
        if (word == lowerCase (preset.name) || word == lowerCase (preset.title) ||
            isNumber (word, preset.number))
            return preset;

    return std::nullopt;
}

std::unique_ptr<juce::XmlElement> readFactoryPreset (const FactoryPreset& preset)
{
    return readEntry (kFactoryFolder + juce::String (preset.title) + kExtension);
}

std::unique_ptr<juce::XmlElement> readShippedDefault()
{
    return readEntry (kDefaultPreset);
}
