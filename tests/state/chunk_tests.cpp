// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/document_guard.h"
#include "state/state_carriers.h"
#include "state_fixture.h"

#include <cmath>
#include <limits>

class Chunk : public StateTest
{
protected:
    static void restore (VelkorAudioProcessor& into, const juce::MemoryBlock& chunk)
    {
        into.setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    }

    static juce::String matricesOf (VelkorAudioProcessor& of)
    {
        return textOf (of).fromFirstOccurrenceOf ("<SignalMatrix", true, false);
    }

    VelkorAudioProcessor processor;
};

TEST_F (Chunk, RefusesAChunkWithoutItsFrameAndCutsOneThatIsTooLong)
{
    const auto good = chunkAround (documentWith ("<Parameters/>"));

    const auto nameAfter = [&] (std::size_t size, juce::uint32 magic, int length)
    {
        auto chunk = good;
        chunk.copyFrom (&magic, 0, 4);
        chunk.copyFrom (&length, 4, 4);
        chunk.setSize (size);
        processor.presetName = "Before";
        restore (processor, chunk);
        return processor.presetName;
    };

    constexpr juce::uint32 kMagic = 0x21324356;
    const auto size = good.getSize();
    EXPECT_EQ (nameAfter (0, kMagic, 100), "Before");
    EXPECT_EQ (nameAfter (8, kMagic, 100), "Before");
    EXPECT_EQ (nameAfter (size, kMagic + 1, 100), "Before");

    for (const int length : { 0, -1, std::numeric_limits<int>::min(), 20 })
        EXPECT_EQ (nameAfter (size, kMagic, length), "Before") << length;

    EXPECT_EQ (nameAfter (size, kMagic, std::numeric_limits<int>::max()), "Test");
}

TEST_F (Chunk, TakesTheEditorsSizeOutOfAnyChunkThatParses)
{
    const auto filed = bytesOf (globals());
    restore (processor,
             chunkAround (documentWith ("<Parameters/>")
                              .replace (" Version", " uiWidth=\"1100\" uiHeight=\"7x\" Version")));
    EXPECT_EQ (processor.uiWidth, 1100);
    EXPECT_EQ (processor.uiHeight, 7);

    restore (processor,
             chunkAround ("<Other PresetName=\"x\" uiWidth=\"5\"><Parameters/></Other>"));
    EXPECT_EQ (processor.uiWidth, 5);
    EXPECT_EQ (processor.uiHeight, 0);
    EXPECT_EQ (processor.presetName, "Test");
    EXPECT_EQ (bytesOf (globals()), filed);
}

TEST_F (Chunk, OfAnyDocumentThatLoadsIsTakenByAnotherInstance)
{
    const auto times = [] (const juce::String& text, int n)
    { return juce::String::repeatedString (text, n); };
    juce::String attributes;

    for (int i = 0; i < kMaxElementAttributes - 1; ++i)
        attributes << " a" << i << "=\"\"";

    const juce::String kDocuments[] = {
        documentWith ("<Parameters/>", times ("&#x10ffff;", kMaxAttributeCharacters)),
        documentWith ("<Parameters/>",
                      juce::String::fromUTF8 ("&quot;Tom &amp; 'J'&quot; &lt;\xc3\xbc> &#10;.")),
        documentWithParams (times ("<x a=\"1\"><y/>", 60) + times ("</x>", 60) +
                            times ("<x/>", 65000)),
        documentWithParams (times ("<x b=\"" + times ("&quot;", 8000) + "\"/>", 80)),
        documentWithParams (times ("<x b=\"" + times ("&#x10ffff;", 8000) + "\"/>", 40)),
        "<VelkorSettings PresetName=\"Loaded\"><Parameters b=\"" +
            times ("&#x10ffff;", kMaxAttributeCharacters) + "\"" + attributes +
            "/></VelkorSettings>",
    };

    for (const auto& document : kDocuments)
    {
        SCOPED_TRACE (document.substring (0, 100));
        processor.presetName = "unloaded";
        setStateFromText (processor, document);
        ASSERT_NE (processor.presetName, "unloaded");
        juce::MemoryBlock chunk;
        processor.getStateInformation (chunk);
        EXPECT_LT (chunk.getSize(), kMaxDocumentBytes / 4);

        VelkorAudioProcessor other;
        restore (other, chunk);
        EXPECT_NE (parseDocument (textOf (processor)), nullptr);
        EXPECT_EQ (textOf (other), textOf (processor));  // the name in it, too
    }
}

TEST_F (Chunk, BringsASessionIntoAnotherInstanceWhereNothingCreepsFromThenOn)
{
    for (std::uint32_t seed = 10; seed < 20; ++seed)
    {
        SCOPED_TRACE (seed);
        juce::MemoryBlock saved, again, elsewhere;
        VelkorAudioProcessor other;
        scramble (processor, seed);
        processor.getStateInformation (saved);
        restore (other, saved);

        for (const auto& info : parameterInfo)
        {
            // The store takes a value through its range, and the logarithmic and cubic ones round.
            const float value = valueOf (processor, info.name);
            EXPECT_NEAR (valueOf (other, info.name), value, std::abs (value) * 2e-6f) << info.name;
        }

        EXPECT_EQ (matricesOf (other), matricesOf (processor));
        other.getStateInformation (again);
        restore (other, again);
        other.getStateInformation (elsewhere);
        EXPECT_EQ (elsewhere, again);
    }
}
