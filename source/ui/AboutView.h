// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "ui/SharedInterface.h"
#include "ui/Starfield.h"

#include <memory>

/** The overlay behind ABOUT: credits and system information before a field of stars, and three ways to the maker.
    A click anywhere else takes it out of its parent. Message thread. */
class AboutView : public juce::Component, public juce::Button::Listener, public juce::Timer
{
public:
    /** Gathers the texts and starts the stars. The shared interface outlives the view. */
    explicit AboutView (SharedInterface& sharedInterface);

    void paint (juce::Graphics& g) override;
    void resized() override;
    void mouseDown (const juce::MouseEvent& event) override;
    void buttonClicked (juce::Button* button) override;
    void timerCallback() override;

    /** The link that MAIL opens: the support address with a subject and the system information, unescaped. */
    juce::String mailLink() const;

    /** The text blocks of the view, lines ending in "\r\n". */
    const juce::String& credits() const { return creditsText; }
    const juce::String& systemInfo() const { return systemInfoText; }

    Starfield starfield;  ///< a still picture wants stars of its own

private:
    void paintButton (juce::Graphics& g, const juce::TextButton& button,
                      const juce::Drawable* icon) const;
    std::unique_ptr<juce::TextButton> makeButton (const juce::String& name,
                                                  const juce::String& tip);

    SharedInterface& shared;
    float unit = 9.0f;
    juce::Path outlinePath;
    juce::String systemInfoText, creditsText, mailBody;
    std::unique_ptr<juce::TextButton> webButton, mailButton, discordButton;
    std::unique_ptr<juce::Drawable> discordIcon, mailIcon, webIcon;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (AboutView)
};
