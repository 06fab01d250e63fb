// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/document_guard.h"
#include "state/state_carriers.h"
#include "state_fixture.h"

#include <cmath>

class Chunk : public StateTest
{
protected:
    VelkorAudioProcessor processor;
};

static const juce::String kNoMatrices = documentWith ("<Parameters/>", "Bare");

TEST_F (Chunk, RefusesAChunkWithoutItsFrameAndCutsOneThatIsTooLong)
{
    scramble (processor, 5);
    juce::MemoryBlock before;
    processor.getStateInformation (before);
    const auto good = chunkAround (kNoMatrices);

    const auto expectRefused = [&] (const juce::MemoryBlock& chunk, const char* why)
    {
        processor.setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
        juce::MemoryBlock after;
        processor.getStateInformation (after);
        EXPECT_EQ (after, before) << why;
    };

    auto chunk = good;
    chunk.setSize (8);
    expectRefused (chunk, "no text");
    chunk.setSize (0);
    expectRefused (chunk, "nothing");
    chunk = good;
    chunk[3] = '?';
    expectRefused (chunk, "magic");

    for (const juce::uint32 length : { 0u, 0x80000000u, 0xffffffffu })
    {
        chunk = good;
        chunk.copyFrom (&length, 4, 4);
        expectRefused (chunk, "length below 1");
    }

    const int cut = 20;
    chunk = good;
    chunk.copyFrom (&cut, 4, 4);
    expectRefused (chunk, "text that is cut short");

    const int excess = 0x7fffffff;
    chunk = good;
    chunk.copyFrom (&excess, 4, 4);
    processor.setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    EXPECT_EQ (processor.presetName, "Bare");
}

TEST_F (Chunk, TakesTheEditorsSizeOutOfAnyChunkThatParses)
{
    const auto restore = [this] (const juce::String& text)
    {
        const auto chunk = chunkAround (text);
        processor.setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    };

    const auto filed = bytesOf (globals());
    restore (kNoMatrices.replace (" Version", " uiWidth=\"1100\" uiHeight=\"7x\" Version"));
    EXPECT_EQ (processor.uiWidth, 1100);
    EXPECT_EQ (processor.uiHeight, 7);

    processor.presetName = "Before";
    restore ("<Other PresetName=\"x\" uiWidth=\"5\"><Parameters/></Other>");
    EXPECT_EQ (processor.uiWidth, 5);
    EXPECT_EQ (processor.uiHeight, 0);
    EXPECT_EQ (processor.presetName, "Before");
    EXPECT_EQ (bytesOf (globals()), filed);
}

TEST_F (Chunk, OfAnyDocumentThatLoadsIsTakenByAnotherInstance)
{
    const auto times = [] (const char* text, int n)
    { return juce::String::repeatedString (juce::String::fromUTF8 (text), n); };
    juce::String attributes;

    for (int i = 0; i < kMaxElementAttributes - 1; ++i)
        attributes << " a" << i << "=\"\"";

    const auto withParams = [] (const juce::String& params)
    { return documentWith ("<Parameters>" + params + "</Parameters>", "Loaded"); };

    const juce::String kDocuments[] = {
        documentWith ("<Parameters/>", times ("\xc3\xbc", 8000)),
        documentWith ("<Parameters/>", times ("&#x10ffff;", kMaxAttributeCharacters)),
        documentWith ("<Parameters/>", times ("&quot;", 3000)),
        withParams (times ("<x/>", 65500)),
        withParams (times ("<x a=\"1\"><y/>", 60) + times ("</x>", 60) + times ("<x/>", 65000)),
        withParams (times (("<" + times ("n", 4000) + ">").toRawUTF8(), 50) +
                    times (("</" + times ("n", 4000) + ">").toRawUTF8(), 50)),
        withParams (times (("<x b=\"" + times ("\xc3\xbc", 8000) + "\"/>").toRawUTF8(), 200)),
        withParams ("<PARAM id=\"Kill\" value=\"1\" b=\"" + times ("\xc3\xbc", 8000) + "\"/>"),
        withParams ("<PARAM id=\"Kill\"" + attributes + "/>"),
        "<VelkorSettings PresetName=\"Loaded\"><Parameters b=\"" +
            times ("\xf0\x9f\x8e\xb5", kMaxAttributeCharacters) + "\"" + attributes +
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
        other.setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
        EXPECT_EQ (other.presetName, processor.presetName);
        EXPECT_EQ (textOf (other), textOf (processor));
    }
}

TEST_F (Chunk, RestoresWhatItSavedInTheSameAndInANewInstance)
{
    for (std::uint32_t seed = 10; seed < 30; ++seed)
    {
        scramble (processor, seed);
        juce::MemoryBlock saved, again, elsewhere;
        processor.getStateInformation (saved);
        processor.setStateInformation (saved.getData(), static_cast<int> (saved.getSize()));
        processor.getStateInformation (again);
        ASSERT_EQ (again, saved) << "seed " << seed;

        VelkorAudioProcessor other;
        other.setStateInformation (saved.getData(), static_cast<int> (saved.getSize()));

        for (const auto& info : parameterInfo)
        {
            // The store takes a value through its range, and the logarithmic and cubic ones round.
            const float value = valueOf (processor, info.name);
            EXPECT_NEAR (valueOf (other, info.name), value, std::abs (value) * 2e-6f) << info.name;
        }

        EXPECT_EQ (sorted (connectionList (other)), sorted (connectionList (processor)));
        EXPECT_EQ (sorted (routeList (other)), sorted (routeList (processor)));
        EXPECT_EQ (other.presetName, processor.presetName);

        // From then on nothing creeps, however often a session is opened.
        other.getStateInformation (again);
        other.setStateInformation (again.getData(), static_cast<int> (again.getSize()));
        other.getStateInformation (elsewhere);
        EXPECT_EQ (elsewhere, again) << "seed " << seed;
    }
}
