// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "state/first_run_install.h"
#include "state_fixture.h"

#include <string>
#include <utility>
#include <vector>

/** Installs of a made-up archive, which is like the shipped one and has files that tell each other apart. */
class FirstRun : public StateTest
{
protected:
    static constexpr int kFactoryFiles = 64;

    /** What the n-th factory file of the made-up archive holds. */
    static std::string content (int n)
    {
        return std::string (static_cast<std::size_t> (3000 + 50 * n),
                            static_cast<char> ('a' + n % 26));
    }

    static juce::String factoryName (int n)
    {
        return "Factory/" + juce::String (n).paddedLeft ('0', 2) + " - Name.zbpreset";
    }

    static inline const std::string kDefault = "<VelkorSettings PresetName=\"Fresh\"><Parameters/>"
                                               "<!-- " +
                                               std::string (5000, 'd') + " --></VelkorSettings>";

    /** An archive like the shipped one, with more entries behind it. */
    static juce::MemoryBlock
    makeArchive (const std::vector<std::pair<juce::String, std::string>>& more = {})
    {
        juce::ZipFile::Builder builder;
        const auto add = [&] (const juce::String& name, const std::string& bytes)
        {
            builder.addEntry (new juce::MemoryInputStream (bytes.data(), bytes.size(), true), 9,
                              name, juce::Time (2000, 0, 1, 0, 0));
        };

        for (int n = 0; n < kFactoryFiles; ++n)
            add (factoryName (n), content (n));

        add ("User/Default.zbpreset", kDefault);

        for (const auto& [name, bytes] : more)
            add (name, bytes);

        juce::MemoryOutputStream out;
        builder.writeToStream (out, nullptr);
        return out.getMemoryBlock();
    }

    void install (const juce::MemoryBlock& archive) const
    {
        installFirstRunContent (presets(), archive.getData(), archive.getSize());
    }

    /** A file of the archive, for other processes. */
    juce::File archiveFile() const
    {
        const auto file = homeFile ("Archive.zip");
        const auto archive = makeArchive();
        putFile (file, { archive.begin(), archive.getSize() });
        return file;
    }

    void expectComplete() const
    {
        for (int n = 0; n < kFactoryFiles; ++n)
            ASSERT_EQ (bytesOf (presets (factoryName (n))), content (n)) << n;

        EXPECT_EQ (bytesOf (presets ("User/Default.zbpreset")), kDefault);
    }

    void expectNothingBeside() const
    {
        for (const auto& entry :
             presets().findChildFiles (juce::File::findFilesAndDirectories, false))
            EXPECT_TRUE (entry.getFileName() == "Factory" || entry.getFileName() == "User")
                << entry.getFileName();
    }
};
