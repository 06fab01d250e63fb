// SPDX-License-Identifier: AGPL-3.0-or-later
#include <juce_core/juce_core.h>

#include <iostream>

// Packs the presets below a folder into an archive that is the same, to the byte, wherever it is made.

/** Adds the presets of a subfolder, sorted by the bytes of their names, and tells how many there were. */
static int addFolder (juce::ZipFile::Builder& archive, const juce::File& root,
                      const juce::String& name)
{
    juce::StringArray names;

    for (const auto& file :
         root.getChildFile (name).findChildFiles (juce::File::findFiles, false, "*.zbpreset"))
        names.add (file.getFileName());

    names.sort (false);

    // Archives keep local time without its zone, so this has to be a local time, too.
    const juce::Time stamp (2000, 0, 1, 0, 0, 0, 0, true);

    for (const auto& fileName : names)
        archive.addEntry (
            root.getChildFile (name).getChildFile (fileName).createInputStream().release(), 9,
            name + "/" + fileName, stamp);

    return names.size();
}

int main (int argc, char** argv)
{
    if (argc != 3)
    {
        std::cerr << "usage: velkor_pack_presets PRESET_FOLDER ARCHIVE\n";
        return 2;
    }

    const auto here = juce::File::getCurrentWorkingDirectory();
    const auto root = here.getChildFile (juce::String::fromUTF8 (argv[1]));
    const auto target = here.getChildFile (juce::String::fromUTF8 (argv[2]));

    juce::ZipFile::Builder archive;
    int count = addFolder (archive, root, "Factory");
    count += addFolder (archive, root, "User");

    if (count == 0)
    {
        std::cerr << "no presets below " << root.getFullPathName() << '\n';
        return 1;
    }

    juce::MemoryOutputStream bytes;

    if (! archive.writeToStream (bytes, nullptr) ||
        ! target.replaceWithData (bytes.getData(), bytes.getDataSize()) ||
        target.getSize() != static_cast<juce::int64> (bytes.getDataSize()))  // a full disk
    {
        std::cerr << "cannot pack " << root.getFullPathName() << '\n';
        return 1;
    }

    return 0;
}
