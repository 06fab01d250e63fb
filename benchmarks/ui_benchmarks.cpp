// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/VelkorAudioProcessorEditor.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <memory>

namespace
{

using Clock = std::chrono::steady_clock;

/** A window of a width in pixels, and the picture that it paints into. */
struct Window
{
    explicit Window (int width)
    {
        processor.uiWidth = width;
        editor = std::make_unique<VelkorAudioProcessorEditor> (processor, processor.parameterTree);
        picture = juce::Image (juce::Image::RGB, editor->getWidth(), editor->getHeight(), true);

        for (auto* child : editor->getChildren())
            if (auto* found = dynamic_cast<VelkorPanel*> (child))
                panel = found;
    }

    /** Paints what shows within an area of the window. */
    void paint (juce::Rectangle<int> area)
    {
        juce::Graphics g (picture);
        g.reduceClipRegion (area);
        editor->paintEntireComponent (g, true);
    }

    VelkorAudioProcessor processor;
    std::unique_ptr<VelkorAudioProcessorEditor> editor;
    VelkorPanel* panel = nullptr;
    juce::Image picture;
};

void fullRepaint (benchmark::State& state)
{
    Window window (static_cast<int> (state.range (0)));

    for (auto _ : state)
        window.paint (window.editor->getLocalBounds());
}

// What goes on while nobody touches anything: the timer, and the two grids that it asks for.
void timerTick (benchmark::State& state)
{
    Window window (static_cast<int> (state.range (0)));
    const auto modulation =
        window.editor->getLocalArea (window.panel, window.panel->modMatrix->getBounds());
    const auto signal =
        window.editor->getLocalArea (window.panel, window.panel->signalMatrix->getBounds());
    double busy = 0.0;

    for (auto _ : state)
    {
        const auto start = Clock::now();
        window.editor->timerCallback();
        window.paint (modulation);
        window.paint (signal);
        busy += std::chrono::duration<double> (Clock::now() - start).count();
    }

    state.counters["% of a core"] = 100.0 * busy / static_cast<double> (state.iterations()) / 0.033;
}

void openAndClose (benchmark::State& state)
{
    VelkorAudioProcessor processor;

    for (auto _ : state)
        VelkorAudioProcessorEditor (processor, processor.parameterTree);
}

}  // namespace

BENCHMARK (fullRepaint)
    ->Name ("ui/full_repaint")
    ->Arg (600)
    ->Arg (900)
    ->Arg (1500)
    ->Unit (benchmark::kMillisecond);
BENCHMARK (timerTick)
    ->Name ("ui/timer_tick")
    ->Arg (900)
    ->Arg (1500)
    ->Unit (benchmark::kMicrosecond);
BENCHMARK (openAndClose)->Name ("ui/open_and_close")->Unit (benchmark::kMillisecond);
