// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_window_fixture.h"

#include "browser/x_server.h"

static testing::Environment* const xServer = testing::AddGlobalTestEnvironment (new XServer);

BrowserWindow::~BrowserWindow()
{
    manager.reset();
    window.removeFromDesktop();
}

void BrowserWindow::SetUp()
{
    if (! XServer::isThere())
        GTEST_SKIP() << "no X server, and no Xvfb to start one";
}

void BrowserWindow::show()
{
    window.setBounds (0, 0, 900, 675);
    window.addToDesktop (0);
    window.setVisible (true);
    open();
    window.addChildComponent (browser());
    reopen();
}

void BrowserWindow::reopen()
{
    browser().setAlpha (1.0f);
    browser().setVisible (true);
    browser().getStateAsText (browser().undoState);
    browser().undoPresetName = processor.presetName;
    browser().undoProgram = processor.currentProgram;
    browser().navigateToCurrentPreset();
    browser().toFront (true);

    for (int i = 0; i < 100 && ! browser().hasKeyboardFocus (true); ++i)
    {
        pump (10);
        browser().grabKeyboardFocus();
    }

    ASSERT_TRUE (browser().hasKeyboardFocus (true));
}

juce::Point<float> BrowserWindow::onRow (int column, const juce::String& name, float x) const
{
    const auto& found = *manager->getColumn (column);
    const int row = found.tree.indexOf (found.tree.getChildWithProperty ("name", name));
    EXPECT_GE (row, 0) << name;
    const auto place = found.listBox->getRowPosition (row, true).toFloat();
    return window.getLocalPoint (
        found.listBox.get(),
        juce::Point<float> (x >= 0.0f ? x : place.getRight() + x, place.getCentreY()));
}

juce::Point<float> BrowserWindow::on (const juce::Component& component) const
{
    return window.getLocalPoint (&component, component.getLocalBounds().toFloat().getCentre());
}

// --- mouse ---------------------------------------------------------------------------------------------

void BrowserWindow::mouse (juce::Point<float> where, bool down)
{
    juce::ModifierKeys::currentModifiers =
        down ? juce::ModifierKeys (juce::ModifierKeys::leftButtonModifier) : juce::ModifierKeys();
    now += 20;
    window.getPeer()->handleMouseEvent (juce::MouseInputSource::InputSourceType::mouse, where,
                                        juce::ModifierKeys::currentModifiers, 0.0f, 0.0f, now);
}

void BrowserWindow::press (juce::Point<float> where)
{
    mouse (where, false);
    mouse (where, true);
}

void BrowserWindow::click (juce::Point<float> where, int times)
{
    now += 5000;  // far enough from the last click not to make a double one with it

    for (int i = 0; i < times; ++i)
    {
        press (where);
        release (where);
    }
}

void BrowserWindow::drag (juce::Point<float> from, juce::Point<float> to)
{
    now += 5000;
    press (from);

    for (int i = 1; i <= 8; ++i)
        moveTo (from + (to - from) * (static_cast<float> (i) / 8.0f));

    release (to);
}

// --- keys ----------------------------------------------------------------------------------------------

void BrowserWindow::key (int keyCode)
{
    window.getPeer()->handleKeyPress (juce::KeyPress (keyCode));
}

int BrowserWindow::focusedColumn() const
{
    for (int i = 0; i < manager->columns.size(); ++i)
        if (manager->getColumn (i)->listBox->hasKeyboardFocus (true))
            return i;

    return -1;
}

bool BrowserWindow::hasClosed() const
{
    for (int i = 0; i < 100; ++i)
    {
        if (! browser().isVisible() &&
            ! juce::Desktop::getInstance().getAnimator().isAnimating (manager.get()))
            return true;

        pump (20);
    }

    return false;
}
