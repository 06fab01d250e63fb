// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_import.h"
#include "browser/zb_PresetManager.h"
#include "processor/VelkorAudioProcessor.h"
#include "state/state_carriers.h"

#include <benchmark/benchmark.h>
#include <cstdlib>

// What the browser costs with a library of 10,000 presets in 200 folders. The program's home is a temporary one.

static constexpr int kFolders = 200;
static constexpr int kPresetsPerFolder = 50;

/** The library, made once: whole documents, each under its own name. */
class Library
{
public:
    Library() : folder (juce::File (std::getenv ("HOME")).getChildFile ("Library"))
    {
        juce::String text;
        getStateAsText (processor, text);
        const auto name = "PresetName=\"" + processor.presetName + "\"";

        for (int f = 0; f < kFolders; ++f)
        {
            const auto set = folder.getChildFile ("Set " + juce::String (f).paddedLeft ('0', 3));
            set.createDirectory();

            for (int i = 0; i < kPresetsPerFolder; ++i)
            {
                const auto preset = "Preset " + juce::String (f) + "-" + juce::String (i);
                set.getChildFile (preset + ".zbpreset")
                    .replaceWithText (text.replace (name, "PresetName=\"" + preset + "\""));
            }
        }
    }

    std::unique_ptr<zb_PresetManager> open()
    {
        auto browser = std::make_unique<zb_PresetManager> (processor, folder, nullptr, nullptr);
        browser->setBounds (0, 0, 900, 675);
        return browser;
    }

    VelkorAudioProcessor processor;
    juce::File folder;
};

static Library& library()
{
    static Library made;
    return made;
}

static void startCold (benchmark::State& state)
{
    for (auto _ : state)
    {
        state.PauseTiming();
        library().folder.getChildFile ("preset_info.xml").deleteFile();
        state.ResumeTiming();
        auto browser = library().open();
        state.PauseTiming();
        browser.reset();
        state.ResumeTiming();
    }
}

static void startWarm (benchmark::State& state)
{
    library().open();

    for (auto _ : state)
    {
        auto browser = library().open();
        state.PauseTiming();
        browser.reset();
        state.ResumeTiming();
    }
}

/** Selects rows of one column in turn: folders in the first, presets, with their load, in the second. */
static void selectRow (benchmark::State& state)
{
    const auto browser = library().open();
    const int column = static_cast<int> (state.range (0));
    auto& list = *browser->getColumn (0)->listBox;
    list.selectRow (7);
    int row = 0;

    for (auto _ : state)
        browser->getColumn (column)->listBox->selectRow (row++ % kPresetsPerFolder);

    state.SetLabel (column == 0 ? "a folder" : "a preset, with its load");
}

/** The load alone, to be taken off selectRow. */
static void loadAlone (benchmark::State& state)
{
    const auto browser = library().open();
    int i = 0;

    for (auto _ : state)
        browser->setStateFromFile (browser->presetFiles[i++ % kPresetsPerFolder]);
}

static void arrowKeys (benchmark::State& state)
{
    const auto browser = library().open();
    browser->getColumn (0)->listBox->selectRow (7);
    auto& list = *browser->getColumn (1)->listBox;
    list.selectRow (0);
    bool down = true;

    for (auto _ : state)
    {
        if (list.getSelectedRow() == (down ? kPresetsPerFolder - 1 : 0))
            down = ! down;

        list.keyPressed (juce::KeyPress (down ? juce::KeyPress::downKey : juce::KeyPress::upKey));
    }
}

/** The star in a row, with what it asks for. */
static void toggleInColumn (benchmark::State& state)
{
    const auto browser = library().open();
    browser->getColumn (0)->listBox->selectRow (7);
    const auto path = browser->presetFiles[7 * kPresetsPerFolder].getFullPathName();
    const auto open = browser->getCurrentPath();

    for (auto _ : state)
        browser->toggleAndReopen (path, open);
}

/** The deletion of a preset, with what follows it. */
static void deletePreset (benchmark::State& state)
{
    const auto browser = library().open();
    browser->getColumn (0)->listBox->selectRow (7);
    const auto file = browser->presetFiles[7 * kPresetsPerFolder];
    const auto text = file.loadFileAsString();

    for (auto _ : state)
    {
        file.deleteFile();
        browser->folderChanged (browser->getCurrentPath());
        state.PauseTiming();
        file.replaceWithText (text);
        browser->rebuildAndReopen (browser->getCurrentPath());
        state.ResumeTiming();
    }
}

/** The star of the strip, which rebuilds nothing. */
static void toggleInStrip (benchmark::State& state)
{
    const auto browser = library().open();
    const auto path = browser->presetFiles[77].getFullPathName();

    for (auto _ : state)
        browser->toggleFavorite (path);
}

static void paintPanel (benchmark::State& state)
{
    const auto browser = library().open();
    browser->getColumn (0)->listBox->selectRow (7);
    browser->getColumn (1)->listBox->selectRow (3);
    juce::Image image (juce::Image::ARGB, 900, 675, true);

    for (auto _ : state)
    {
        juce::Graphics g (image);
        browser->paintEntireComponent (g, true);
    }
}

static void unpackTenThousand (benchmark::State& state)
{
    juce::ZipFile::Builder builder;
    const auto& preset = library().folder.getChildFile ("Set 000/Preset 0-0.zbpreset");

    for (int i = 0; i < kFolders * kPresetsPerFolder; ++i)
        builder.addFile (preset, 6,
                         juce::String (i % kFolders) + "/" + juce::String (i) + ".zbpreset");

    const auto archive = library().folder.getSiblingFile ("Pack.zip");
    const auto target = library().folder.getSiblingFile ("Pack");
    archive.deleteFile();

    {
        juce::FileOutputStream out (archive);
        builder.writeToStream (out, nullptr);
    }

    for (auto _ : state)
    {
        if (unpackArchive (archive, target) != kFolders * kPresetsPerFolder)
            state.SkipWithError ("not all");

        state.PauseTiming();
        target.deleteRecursively();
        state.ResumeTiming();
    }
}

BENCHMARK (startCold)->Unit (benchmark::kMillisecond)->Iterations (5);
BENCHMARK (startWarm)->Unit (benchmark::kMillisecond)->Iterations (20);
BENCHMARK (selectRow)->Arg (0)->Arg (1)->Unit (benchmark::kMicrosecond);
BENCHMARK (loadAlone)->Unit (benchmark::kMicrosecond);
BENCHMARK (arrowKeys)->Unit (benchmark::kMicrosecond);
BENCHMARK (toggleInStrip)->Unit (benchmark::kMicrosecond);
BENCHMARK (toggleInColumn)->Unit (benchmark::kMillisecond)->Iterations (20);
BENCHMARK (deletePreset)->Unit (benchmark::kMillisecond)->Iterations (20);
BENCHMARK (paintPanel)->Unit (benchmark::kMicrosecond);
BENCHMARK (unpackTenThousand)->Unit (benchmark::kMillisecond)->Iterations (2);
