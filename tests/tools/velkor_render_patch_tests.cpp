// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"

#include <algorithm>

// That what velkor-render is told about the patch arrives there.

namespace
{
juce::var parse (const std::string& json)
{
    return juce::JSON::parse (juce::String (json));
}

/** The row of a parameter in the list. */
juce::var rowOf (const juce::var& list, const char* id)
{
    for (int i = 0; i < list.size(); ++i)
        if (list[i]["id"] == juce::var (id))
            return list[i];

    ADD_FAILURE() << "no row " << id;
    return {};
}
std::string pairOf (const std::string& source, const std::string& dest)
{
    return source + " > " + dest;
}

/** A preset document with a cable and a route, by their numbers. */
juce::String presetWith (int input, int output, int source, int dest)
{
    return juce::String ("<VelkorSettings><Parameters/>"
                         "<SignalMatrix><Connection input=\"I\" output=\"O\"/></SignalMatrix>"
                         "<ModMatrix><Connection source=\"S\" dest=\"D\"/></ModMatrix>"
                         "</VelkorSettings>")
        .replace ("\"I\"", juce::String (input).quoted())
        .replace ("\"O\"", juce::String (output).quoted())
        .replace ("\"S\"", juce::String (source).quoted())
        .replace ("\"D\"", juce::String (dest).quoted());
}
}  // namespace

class RenderPatch : public RenderTest
{
};

TEST_F (RenderPatch, EveryWayToWriteAValueIsUnderstood)
{
    struct Case
    {
        const char *id, *text;
        double want;
    };

    for (const auto& c : { Case { "Dry Level", "-6 dB", 0.501187 },
                           Case { "Wet Level", "+3.00 dB", 1.412538 },
                           Case { "Output 1 Level", "50%", 0.5 },
                           Case { "Input Level", "-INF dB", 0.0 },
                           Case { "Delay 1 Feedback", "0.25", 0.25 },
                           Case { "Delay 1 Time", "0.75 s", 750.0 },
                           Case { "Delay 2 Time", "750ms", 750.0 },
                           Case { "Delay 1 Fine", "x1.25", 1.25 },
                           Case { "Delay 2 Fine", "75%", 0.75 },
                           Case { "Delay 1 Mod", "-0.25", -0.25 },
                           Case { "LFO 1 Rate", "2.5 Hz", 2.5 },
                           Case { "LFO 1 Mod", "+2.5 Hz", 2.5 },
                           Case { "LFO 1 Skew", "25%", 0.25 },
                           Case { "LFO 2 Wave", "random", 3.0 },
                           Case { "Delay 1 Multiplier", "x8", 3.0 },
                           Case { "Delay 2 Multiplier", "0", 0.0 },
                           Case { "Filter 1 Freq", "2.5 kHz", 2500.0 },
                           Case { "Filter 2 Freq", "440", 440.0 },
                           Case { "Filter 1 Mod", "-50%", -0.5 },
                           Case { "Filter 1 Mode", "notch", 0.0 },
                           Case { "Filter 2 Mode", "Highpass", 1.0 },
                           Case { "Filter 1 Mode", "Bandpass", 0.6667 },
                           Case { "Pan 1", "L 10", 0.0 },
                           Case { "Pan 2", "center", 0.5 },
                           Case { "Pan 1", "R 5", 0.75 },
                           Case { "Env Attack", "100 ms", 0.1 },
                           Case { "Env Decay", "0.3", 0.3 },
                           Case { "Delay 1 Reverse", "Reverse", 1.0 },
                           Case { "Phase Invert 2", "inverted", 1.0 },
                           Case { "Kill", "yes", 1.0 } })
    {
        SCOPED_TRACE (c.id + std::string (" = ") + c.text);
        const auto list = parse (
            render ({ "--parameters", "--json", "--set", std::string (c.id) + "=" + c.text }).out);
        ASSERT_EQ (list.size(), 57);
        EXPECT_NEAR (static_cast<double> (rowOf (list, c.id)["value"]), c.want,
                     1e-4 * std::max (1.0, c.want));
    }
}

TEST_F (RenderPatch, BeatLengthsReadBackAsTheyWereWritten)
{
    for (const auto* beat : { "1/32", "1/16T", "1/16D", "1/8", "1/4", "1/2D", "1/1" })
    {
        const std::string label (beat);
        const auto list = parse (
            render ({ "--parameters", "--json", "--set", "Delay 2 Time=" + label, "--set",
                      "Delay 2 Sync=on", "--set", "LFO 1 Rate=" + label, "--set", "LFO 1 Sync=on" })
                .out);
        EXPECT_EQ (rowOf (list, "Delay 2 Time")["text"].toString(), beat);
        EXPECT_EQ (rowOf (list, "LFO 1 Rate")["text"].toString(), beat);
    }
}

TEST_F (RenderPatch, CablesGoWhereTheirNamesSay)
{
    write ("in.wav", impulses (1100, 1000, 0.5f, 0.25f));  // behind the fade-in of a new instance
    const auto heardAt = [this] (const Words& cables)
    {
        render (emptyPatch() + Words { "--tail", "0" } + cables + Words { "in.wav", "o.wav" });
        return read ("o.wav").framesAbove (0.1f, 0);
    };
    using Frames = std::vector<int>;

    EXPECT_EQ (heardAt ({}), Frames {});
    EXPECT_EQ (heardAt ({ "--connect", "INPUT L>output 1" }), Frames { 1000 });

    // Each node costs a frame; saturators at 0 pass the signal as it is.
    EXPECT_EQ (heardAt ({ "--connect", "Input R > Saturation 2", "--connect",
                          "Saturation 2 > Saturation 1", "--connect", "Saturation 1 > Output 1" }),
               Frames { 1002 });
    EXPECT_EQ (heardAt ({ "--connect", "Input L > Output 1", "--connect", "Input L > Saturation 1",
                          "--connect", "Saturation 1 > Output 2" }),
               (Frames { 1000, 1001 }));

    // Of two cables, one is pulled.
    file ("p.zbpreset")
        .replaceWithText (
            "<VelkorSettings><Parameters/><SignalMatrix><Connection input=\"0\" output=\"8\"/>"
            "<Connection input=\"6\" output=\"9\"/><Connection input=\"0\" output=\"6\"/>"
            "</SignalMatrix></VelkorSettings>");
    render ({ "--preset", "p.zbpreset", "--disconnect", "input l > Output 1", "--set",
              "Dry Level=0", "--set", "Pan 2=1", "--tail", "0", "in.wav", "o.wav" });
    EXPECT_EQ (read ("o.wav").framesAbove (0.1f, 1), Frames { 1001 });
}

TEST_F (RenderPatch, NodeNamesStandForTheNumbersThatPresetsStore)
{
    const Words sources = { "Input L",  "Input R",  "Delay 1",      "Delay 2",
                            "Filter 1", "Filter 2", "Saturation 1", "Saturation 2" };
    const Words dests = { "Delay 1",  "Delay 2",  "Delay 1 feedback", "Delay 2 feedback",
                          "Filter 1", "Filter 2", "Saturation 1",     "Saturation 2",
                          "Output 1", "Output 2" };
    const Words modSources = { "Envelope", "LFO 1", "LFO 2", "Note", "Gate", "Wheel" };
    const Words modDests = { "Delay 1",  "Delay 2", "LFO 1", "LFO 2",   "Filter 1",
                             "Filter 2", "Pan 1",   "Pan 2", "Level 1", "Level 2" };
    write ("in.wav", impulses (4, 0, 0.5f, 0.5f));

    for (std::size_t i = 0; i < dests.size(); ++i)
    {
        const auto number = static_cast<int> (i);
        file ("p.zbpreset").replaceWithText (presetWith (number % 8, number, number % 6, number));
        const auto cable = pairOf (sources[i % 8], dests[i]);
        const auto route = pairOf (modSources[i % 6], modDests[i]);
        const Words ways[] = { { "--preset", "p.zbpreset" },
                               { "--disconnect", "all", "--unroute", "all", "--connect", cable,
                                 "--route", route } };

        for (const auto& way : ways)
        {
            const auto report =
                parse (render (way + Words { "--json", "--tail", "0", "in.wav", "o.wav" }).out);
            const auto& settings = report["settings"];
            EXPECT_EQ (settings["connections"].size(), 1);
            EXPECT_EQ (settings["connections"][0].toString().toStdString(), cable);
            EXPECT_EQ (settings["routes"].size(), 1);
            EXPECT_EQ (settings["routes"][0].toString().toStdString(), route);
        }
    }
}

TEST_F (RenderPatch, APresetSetsParametersAndEditsComeOnTop)
{
    file ("p.zbpreset")
        .replaceWithText ("<VelkorSettings PresetName=\"x\"><Parameters>"
                          "<PARAM id=\"Dry Level\" value=\"0.5\"/><PARAM id=\"Kill\" value=\"1\"/>"
                          "<PARAM id=\"Pan 1\" value=\"0.125\"/></Parameters></VelkorSettings>");
    const auto list = parse (
        render ({ "--set", "Kill=off", "--preset", "p.zbpreset", "--parameters", "--json" }).out);
    EXPECT_NEAR (static_cast<double> (rowOf (list, "Dry Level")["value"]), 0.5, 1e-6);
    EXPECT_NEAR (static_cast<double> (rowOf (list, "Pan 1")["value"]), 0.125, 1e-6);
    EXPECT_EQ (static_cast<double> (rowOf (list, "Kill")["value"]), 0.0);
}
