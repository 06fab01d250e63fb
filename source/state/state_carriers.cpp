// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/state_carriers.h"

#include "processor/zb_AudioProcessor.h"
#include "state/document_guard.h"
#include "state/whole_file.h"

#include <algorithm>

static juce::XmlElement documentOf (zb_AudioProcessor& processor)
{
    juce::XmlElement document (processor.stateTag);
    processor.saveStateToXML (document);
    return document;
}

void getStateAsText (zb_AudioProcessor& processor, juce::String& text)
{
    text = documentOf (processor).toString();
}

void setStateFromText (zb_AudioProcessor& processor, const juce::String& text)
{
    if (const auto document = parseDocument (text))
        processor.loadStateFromXML (document.get());
}

bool saveStateToFile (zb_AudioProcessor& processor, const juce::File& file)
{
    processor.setPresetName (file.getFileNameWithoutExtension());

    if (! replaceWithDocument (file, documentOf (processor), Durable::yes))
        return false;

    processor.refreshProgramList();
    processor.updateHostDisplay (zb_AudioProcessor::stateChanged());
    return true;
}

void setStateFromFile (zb_AudioProcessor& processor, const juce::File& file)
{
    if (const auto document = parseDocument (file))
        processor.loadStateFromXML (document.get());
    else
        processor.setPresetName ("Error Loading Preset");
}

std::unique_ptr<juce::XmlElement> readChunk (const void* data, int sizeInBytes)
{
    constexpr int kHeaderBytes = 8;
    constexpr juce::uint32 kMagic = 0x21324356;  // "VC2!"
    const auto* const bytes = static_cast<const char*> (data);

    if (bytes == nullptr || sizeInBytes <= kHeaderBytes ||
        juce::ByteOrder::littleEndianInt (bytes) != kMagic)
        return nullptr;

    const auto length = static_cast<int> (juce::ByteOrder::littleEndianInt (bytes + 4));

    if (length < 1)
        return nullptr;

    const auto size = static_cast<std::size_t> (std::min (length, sizeInBytes - kHeaderBytes));
    return size > kMaxDocumentBytes
               ? nullptr
               : parseDocument (juce::MemoryBlock (bytes + kHeaderBytes, size));
}
