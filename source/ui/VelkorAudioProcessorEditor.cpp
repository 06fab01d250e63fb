// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/VelkorAudioProcessorEditor.h"

#include <BinaryData.h>

static constexpr int kFadeMs = 250;
static constexpr int kLampTicks = 8;
static constexpr int kMinWidth = 600;
static constexpr int kMaxWidth = 1500;
static constexpr int kDefaultWidth = 900;

/** No window system has wider ones: its coordinates have 16 bits. */
static constexpr int kMaxWindowWidth = 32767;

/** Three quarters, cut toward zero. */
static int heightFor (int width)
{
    return static_cast<int> (width * 0.75);
}

/** The legal width next to a stored one; the default where that is missing or damaged. */
static int legalWidth (int stored)
{
    return stored > 0 && stored <= kMaxWindowWidth ? juce::jlimit (kMinWidth, kMaxWidth, stored)
                                                   : kDefaultWidth;
}

static juce::Path outlineOf (const char* svg, int size)
{
    const auto drawable =
        juce::Drawable::createFromImageData (svg, static_cast<std::size_t> (size));
    return drawable != nullptr ? drawable->getOutlineAsPath() : juce::Path();
}

static juce::Path makeStar()
{
    juce::Path star;
    star.startNewSubPath (6.0f, 0.9f);

    for (const auto& corner : { juce::Point<float> (7.4f, 4.0f),
                                { 10.8f, 4.5f },
                                { 8.4f, 6.9f },
                                { 9.0f, 10.3f },
                                { 6.0f, 8.8f },
                                { 3.0f, 10.2f },
                                { 3.6f, 6.8f },
                                { 1.2f, 4.5f },
                                { 4.6f, 4.0f } })
        star.lineTo (corner);

    star.closeSubPath();
    return star;
}

/** A rectangle of floats with every value cut toward zero. */
static juce::Rectangle<int> truncated (float x, float y, float width, float height)
{
    return { static_cast<int> (x), static_cast<int> (y), static_cast<int> (width),
             static_cast<int> (height) };
}

VelkorAudioProcessorEditor::VelkorAudioProcessorEditor (
    VelkorAudioProcessor& processorToUse, juce::AudioProcessorValueTreeState& stateToUse)
    : juce::AudioProcessorEditor (processorToUse), velkor (processorToUse), state (stateToUse)
{
    cornerResizer = std::make_unique<juce::ResizableCornerComponent> (this, &constrainer);
    cornerResizer->setAlpha (0.0f);
    addAndMakeVisible (*cornerResizer);

    constrainer.setSizeLimits (kMinWidth, heightFor (kMinWidth), kMaxWidth, heightFor (kMaxWidth));
    constrainer.setFixedAspectRatio (4.0 / 3.0);
    setConstrainer (&constrainer);

    shared = std::make_unique<SharedInterface> (velkor, state);
    presetManager = std::make_unique<zb_PresetManager> (
        velkor, velkor.presetFolder, shared->sharedFontRegular, shared->sharedFontSemibold);
    addChildComponent (*presetManager);

    panel = std::make_unique<VelkorPanel> (velkor, state);
    addAndMakeVisible (*panel);

    logoPath = outlineOf (BinaryData::logo_svg, BinaryData::logo_svgSize);
    logoKanaPath = outlineOf (BinaryData::logo_kana_svg, BinaryData::logo_kana_svgSize);
    zubrowLogo = juce::Drawable::createFromImageData (BinaryData::logo_zubrow_svg,
                                                      BinaryData::logo_zubrow_svgSize);

    if (zubrowLogo != nullptr)
        zubrowLogo->replaceColour (juce::Colours::black, colorLight2);

    starPath = makeStar();
    buildButtons();

    if (velkor.toolTips)
    {
        shared->tooltipWindow = std::make_unique<juce::TooltipWindow> (this, 700);
        shared->tooltipWindow->setName ("tooltip");
    }

    setTitle ("Velkor");
    setOpaque (true);

    // The limits don't apply before a host shows the editor. But what no window can be is not laid
    // out.
    const int stored = velkor.uiWidth;
    const int width = stored > kMaxWindowWidth ? legalWidth (stored) : stored;
    setBounds (getX(), getY(), width, heightFor (width));
    startTimer (33);
}

VelkorAudioProcessorEditor::~VelkorAudioProcessorEditor()
{
    stopTimer();
    shared->clearAttachments();
}

void VelkorAudioProcessorEditor::buildButtons()
{
    aboutButton = makeButton ("ABOUT", nullptr);
    aboutButton->setDescription ("Shows version, credits and system information");
    favoriteButton = makeButton ("FAVORITE", "Toggle favorite status for current preset");
    bypassButton = makeButton ("BYPASS", "Bypass: Smoothly bypass all processing");
    undoButton = makeButton ("UNDO", "Undo last parameter change");
    redoButton = makeButton ("REDO", "Redo last undone parameter change");

    for (auto* button :
         { aboutButton.get(), favoriteButton.get(), undoButton.get(), redoButton.get() })
        button->addListener (this);

    bypassButton->setClickingTogglesState (true);
    bypassButton->onClick = [this] { repaint(); };
    bypassAttachment = std::make_unique<juce::AudioProcessorValueTreeState::ButtonAttachment> (
        state, paramMapper[Kill].name, *bypassButton);
}

std::unique_ptr<juce::TextButton> VelkorAudioProcessorEditor::makeButton (const char* name,
                                                                          const char* toolTip)
{
    auto button = std::make_unique<juce::TextButton> (name);
    button->setAlpha (0.0f);
    addAndMakeVisible (*button);

    button->setTitle (name);

    if (toolTip != nullptr)
    {
        button->setTooltip (toolTip);
        button->setDescription (toolTip);
    }

    return button;
}

// --- layout --------------------------------------------------------------------------------------------

void VelkorAudioProcessorEditor::resized()
{
    const auto width = static_cast<float> (getWidth());
    const auto u = width * 0.01f;
    unit = u;
    velkor.uiWidth = legalWidth (getWidth());
    velkor.uiHeight = hasLegalWidth() ? getHeight() : heightFor (velkor.uiWidth);
    velkor.writeGlobals();
    shared->scale = u;

    // A fade ends by putting back the bounds that it began with.
    juce::Desktop::getInstance().getAnimator().cancelAnimation (presetManager.get(), true);
    presetManager->setBounds (getLocalBounds());
    presetManager->setAlwaysOnTop (true);
    aboutButton->setBounds (truncated (2.0f * u, 1.5f * u, 10.0f * u, 3.0f * u));

    const auto x0 = (width - 30.0f * u) * 0.5f;
    presetRect = { x0, u, 30.0f * u, 3.0f * u };

    const auto by = (3.0f * u - 2.0f * u) * 0.5f + u;
    const auto bw = 4.0f * u, bh = 2.0f * u, gap = 0.5f * u;
    redoButton->setBounds (truncated (x0 - gap - bw, by, bw, bh));
    undoButton->setBounds (truncated (x0 - 2.0f * gap - 2.0f * bw, by, bw, bh));
    prevRect = { x0, u, 3.0f * u, 3.0f * u };
    nextRect = { x0 + 30.0f * u - 3.0f * u, u, 3.0f * u, 3.0f * u };
    favoriteButton->setBounds (truncated (x0 + 30.0f * u, by, 2.5f * u, 2.0f * u));
    bypassButton->setBounds (
        truncated (width - 1.5f * u * kLogoAspect - 4.0f * u - 5.33f * u, by, 5.33f * u, 2.0f * u));

    if (panel != nullptr)
    {
        const auto strip = static_cast<int> (5.0f * u);
        panel->setBounds (0, strip, getWidth(), getHeight() - strip);
    }

    const auto grip = static_cast<int> (u) * 2;
    cornerResizer->setBounds (getWidth() - grip, getHeight() - grip, grip, grip);
    cornerResizer->setAlwaysOnTop (true);
}

bool VelkorAudioProcessorEditor::hasLegalWidth() const
{
    return getWidth() >= kMinWidth && getWidth() <= kMaxWidth;
}

// Hosts ask for the size once they have given the editor a parent or a window.
void VelkorAudioProcessorEditor::parentHierarchyChanged()
{
    const int width = legalWidth (getWidth());

    if (! hasLegalWidth() && (getParentComponent() != nullptr || isOnDesktop()))
        setSize (width, heightFor (width));
}

// --- events --------------------------------------------------------------------------------------------

void VelkorAudioProcessorEditor::mouseDown (const juce::MouseEvent& event)
{
    if (prevRect.contains (event.position))
    {
        presetManager->presetsDecInc (false);
        repaint();
    }
    else if (nextRect.contains (event.position))
    {
        presetManager->presetsDecInc (true);
        repaint();
    }
    else if (presetRect.contains (event.position))
    {
        openBrowser();
    }
}

void VelkorAudioProcessorEditor::openBrowser()
{
    presetManager->setAlpha (0.0f);
    presetManager->setVisible (true);
    juce::Desktop::getInstance().getAnimator().animateComponent (
        presetManager.get(), presetManager->getBounds(), 1.0f, kFadeMs, false, 1.0, 1.0);
    presetManager->getStateAsText (presetManager->undoState);
    presetManager->undoPresetName = velkor.getPresetName();
    presetManager->undoProgram = velkor.currentProgram;
    presetManager->navigateToCurrentPreset();
    presetManager->toFront (true);
}

void VelkorAudioProcessorEditor::openAbout()
{
    aboutView = std::make_unique<AboutView> (*shared);
    addAndMakeVisible (*aboutView);
    aboutView->setBounds (getLocalBounds());
    aboutView->toFront (true);
}

void VelkorAudioProcessorEditor::buttonClicked (juce::Button* button)
{
    const auto& name = button->getName();

    if (name == "ABOUT")
    {
        openAbout();
    }
    else if (name == "FAVORITE")
    {
        if (const auto path = currentPresetPath(); path.isNotEmpty())
            presetManager->toggleFavorite (path);

        repaint();
    }
    else if (name == "UNDO")
    {
        velkor.storedParameters.clearHistoryIfAsked();
        velkor.undoManager.undo();
        repaint();
    }
    else if (name == "REDO")
    {
        velkor.storedParameters.clearHistoryIfAsked();
        velkor.undoManager.redo();
        repaint();
    }
}

void VelkorAudioProcessorEditor::timerCallback()
{
    const auto canUndo = velkor.undoManager.canUndo();

    if (canUndo != lastCanUndo)
    {
        lastCanUndo = canUndo;
        repaint (presetRect.toNearestInt());
    }

    if (velkor.midiActivity.exchange (false))
        midiHoldTicks = kLampTicks;

    if (panel != nullptr)
    {
        const auto lit = midiHoldTicks > 0;

        if (lit != panel->midiLed->lit)
        {
            panel->midiLed->lit = lit;
            panel->midiLed->repaint();
        }

        // Nobody tells of changes to the engine's grids, a preset's among them.
        panel->modMatrix->repaint();
        panel->signalMatrix->repaint();
    }

    if (midiHoldTicks > 0)
        --midiHoldTicks;
}

/** The file behind the present program; empty where the browser's list has none at its place. */
juce::String VelkorAudioProcessorEditor::currentPresetPath() const
{
    return presetManager->presetFiles[velkor.currentProgram].getFullPathName();
}
