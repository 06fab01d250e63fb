// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "browser/zb_PresetManager.h"
#include "state/state_fixture.h"

#include <functional>
#include <memory>
#include <utility>

/** Looks at something from the message loop, again and again. */
class Onlooker : public juce::Timer
{
public:
    explicit Onlooker (std::function<void()> lookAtIt) : look (std::move (lookAtIt))
    {
        startTimer (5);
    }

    void timerCallback() override { look(); }

private:
    const std::function<void()> look;
};

/** A browser on a folder of the test's own making. */
class BrowserTest : public StateTest
{
protected:
    BrowserTest();

    /** A file in the folder. */
    juce::File lib (const juce::String& path = {}) const;

    /** Makes a preset of this name, told apart by its first delay time in milliseconds. */
    void putPreset (const juce::String& path, const juce::String& name,
                    float delayMs = 100.0f) const;

    /** Makes presets in a folder whose names are in other encodings than the system's, or in none. */
    void putStrangeNames (const juce::String& path) const;

    /** Makes the browser anew, as a new editor does. */
    void open();

    /** The browser, which open has made. */
    zb_PresetManager& browser() const { return *manager; }

    /** Names of a column's rows, separated by "|"; "(none)" without such a column. */
    juce::String rows (int column) const;

    /** All rows of all columns with what is selected in each: "A|*B / *x|y". */
    juce::String view() const;

    /** Selects a row by its name, as a click or an arrow key does. */
    void select (int column, const juce::String& name) const;

    /** All that is below a folder, with the contents of the files. */
    static juce::String contents (const juce::File& top);

    /** Lets posted messages run. */
    static void pump (int milliseconds = 30);

    float delay() const { return valueOf (processor, "Delay 1 Time"); }

    VelkorAudioProcessor processor;
    juce::File folder;
    std::unique_ptr<zb_PresetManager> manager;
};
