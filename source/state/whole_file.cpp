// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/whole_file.h"

#include <atomic>
#include <exception>
#include <random>
#include <system_error>

#if JUCE_WINDOWS
#include <process.h>
#else
#include <unistd.h>
#endif

std::filesystem::path filesystemPath (const juce::File& file)
{
    const auto& text = file.getFullPathName();
    const auto* begin = reinterpret_cast<const char8_t*> (text.toRawUTF8());
    return std::filesystem::path (begin, begin + text.getNumBytesAsUTF8());
}

bool isRegularFile (const juce::File& file)
{
    std::error_code failure;
    return std::filesystem::is_regular_file (filesystemPath (file), failure);
}

bool readRegularFile (const juce::File& file, std::size_t maxBytes, juce::MemoryBlock& bytes)
{
    if (! isRegularFile (file))
        return false;

    juce::FileInputStream in (file);

    if (! in.openedOk())
        return false;

    // One byte more than allowed shows that there is more; the file may grow while it is read.
    bytes.reset();
    in.readIntoMemoryBlock (bytes, static_cast<juce::pointer_sized_int> (maxBytes) + 1);
    return in.getStatus().wasOk() && bytes.getSize() <= maxBytes;
}

bool writeNewFile (const juce::File& file, const void* data, std::size_t numBytes, Durable durable)
{
    {
        juce::FileOutputStream out (file);

        if (! out.openedOk() || ! out.write (data, numBytes))
            return false;

        if (durable == Durable::yes)
            out.flush();

        if (out.getStatus().failed())
            return false;
    }

    // The stream does not tell when its last write came up short, as it does on a disk that runs full.
    return file.getSize() == static_cast<juce::int64> (numBytes);
}

bool moveOver (const juce::File& source, const juce::File& target)
{
    std::error_code failure;
    std::filesystem::rename (filesystemPath (source), filesystemPath (target), failure);
    return ! failure;
}

juce::File hiddenSibling (const juce::File& file)
{
    return file.getSiblingFile ("." + uniqueWord() + ".tmp");
}

bool replaceWithDocument (const juce::File& target, const juce::XmlElement& document,
                          Durable durable)
{
    juce::MemoryOutputStream text (8192);
    document.writeTo (text, {});

    const auto fresh = hiddenSibling (target);

    if (writeNewFile (fresh, text.getData(), text.getDataSize(), durable) &&
        moveOver (fresh, target))
        return true;

    fresh.deleteFile();
    return false;
}

static int processNumber()
{
#if JUCE_WINDOWS
    return _getpid();
#else
    return static_cast<int> (getpid());
#endif
}

/** A word of this process, the moment and the threads that came before. */
static juce::String countedWord()
{
    static std::atomic<int> count { 0 };
    return juce::String::toHexString (processNumber()) + "-" +
           juce::String::toHexString (juce::Time::getHighResolutionTicks()) + "-" +
           juce::String::toHexString (++count);
}

juce::String uniqueWord()
{
    try
    {
        std::random_device source;  // the system's: it goes on in a forked process as in no other
        return juce::String::toHexString (static_cast<juce::int64> (source()) << 32 |
                                          static_cast<juce::int64> (source()));
    }
    catch (const std::exception&)
    {
        return countedWord();  // no device, as in a bare jail, or too many open files
    }
}
