// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "parameters/parameter_table.h"
#include "processor/VelkorAudioProcessor.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <string>

/** A mouse that exists only in events: presses, moves and releases on one component. */
class Pointer
{
public:
    explicit Pointer (juce::Component& componentToPress) : target (componentToPress) {}

    void press (float x, float y = 1.0f);
    void drag (float x, float y = 1.0f);
    void release();
    void doubleClick (float x, float y = 1.0f);

private:
    juce::MouseEvent event (juce::Point<float> position, int clicks) const;

    juce::Component& target;
    juce::Point<float> pressed, last;
};

/** What the host hears of, in words: "begin value value end " of a gesture, "display ". */
class HostLog : public juce::AudioProcessorListener
{
public:
    explicit HostLog (juce::AudioProcessor& processorToHear) : processor (processorToHear)
    {
        processor.addListener (this);
    }

    ~HostLog() override { processor.removeListener (this); }

    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override
    {
        heard += "value ";
    }

    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int) override
    {
        heard += "begin ";
    }

    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int) override
    {
        heard += "end ";
    }

    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details) override
    {
        heard += "display ";
        lastDetails = details;
    }

    std::string heard;
    ChangeDetails lastDetails;

private:
    juce::AudioProcessor& processor;
};

/** Counts how often all of a component was to be painted again. */
class RepaintCount : public juce::CachedComponentImage
{
public:
    /** Watches a component for as long as that component lives. */
    static RepaintCount& watch (juce::Component& component);

    void paint (juce::Graphics&) override {}
    bool invalidateAll() override { return ++whole > 0; }
    bool invalidate (const juce::Rectangle<int>&) override { return true; }
    void releaseResources() override {}

    int whole = 0;
};

/** The parameter of a number. */
juce::RangedAudioParameter& parameterOf (VelkorAudioProcessor& processor, NumericalParamID id);

/** Its value in its own unit. */
float valueOf (VelkorAudioProcessor& processor, NumericalParamID id);

/** The child of a component that carries this title; null without one. */
juce::Component* childTitled (const juce::Component& parent, const juce::String& title);

/** Whether two pictures of one size are the same. */
bool samePixels (const juce::Image& a, const juce::Image& b);

/** The first child of a class; null without one. */
template <typename Component>
Component* childOf (const juce::Component& parent)
{
    for (auto* child : parent.getChildren())
        if (auto* found = dynamic_cast<Component*> (child))
            return found;

    return nullptr;
}
