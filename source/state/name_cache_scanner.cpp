// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/name_cache_scanner.h"

#include "state/document_guard.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>

namespace
{

/** Goes through a text. What it does not know it leaves to the parser of documents: a false
    from any of its functions ends the scan. */
class Scanner
{
public:
    explicit Scanner (std::string_view textToScan) : text (textToScan) {}

    bool skip (std::string_view word)
    {
        if (! text.starts_with (word))
            return false;

        text.remove_prefix (word.size());
        return true;
    }

    void skipSpace()
    {
        const auto end = text.find_first_not_of (" \r\n");
        text.remove_prefix (std::min (end, text.size()));
    }

    bool isAtEnd() const { return text.empty(); }

    /** Reads ` name="value"` into value, if it comes next. */
    bool readAttribute (std::string_view name, juce::String& value)
    {
        skipSpace();

        if (! skip (name) || ! skip ("=\""))
            return false;

        const auto end = text.find ('"');

        if (end >= static_cast<std::size_t> (kMaxAttributeCharacters))
            return false;

        const auto raw = text.substr (0, end);
        text.remove_prefix (end + 1);

        // Our writer spells all but the printable characters of ASCII as numbers.
        if (std::any_of (raw.begin(), raw.end(),
                         [] (char c) { return c < 0x20 || c > 0x7e || c == '<' || c == '>'; }))
            return false;

        if (raw.find ('&') == std::string_view::npos)
        {
            value = juce::String::fromUTF8 (raw.data(), static_cast<int> (raw.size()));
            return true;
        }

        return decode (raw, value);
    }

private:
    static bool decode (std::string_view raw, juce::String& value)
    {
        value.clear();
        value.preallocateBytes (raw.size());

        while (! raw.empty())
        {
            const auto plain = std::min (raw.find ('&'), raw.size());
            value.appendCharPointer (juce::CharPointer_ASCII (raw.data()),
                                     juce::CharPointer_ASCII (raw.data() + plain));
            raw.remove_prefix (plain);

            if (! raw.empty() && ! decodeEscape (raw, value))
                return false;
        }

        return true;
    }

    static bool decodeEscape (std::string_view& raw, juce::String& value)
    {
        const auto end = raw.find (';');

        if (end == std::string_view::npos)
            return false;

        const auto word = raw.substr (1, end - 1);
        raw.remove_prefix (end + 1);
        unsigned int character = word == "amp"    ? '&'
                                 : word == "quot" ? '"'
                                 : word == "lt"   ? '<'
                                 : word == "gt"   ? '>'
                                                  : 0;

        if (character == 0 && word.starts_with ('#'))
        {
            const auto* const last = word.data() + word.size();
            const auto result = std::from_chars (word.data() + 1, last, character);

            if (result.ec != std::errc() || result.ptr != last)
                return false;
        }

        // No control characters, no half of a surrogate pair, nothing at the end of a plane.
        if (character < 0x20 || (character >= 0xd800 && character < 0xe000) ||
            character > 0x10fffd || (character & 0xfffe) == 0xfffe)
            return false;

        value += static_cast<juce::juce_wchar> (character);
        return true;
    }

    std::string_view text;
};

}  // namespace

std::optional<NameCacheContents> scanNameCache (std::string_view text, int maxPresets)
{
    Scanner scanner (text);
    NameCacheContents found;
    juce::String version, count, path, name, type;

    if (! scanner.skip ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"))
        return {};

    scanner.skipSpace();

    if (! scanner.skip ("<PresetCache ") || ! scanner.readAttribute ("version", version) ||
        ! scanner.readAttribute ("pluginName", found.pluginName) ||
        ! scanner.readAttribute ("fileCount", count) || ! scanner.skip (">"))
        return {};

    for (scanner.skipSpace(); scanner.skip ("<Preset "); scanner.skipSpace())
    {
        if (--maxPresets < 0 || ! scanner.readAttribute ("path", path) ||
            ! scanner.readAttribute ("name", name) || ! scanner.readAttribute ("type", type) ||
            ! scanner.skip ("/>"))
            return {};

        // The file is in the map's order, so that each entry goes to the end.
        found.presets.insert_or_assign (found.presets.end(), path,
                                        KnownPreset { name, type.getIntValue() });
    }

    if (! scanner.skip ("</PresetCache>"))
        return {};

    scanner.skipSpace();

    if (! scanner.isAtEnd())
        return {};

    found.version = version.getIntValue();
    found.fileCount = count.getIntValue();
    return found;
}
