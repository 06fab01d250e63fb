// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/document_guard.h"
#include "state_fixture.h"

#include <sys/stat.h>

class DocumentGuard : public StateTest
{
protected:
    static juce::String times (const juce::String& text, int n)
    {
        return juce::String::repeatedString (text, n);
    }

    static bool takes (const juce::String& text) { return parseDocument (text) != nullptr; }

    static bool takesBytes (std::string_view bytes)
    {
        return parseDocument (juce::MemoryBlock (bytes.data(), bytes.size())) != nullptr;
    }
};

TEST_F (DocumentGuard, PullsInNoNeighbouringFileAndNoEntities)
{
    putFile (homeFile ("secret.txt"), "<!ENTITY s \"taken\">");
    putFile (homeFile ("doc.xml"), "<!DOCTYPE a SYSTEM \"secret.txt\"><a b=\"&s;\"/>");
    EXPECT_EQ (parseDocument (homeFile ("doc.xml")), nullptr);

    EXPECT_FALSE (takes ("<?xml version=\"1.0\"?>\n<!-- c --> <?p?>"
                         "<!DOCTYPE a [<!ENTITY a \"x&a;\">]><a b=\"&a;\"/>"));
    EXPECT_FALSE (takes ("<!doctype a><a/>"));
    EXPECT_FALSE (takes ("<a><!DOCTYPE a><b/></a>"));
    EXPECT_TRUE (takes ("<!-- <!DOCTYPE a> --><a b=\"<!DOCTYPE a>\"/>"));
}

TEST_F (DocumentGuard, LimitsNestingToWhatSmallStacksCarry)
{
    const auto nested = [] (int levels) { return times ("<a>", levels) + times ("</a>", levels); };
    EXPECT_TRUE (takes (nested (kMaxDocumentDepth)));
    EXPECT_FALSE (takes (nested (kMaxDocumentDepth + 1)));
    EXPECT_FALSE (takes (nested (200000)));
    EXPECT_TRUE (takes ("<r>" + times (nested (3), 1000) + "</r>"));  // side by side isn't nested

    // What looks like an end to one who takes values, comments or literal text for markup.
    for (const char* const noEnd :
         { "<a b=\"</a>\">", "<a b='/>'>", "<a><!-- </a> -->", "<a><![CDATA[</a>]]>",
           "<a><?p </a> ?>", "<a <!-- /> --> >", "<a>x<!-- </a> -->" })
        EXPECT_FALSE (takes (times (noEnd, 100) + times ("</a>", 100))) << noEnd;
}

TEST_F (DocumentGuard, LimitsSizeAndCounts)
{
    std::string text = "<a>" + std::string (kMaxDocumentBytes - 7, 'x') + "</a>";
    EXPECT_TRUE (takesBytes (text));
    text.insert (3, "x");
    EXPECT_FALSE (takesBytes (text));
    EXPECT_FALSE (takes (text));

    const auto attributes = [] (int n)
    {
        juce::String result = "<a";

        for (int i = 0; i < n; ++i)
            result << " n" << i << "=\"\"";

        return result + "/>";
    };

    EXPECT_TRUE (takes (attributes (kMaxElementAttributes)));
    EXPECT_FALSE (takes (attributes (kMaxElementAttributes + 1)));
    EXPECT_FALSE (takes ("<a>" + times ("<b/>", kMaxDocumentNames) + "</a>"));

    // However a character is spelled, it is one.
    for (const char* const one : { "x", "\xc3\xbc", "&#x10ffff;", "&QUOT;" })
        for (const int more : { 0, 1 })
            EXPECT_EQ (takes ("<a b=\"" +
                              times (juce::String::fromUTF8 (one), kMaxAttributeCharacters + more) +
                              "\"/>"),
                       more == 0)
                << one;

    // Limits of a file's own, for elements and for bytes.
    putFile (homeFile ("own.xml"), "<a><b c=\"\"/></a>");
    EXPECT_NE (parseDocument (homeFile ("own.xml"), { 16, 3 }), nullptr);
    EXPECT_EQ (parseDocument (homeFile ("own.xml"), { 16, 2 }), nullptr);
    EXPECT_EQ (parseDocument (homeFile ("own.xml"), { 15, 3 }), nullptr);
}

TEST_F (DocumentGuard, RefusesWhatTheParserWouldReadBeyondOrNeverFinish)
{
    // clang-format off
    for (const char* const text : {
             "<a b=\"&#x", "<a b=\"&#x41", "<a>&#x", "<a>&#", "<a b=\"&amp", "<a>&", "<a b=\"&#x110000;\"/>",
             "<a b=\"&#xd800;\"/>", "<a b=\"&#0;\"/>", "<a b=\"&#x7fffffff;\"/>", "<a b=\"&#12a;\"/>",
             "<a><?p?>text</a>", "<a> <!-- c --> <?p?> text</a>", "<a>x<?p?>y</a>", "<a>&<b><b/></b>;</a>",
             "<a b=\"x & y\"/>", "<a", "<a ", "<a b", "<a b=", "<a b=\"", "<a b=c/>", "<a>", "<a></a", "<a><!--",
             "<a><![CDATA[ ]]", "<a><?p", "<!--", "<?xml", "</a>", "<>", "< a/>", "<1a/>", "<a .=''/>", "text", "" })
    {
        EXPECT_FALSE (takes (text)) << text;
        EXPECT_FALSE (takesBytes (text)) << text;
    }

    for (const char* const text : {
             "<a/>", "\n<!-- -- --><?p?><a/>trailing", "<a b = '\"' c=\"'\"/>", "<a>x &lt; <!-- --> y</a>",
             "<a><?p?><b/></a>", "<a>x<![CDATA[<b>]]>y</a>", "<a>&#65;&#x41;&unknown;</a>", "<a <!-- --> b=\"1\"/>",
             "<a></b>", "<b:b_.-1/>" })
        EXPECT_TRUE (takes (text)) << text;
    // clang-format on
}

TEST_F (DocumentGuard, ReadsOtherEncodingsAndRefusesWhatIsNone)
{
    using namespace std::string_view_literals;

    for (const auto bytes : { "<a b=\"\xc3\xbc\"/>"sv, "\xef\xbb\xbf<a b=\"\xc3\xbc\"/>"sv,
                              "<a b=\"\xfc\"/>"sv, "\xff\xfe<\0a\0 \0b\0=\0\"\0\xfc\0\"\0/\0>\0"sv,
                              "\xfe\xff\0<\0a\0 \0b\0=\0\"\0\xfc\0\"\0/\0>"sv })
    {
        const auto document = parseDocument (juce::MemoryBlock (bytes.data(), bytes.size()));
        ASSERT_NE (document, nullptr) << bytes;
        EXPECT_EQ (document->getStringAttribute ("b"), juce::String::fromUTF8 ("\xc3\xbc"));
    }

    // Characters without an end, or half of a pair: some would swallow what follows.
    for (const auto bytes :
         { "<a b=\"\xf0"sv, "<a b=\"\xc3\"/>"sv, "<a>\xc3</a>"sv, "<a><?\xc3?><b/></a>"sv,
           "<a>\xdf"sv, "\xff\xfe<\0a\0 \0b\0=\0\"\0\x3d\xd8\"\0/\0>\0"sv, "<a\0/>"sv })
        EXPECT_FALSE (takesBytes (bytes)) << bytes;

    // Overlong, of a pair, out of range, out of place, cut short.
    for (const char* const bytes : { "\xc1\xbf", "\xe0\x9f\xbf", "\xed\xa0\x80", "\xf0\x8f\xbf\xbf",
                                     "\xf4\x90\x80\x80", "\x80", "\xe2\x82" })
        EXPECT_FALSE (takes ("<a>" + juce::String (juce::CharPointer_UTF8 (bytes)) + "</a>"));

    EXPECT_TRUE (
        takesBytes ("<a>\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf</a>"));
}

TEST_F (DocumentGuard, OpensNothingButRegularFiles)
{
    const auto pipe = homeFile ("pipe.xml");
    ASSERT_EQ (mkfifo (pipe.getFullPathName().toRawUTF8(), 0600), 0);
    EXPECT_EQ (parseDocument (pipe), nullptr);  // and doesn't wait for a writer
    EXPECT_EQ (parseDocument (juce::File ("/dev/zero")), nullptr);

    putFile (homeFile ("real.xml"), "<a/>");
    ASSERT_TRUE (homeFile ("real.xml").createSymbolicLink (homeFile ("link.xml"), false));
    EXPECT_NE (parseDocument (homeFile ("link.xml")), nullptr);
}
