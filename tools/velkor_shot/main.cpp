// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/whole_file.h"
#include "ui/VelkorAudioProcessorEditor.h"
#include "velkor_render/failure.h"
#include "velkor_render/private_home.h"
#include "velkor_render/sound.h"
#include "velkor_shot/still_stars.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <optional>

// velkor-shot: a picture of the plug-in's window as a PNG, drawn without a display.

namespace
{

struct ShotOptions
{
    std::string output;
    int width = 900;
    std::string view = "panel";
    std::optional<std::string> preset;
};

/** Reads the command line; the exit code where there is nothing more to do. */
std::optional<int> readOptions (int argc, char** argv, ShotOptions& options)
{
    CLI::App app { "Draws the plug-in's window into a PNG file.", "velkor-shot" };
    app.add_option ("OUTPUT", options.output, "The PNG file")->required();
    app.add_option ("--width", options.width, "Width in pixels; the height is three quarters of it")
        ->check (CLI::Range (600, 1500))
        ->capture_default_str();
    app.add_option ("--view", options.view, "What to show")
        ->check (CLI::IsMember ({ "panel", "about", "browser" }))
        ->capture_default_str();
    app.add_option ("--preset", options.preset,
                    "A factory preset by name or number, or a preset file");

    try
    {
        app.parse (argc, argv);
        return {};
    }
    catch (const CLI::ParseError& error)
    {
        return app.exit (error);
    }
}

/** The child of a class that the editor is known to have. */
template <typename Component>
Component& childOf (juce::Component& parent)
{
    for (auto* child : parent.getChildren())
        if (auto* found = dynamic_cast<Component*> (child))
            return *found;

    throw std::logic_error ("the editor lacks a part");
}

/** The row whose file is named after the present preset, numbered or not; the default's without one. */
int programOf (const zb_PresetManager& browser)
{
    const auto& name = browser.processor.presetName;

    for (int i = 0; i < browser.presetFiles.size(); ++i)
        if (const auto file = browser.presetFiles[i].getFileNameWithoutExtension();
            file == name || file.endsWith (" - " + name))
            return i;

    return browser.findPresetIndex ("Default.zbpreset");
}

void show (VelkorAudioProcessorEditor& editor, const std::string& view)
{
    if (view == "about")
    {
        juce::TextButton about ("ABOUT");
        editor.buttonClicked (&about);
        childOf<AboutView> (editor).starfield.stars = stillStars();
    }

    if (view == "browser")
    {
        auto& browser = childOf<zb_PresetManager> (editor);
        browser.processor.currentProgram = programOf (browser);
        browser.setVisible (true);
        browser.navigateToCurrentPreset();
        browser.toFront (false);
    }
}

void writePng (const juce::Image& image, const std::string& path)
{
    const auto file = juce::File::getCurrentWorkingDirectory().getChildFile (
        juce::String::fromUTF8 (path.c_str()));
    const auto fresh = hiddenSibling (file);
    juce::MemoryOutputStream png;

    if (! juce::PNGImageFormat().writeImageToStream (image, png) ||
        ! writeNewFile (fresh, png.getData(), png.getDataSize(), Durable::no) ||
        ! moveOver (fresh, file))
    {
        fresh.deleteFile();
        fail (path + ": can't be written");
    }
}

int shoot (const ShotOptions& options)
{
    VelkorAudioProcessor processor;

    if (options.preset)
        loadSound (processor, readSound (options.preset));

    processor.toolTips = false;
    processor.uiWidth = options.width;
    VelkorAudioProcessorEditor editor (processor, processor.parameterTree);
    show (editor, options.view);
    editor.timerCallback();
    writePng (editor.createComponentSnapshot (editor.getLocalBounds()), options.output);
    return 0;
}

}  // namespace

int main (int argc, char** argv)
{
    try
    {
        ShotOptions options;

        if (const auto code = readOptions (argc, argv, options))
            return *code;

        const PrivateHome home;
        const juce::ScopedJuceInitialiser_GUI framework;
        return shoot (options);
    }
    catch (const Failure& failure)
    {
        std::fprintf (stderr, "velkor-shot: %s\n", failure.what());
        return failure.kind;
    }
    catch (const std::exception& error)
    {
        std::fprintf (stderr, "velkor-shot: %s\n", error.what());
        return 1;
    }
}
