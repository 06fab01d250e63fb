// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/ui_fixture.h"

void Pointer::press (float x, float y)
{
    pressed = last = { x, y };
    target.mouseDown (event (last, 1));
}

void Pointer::drag (float x, float y)
{
    last = { x, y };
    target.mouseDrag (event (last, 1));
}

void Pointer::release()
{
    target.mouseUp (event (last, 1));
}

// As the framework delivers it: the double click comes after the second release.
void Pointer::doubleClick (float x, float y)
{
    press (x, y);
    release();
    press (x, y);
    release();
    target.mouseDoubleClick (event (last, 2));
}

juce::MouseEvent Pointer::event (juce::Point<float> position, int clicks) const
{
    const auto now = juce::Time::getCurrentTime();
    return juce::MouseEvent (juce::Desktop::getInstance().getMainMouseSource(), position,
                             juce::ModifierKeys::leftButtonModifier, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f,
                             &target, &target, now, pressed, now, clicks, position != pressed);
}

RepaintCount& RepaintCount::watch (juce::Component& component)
{
    auto* counter = new RepaintCount;
    component.setVisible (true);  // what is hidden is never painted again
    component.setCachedComponentImage (counter);
    counter->whole = 0;
    return *counter;
}

juce::RangedAudioParameter& parameterOf (VelkorAudioProcessor& processor, NumericalParamID id)
{
    return *processor.parameterTree.getParameter (paramMapper[id].name);
}

float valueOf (VelkorAudioProcessor& processor, NumericalParamID id)
{
    return processor.parameterTree.getRawParameterValue (paramMapper[id].name)->load();
}

juce::Component* childTitled (const juce::Component& parent, const juce::String& title)
{
    for (auto* child : parent.getChildren())
        if (child->getTitle() == title)
            return child;

    return nullptr;
}

bool samePixels (const juce::Image& a, const juce::Image& b)
{
    for (int y = 0; y < a.getHeight(); ++y)
        for (int x = 0; x < a.getWidth(); ++x)
            if (a.getPixelAt (x, y) != b.getPixelAt (x, y))
                return false;

    return true;
}
