// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/document_guard.h"
#include "state_fixture.h"

#include <sys/stat.h>

class DocumentGuard : public StateTest
{
};

static juce::String nested (int levels)
{
    return juce::String::repeatedString ("<a>", levels) +
           juce::String::repeatedString ("</a>", levels);
}

TEST_F (DocumentGuard, RefusesADocumentTypeWhereverItMayStand)
{
    const char* const kEntity = "<!DOCTYPE a [<!ENTITY a \"x&a;\">]>";
    EXPECT_EQ (parseDocument (juce::String (kEntity) + "<a b=\"&a;\"/>"), nullptr);
    EXPECT_EQ (parseDocument (juce::String ("<?xml version=\"1.0\"?>\n<!-- c --> <?p?>") + kEntity +
                              "<a b=\"&a;\"/>"),
               nullptr);
    EXPECT_EQ (parseDocument (juce::String ("<!doctype a><a/>")), nullptr);

    // Inside of the element or of a comment it is no document type; the first is no document either.
    EXPECT_EQ (parseDocument (juce::String ("<a><!DOCTYPE a><b/></a>")), nullptr);
    EXPECT_NE (parseDocument (juce::String ("<!-- <!DOCTYPE a> --><a b=\"<!DOCTYPE a>\"/>")),
               nullptr);
}

TEST_F (DocumentGuard, PullsInNoNeighbouringFile)
{
    putFile (homeFile ("secret.txt"), "<!ENTITY s \"taken\">");
    putFile (homeFile ("doc.xml"), "<!DOCTYPE a SYSTEM \"secret.txt\"><a b=\"&s;\"/>");
    EXPECT_EQ (parseDocument (homeFile ("doc.xml")), nullptr);

    putFile (homeFile ("plain.xml"), "<a b=\"&s;\"/>");
    const auto plain = parseDocument (homeFile ("plain.xml"));
    ASSERT_NE (plain, nullptr);
    EXPECT_EQ (plain->getStringAttribute ("b"), "s");
}

TEST_F (DocumentGuard, LimitsNestingToWhatSmallStacksCarry)
{
    EXPECT_NE (parseDocument (nested (kMaxDocumentDepth)), nullptr);
    EXPECT_EQ (parseDocument (nested (kMaxDocumentDepth + 1)), nullptr);
    EXPECT_EQ (parseDocument (nested (200000)), nullptr);

    // Side by side isn't nested.
    EXPECT_NE (parseDocument ("<r>" + juce::String::repeatedString (nested (3), 1000) + "</r>"),
               nullptr);

    // What looks like an end to one who takes values, comments or literal text for markup.
    for (const char* const noEnd :
         { "<a b=\"</a>\">", "<a b='/>'>", "<a><!-- </a> -->", "<a><![CDATA[</a>]]>",
           "<a><?p </a> ?>", "<a <!-- /> --> >", "<a>x<!-- </a> -->" })
        EXPECT_EQ (parseDocument (juce::String::repeatedString (noEnd, 100) +
                                  juce::String::repeatedString ("</a>", 100)),
                   nullptr)
            << noEnd;
}

TEST_F (DocumentGuard, LimitsSizeAndCounts)
{
    const auto bytes = [] (const std::string& text)
    { return juce::MemoryBlock (text.data(), text.size()); };

    const std::string head = "<a>", tail = "</a>";
    std::string text = head + std::string (kMaxDocumentBytes - 7, 'x') + tail;
    EXPECT_NE (parseDocument (bytes (text)), nullptr);
    putFile (homeFile ("fits.xml"), text);
    EXPECT_NE (parseDocument (homeFile ("fits.xml")), nullptr);

    text.insert (3, "x");
    EXPECT_EQ (parseDocument (bytes (text)), nullptr);
    EXPECT_EQ (parseDocument (juce::String (text)), nullptr);
    putFile (homeFile ("large.xml"), text);
    EXPECT_EQ (parseDocument (homeFile ("large.xml")), nullptr);

    const auto attributes = [] (int n)
    {
        juce::String result = "<a";

        for (int i = 0; i < n; ++i)
            result << " n" << i << "=\"\"";

        return result + "/>";
    };

    EXPECT_NE (parseDocument (attributes (kMaxElementAttributes)), nullptr);
    EXPECT_EQ (parseDocument (attributes (kMaxElementAttributes + 1)), nullptr);

    // However a character is spelled, it is one; an escape that nobody knows is its name.
    for (const char* const one :
         { "x", "\xc3\xbc", "&#252;", "&#x10ffff;", "&QUOT;", "&lt;", "&x;" })
    {
        const auto value = [one] (int n)
        { return juce::String::repeatedString (juce::String::fromUTF8 (one), n); };
        EXPECT_NE (parseDocument ("<a b=\"" + value (kMaxAttributeCharacters) + "\"/>"), nullptr)
            << one;
        EXPECT_EQ (parseDocument ("<a b=\"" + value (kMaxAttributeCharacters + 1) + "\"/>"),
                   nullptr)
            << one;
    }

    EXPECT_EQ (parseDocument (
                   "<a b=\"" +
                   juce::String::repeatedString ("&ab;", kMaxAttributeCharacters / 2 + 1) + "\"/>"),
               nullptr);
    EXPECT_EQ (
        parseDocument ("<a>" + juce::String::repeatedString ("<b/>", kMaxDocumentNames) + "</a>"),
        nullptr);

    // Limits of a file's own, for elements and for bytes.
    putFile (homeFile ("own.xml"), "<a><b c=\"\"/></a>");
    EXPECT_NE (parseDocument (homeFile ("own.xml"), { 16, 3 }), nullptr);
    EXPECT_EQ (parseDocument (homeFile ("own.xml"), { 16, 2 }), nullptr);
    EXPECT_EQ (parseDocument (homeFile ("own.xml"), { 15, 3 }), nullptr);
}

TEST_F (DocumentGuard, RefusesWhatTheParserWouldReadBeyondOrNeverFinish)
{
    for (const char* const text : { "<a b=\"&#x",
                                    "<a b=\"&#x41",
                                    "<a>&#x",
                                    "<a>&#",
                                    "<a b=\"&amp",
                                    "<a>&",
                                    "<a b=\"&#x110000;\"/>",
                                    "<a b=\"&#xd800;\"/>",
                                    "<a b=\"&#0;\"/>",
                                    "<a b=\"&#x7fffffff;\"/>",
                                    "<a b=\"&#12a;\"/>",
                                    "<a><?p?>text</a>",
                                    "<a> <!-- c --> <?p?> text</a>",
                                    "<a>x<?p?>y</a>",
                                    "<a>&<b><b/></b>;</a>",
                                    "<a b=\"x & y\"/>",
                                    "<a",
                                    "<a ",
                                    "<a b",
                                    "<a b=",
                                    "<a b=\"",
                                    "<a b=c/>",
                                    "<a>",
                                    "<a></a",
                                    "<a><!--",
                                    "<a><![CDATA[ ]]",
                                    "<a><?p",
                                    "<!--",
                                    "<?xml",
                                    "</a>",
                                    "<>",
                                    "< a/>",
                                    "<1a/>",
                                    "<-a/>",
                                    "<a .=''/>",
                                    "<a 1=\"\"/>",
                                    "text",
                                    " ",
                                    "" })
    {
        EXPECT_EQ (parseDocument (juce::String (text)), nullptr) << text;
        EXPECT_EQ (parseDocument (juce::MemoryBlock (text, strlen (text))), nullptr) << text;
    }

    for (const char* const text :
         { "<a/>", "\n<!-- -- --><?p?><a/>trailing", "<a b = '\"' c=\"'\"/>",
           "<a>x &lt; <!-- --> y</a>", "<a><?p?><b/></a>", "<a>x<![CDATA[<b>]]>y</a>",
           "<a>&#65;&#x41;&unknown;</a>", "<a <!-- --> b=\"1\"/>", "<a></b>", "<b:b_.-1/>" })
        EXPECT_NE (parseDocument (juce::String::fromUTF8 (text)), nullptr) << text;
}

TEST_F (DocumentGuard, ReadsOtherEncodingsAndRefusesWhatIsNone)
{
    const auto parse = [] (std::string_view bytes)
    { return parseDocument (juce::MemoryBlock (bytes.data(), bytes.size())); };

    using namespace std::string_view_literals;
    const auto wanted = juce::String::fromUTF8 ("\xc3\xbc");

    for (const auto bytes : { "<a b=\"\xc3\xbc\"/>"sv, "\xef\xbb\xbf<a b=\"\xc3\xbc\"/>"sv,
                              "<a b=\"\xfc\"/>"sv, "\xff\xfe<\0a\0 \0b\0=\0\"\0\xfc\0\"\0/\0>\0"sv,
                              "\xfe\xff\0<\0a\0 \0b\0=\0\"\0\xfc\0\"\0/\0>"sv })
    {
        const auto document = parse (bytes);
        ASSERT_NE (document, nullptr) << bytes;
        EXPECT_EQ (document->getStringAttribute ("b"), wanted) << bytes;
    }

    // Characters without an end, overlong, half of a pair, out of range: some would swallow what follows.
    // Where the bytes can't be UTF-8 by the framework's lights either, they are read as Western.
    for (const auto bytes :
         { "<a b=\"\xf0"sv, "<a b=\"\xc3\"/>"sv, "<a>\xc3</a>"sv, "<a><?\xc3?><b/></a>"sv,
           "<a>\xdf"sv, "\xff\xfe<\0a\0 \0b\0=\0\"\0\x3d\xd8\"\0/\0>\0"sv })
        EXPECT_EQ (parse (bytes), nullptr) << bytes;

    const char* const kIllFormed[] = { "<a>\xc1\xbf</a>",         "<a>\xe0\x9f\xbf</a>",
                                       "<a>\xed\xa0\x80</a>",     "<a>\xf0\x8f\xbf\xbf</a>",
                                       "<a>\xf4\x90\x80\x80</a>", "<a>\x80</a>",
                                       "<a>\xe2\x82</a>" };

    for (const char* const text : kIllFormed)
        EXPECT_EQ (parseDocument (juce::String (juce::CharPointer_UTF8 (text),
                                                juce::CharPointer_UTF8 (text + strlen (text)))),
                   nullptr)
            << text;

    EXPECT_NE (parse ("<a>\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf</a>"sv),
               nullptr);
    EXPECT_NE (parse ("<a/>\0<a"sv), nullptr);
    EXPECT_EQ (parse ("<a\0/>"sv), nullptr);
}

TEST_F (DocumentGuard, OpensNothingButRegularFiles)
{
    const auto pipe = homeFile ("pipe.xml");
    ASSERT_EQ (mkfifo (pipe.getFullPathName().toRawUTF8(), 0600), 0);
    EXPECT_EQ (parseDocument (pipe), nullptr);  // and doesn't wait for a writer
    EXPECT_EQ (parseDocument (juce::File ("/dev/zero")), nullptr);
    EXPECT_EQ (parseDocument (homeFile ("")), nullptr);

    putFile (homeFile ("real.xml"), "<a/>");
    ASSERT_TRUE (homeFile ("real.xml").createSymbolicLink (homeFile ("link.xml"), false));
    EXPECT_NE (parseDocument (homeFile ("link.xml")), nullptr);
}
