// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/AboutView.h"

#include "processor/VelkorAudioProcessor.h"

#include <BinaryData.h>

// No server of the maker stands yet: a name that can belong to nobody.
static constexpr auto kInvite = "https://discord.zubrowlabs.example/invite";

static const juce::String lineEnd ("\r\n");

static juce::String lines (std::initializer_list<juce::String> texts)
{
    juce::String joined;

    for (const auto& text : texts)
        joined << text << lineEnd;

    return joined;
}

/** Joins the path of every shape of a drawing, a parent's before its children's. */
static void addPaths (const juce::Component& component, juce::Path& outline)
{
    if (const auto* shape = dynamic_cast<const juce::DrawablePath*> (&component))
        outline.addPath (shape->getPath());

    for (const auto* child : component.getChildren())
        addPaths (*child, outline);
}

static std::unique_ptr<juce::Drawable> icon (const char* data, int size)
{
    auto drawable = juce::Drawable::createFromImageData (data, static_cast<std::size_t> (size));

    if (drawable != nullptr)
        drawable->replaceColour (juce::Colours::black, colorDark2);

    return drawable;
}

AboutView::AboutView (SharedInterface& sharedInterface) : shared (sharedInterface)
{
    const juce::String version (JucePlugin_VersionString);
    const auto description = [&]
    { return juce::AudioProcessor::getWrapperTypeDescription (shared.processor.wrapperType); };

    systemInfoText =
        lines ({ juce::String ("Plugin Type: ") + description(),
                 juce::String ("Host Name: ") + juce::PluginHostType().getHostDescription(),
                 {},
                 "Operating System: " + juce::SystemStats::getOperatingSystemName(),
                 "Device Description: " + juce::SystemStats::getDeviceDescription(),
                 "CPU: " + juce::SystemStats::getCpuModel() });
    creditsText = lines ({ "v" + version,
                           {},
                           "Audio Effect",
                           {},
                           "DSP: the Velkor founders",
                           "GUI: the Velkor founders",
                           {},
                           "Copyright 2026 Zubrow Labs. Licence: GNU AGPL 3 or later.",
                           "Built on JUCE. Typeface: Dosis, SIL Open Font License 1.1." });
    mailBody = lines ({ "Plugin: Velkor " + version }) + systemInfoText +
               lines ({ {}, "Your problem, and the steps to recreate it, if possible:" });

    if (const auto logo =
            juce::Drawable::createFromImageData (BinaryData::logo_svg, BinaryData::logo_svgSize))
        addPaths (*logo, outlinePath);

    webButton = makeButton ("WEB", "Opens a browser window to the Zubrow Labs web site.");
    mailButton = makeButton (
        "MAIL",
        "Opens an email, addressed to the Zubrow Labs support address, pre-populated with system "
        "info.");
    discordButton =
        makeButton ("DISCORD", "Opens a browser with an invite to the Zubrow Labs Discord server.");

    discordIcon = icon (BinaryData::icon_discord_svg, BinaryData::icon_discord_svgSize);
    mailIcon = icon (BinaryData::icon_mail_svg, BinaryData::icon_mail_svgSize);
    webIcon = icon (BinaryData::icon_web_svg, BinaryData::icon_web_svgSize);

    setTitle ("About Velkor");
    setDescription (creditsText + systemInfoText);
    startTimer (41);
}

void AboutView::paint (juce::Graphics& g)
{
    const auto u = unit;
    const auto width = static_cast<float> (getWidth()), height = static_cast<float> (getHeight());

    // Coarse on purpose: the stars stay blocks at every size of the window.
    g.setImageResamplingQuality (juce::Graphics::lowResamplingQuality);
    g.drawImage (starfield.draw (getWidth(), getHeight()), getLocalBounds().toFloat());

    g.setColour (juce::Colours::black.withAlpha (juce::uint8 { 0x8c }));
    g.fillRoundedRectangle (60.0f * u, 1.5f * u, width - 61.5f * u, height - 3.0f * u, u);

    if (! outlinePath.isEmpty())
    {
        g.setColour (colorLight1);
        g.fillPath (outlinePath, outlinePath.getTransformToScaleToFit (62.5f * u, 3.0f * u,
                                                                       20.0f * u, 5.0f * u, true));
    }

    const auto drawBlock = [&] (const juce::String& text, float size, float y, float blockHeight)
    {
        g.setColour (colorLight2);
        g.setFont (shared.getMyFont (1, size * u));
        g.drawFittedText (
            text, juce::Rectangle<float> (62.5f * u, y, 30.0f * u, blockHeight).toNearestInt(),
            juce::Justification::topLeft, 50, 0.0f);
    };

    drawBlock (creditsText, 1.5f, 8.0f * u, 30.0f * u);

    if (height > 0.4f * width)
        drawBlock (systemInfoText, 1.25f, static_cast<float> (getY()) + height - 10.0f * u,
                   10.0f * u);

    paintButton (g, *webButton, webIcon.get());
    paintButton (g, *discordButton, discordIcon.get());
    paintButton (g, *mailButton, mailIcon.get());
}

void AboutView::resized()
{
    unit = shared.scale;
    const auto place = [this] (juce::Component& button, float x)
    {
        button.setBounds (juce::Rectangle<float> (x, 25.0f, 4.0f, 4.0f)
                              .transformedBy (juce::AffineTransform::scale (unit))
                              .toNearestInt());
    };

    place (*discordButton, 62.5f);
    place (*webButton, 67.5f);
    place (*mailButton, 72.5f);
}

void AboutView::mouseDown (const juce::MouseEvent&)
{
    stopTimer();

    if (auto* parent = getParentComponent())
        parent->removeChildComponent (this);
}

void AboutView::buttonClicked (juce::Button* button)
{
    const auto& name = button->getName();

    if (name == "WEB")
        juce::URL (JucePlugin_ManufacturerWebsite).launchInDefaultBrowser();
    else if (name == "DISCORD")
        juce::URL (kInvite).launchInDefaultBrowser();
    else if (name == "MAIL")
        juce::URL (mailLink()).launchInDefaultBrowser();
}

void AboutView::timerCallback()
{
    starfield.advance();
    repaint();
}

juce::String AboutView::mailLink() const
{
    // The address is a link as the build gives it, with "mailto:" before it.
    return juce::String (JucePlugin_ManufacturerEmail) + "?subject=" + "Velkor" +
           " help&body=" + mailBody;
}

void AboutView::paintButton (juce::Graphics& g, const juce::TextButton& button,
                             const juce::Drawable* drawable) const
{
    const auto bounds = button.getBounds().toFloat();

    if (button.isDown())
        g.setColour (colorHighlight1);
    else
        g.setColour (colorLight2.withAlpha (juce::uint8 (button.isOver() ? 0xbf : 0x80)));

    g.fillRoundedRectangle (bounds, 0.5f * unit);

    if (drawable != nullptr)
        drawable->drawWithin (g, bounds.reduced (unit), juce::RectanglePlacement::centred, 1.0f);
}

std::unique_ptr<juce::TextButton> AboutView::makeButton (const juce::String& name,
                                                         const juce::String& tip)
{
    auto button = std::make_unique<juce::TextButton> (name);
    button->setTooltip (tip);
    button->setTitle (name);
    button->setDescription (tip);
    button->setAlpha (0.0f);
    button->addListener (this);
    addAndMakeVisible (*button);
    return button;
}
