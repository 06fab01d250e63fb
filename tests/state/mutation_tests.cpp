// SPDX-License-Identifier: AGPL-3.0-or-later
#include "legal_state.h"
#include "state/state_carriers.h"
#include "state_fixture.h"
#include "support/duel.h"

class Mutations : public StateTest
{
protected:
    /** What tells one kind of markup from another, and numbers that are none. */
    static std::string token (Noise& noise)
    {
        // clang-format off
        static const std::string kTokens[] = {
            "<", ">", "/>", "</", "<!--", "-->", "<?", "?>", "<![CDATA[", "]]>", "<!DOCTYPE a [", "&#x", "&", ";",
            "&amp;", "&#0;", "\"", "'", "=", " ", "\n", "nan", "inf", "-1", "1e999", "4294967297",
            "99999999999999999999", "<PARAM id=\"Kill\" value=\"nan\"/>", "<PARAM id=\"Pan 1\"/>", "<Parameters>",
            "</Parameters>", "<Connection input=\"7\" output=\"9\"/>", "<Connection source=\"5\" dest=\"9\"/>",
            "\xf0", "\xc3\xbc", "\xff\xfe", std::string (1, '\0') };
        // clang-format on
        return kTokens[noise.below (static_cast<int> (std::size (kTokens)))];
    }

    static void mutate (std::string& text, Noise& noise)
    {
        const auto place = [&]
        { return static_cast<std::size_t> (noise.below (static_cast<int> (text.size()) + 1)); };
        const auto at = place();
        const auto length = static_cast<std::size_t> (noise.below (40));

        // clang-format off
        switch (noise.below (6))
        {
        case 0: text.insert (at, token (noise)); return;
        case 1: text.erase (at, length); return;
        case 2: text.insert (place(), text.substr (at, length)); return;
        case 3: text.replace (at, 1, 1, static_cast<char> (noise.below (256))); return;
        case 4: text.replace (at, length, token (noise)); return;
        default: break;
        }
        // clang-format on

        if (noise.chance (0.1f))
            text.resize (at);
        else
            text.insert (at, std::to_string (noise.below (2000) - 500));
    }
};

TEST_F (Mutations, OfDocumentsAndChunksLeaveAnInstanceThatPlaysAndSavesALegalState)
{
    VelkorAudioProcessor processor;
    processor.prepareToPlay (48000.0, 64);
    const std::string seeds[] = { keptDocument ("default_saved.zbpreset"),
                                  factoryDocuments()[3].toStdString(),
                                  factoryDocuments()[27].toStdString() };
    Noise noise (20);
    int loaded = 0;

    for (int i = 0; i < 6000; ++i)
    {
        std::string text = seeds[noise.below (3)];

        for (int n = noise.below (3); n >= 0; --n)
            mutate (text, noise);

        processor.presetName = "unloaded";

        if (noise.chance (0.5f))
        {
            auto chunk = chunkAround ({});
            const auto length = noise.chance (0.05f) ? noise.bits() : text.size();
            chunk.copyFrom (&length, 4, 4);
            chunk.setSize (8);
            chunk.append (text.data(), text.size());
            processor.setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
        }
        else
        {
            // The framework's strings are UTF-8 by their nature; bytes that are not come in by files.
            putFile (homeFile ("mutated.zbpreset"), text);
            setStateFromFile (processor, homeFile ("mutated.zbpreset"));
        }

        if (processor.presetName != "unloaded" && processor.presetName != "Error Loading Preset")
            ++loaded;

        ASSERT_EQ (faultOf (processor), "") << "mutation " << i << ":\n" << text;
    }

    // Mutations that all break the markup would show nothing.
    EXPECT_GT (loaded, 1200);
    EXPECT_LT (loaded, 5500);
}
