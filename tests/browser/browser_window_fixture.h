// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "browser/browser_fixture.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

/** A browser in a window, as in an editor, worked by mouse and keys. The events enter where the system's
    would. */
class BrowserWindow : public BrowserTest
{
protected:
    ~BrowserWindow() override;

    void SetUp() override;

    /** Makes a new browser in the window and opens it as the editor does. */
    void show();

    /** Makes the browser visible again, with a fresh snapshot to go back to. */
    void reopen();

    /** Somewhere on a row, as a distance from its left end or, if negative, from its right end; pixels. */
    juce::Point<float> onRow (int column, const juce::String& name, float x = 40.0f) const;

    /** The middle of a component. */
    juce::Point<float> on (const juce::Component& component) const;

    void click (juce::Point<float> where, int times = 1);
    void press (juce::Point<float> where);
    void moveTo (juce::Point<float> where) { mouse (where, true); }
    void release (juce::Point<float> where) { mouse (where, false); }

    /** Presses at one place and lets go at another, by way of some places between. */
    void drag (juce::Point<float> from, juce::Point<float> to);

    void key (int keyCode);

    /** The list that has the keyboard's focus, as a column index; -1 if none has. */
    int focusedColumn() const;

    /** Waits until the browser has gone, for at most two seconds; whether it has. */
    bool hasClosed() const;

    juce::Component window;

private:
    void mouse (juce::Point<float> where, bool down);
    juce::int64 now = 1000000;
};
