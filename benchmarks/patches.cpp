// SPDX-License-Identifier: AGPL-3.0-or-later
#include "patches.h"

#include "noise.h"

#include <algorithm>
#include <charconv>

/** The number behind a prefix such as "routes:", from 0 to most; empty if name is something else. */
static std::optional<int> numberBehind (std::string_view prefix, std::string_view name,
                                        int most) noexcept
{
    if (! name.starts_with (prefix))
        return std::nullopt;

    name.remove_prefix (prefix.size());
    int number = 0;
    const auto [end, error] = std::from_chars (name.data(), name.data() + name.size(), number);
    const bool isWhole = error == std::errc() && end == name.data() + name.size();
    return isWhole && number >= 0 && number <= most ? std::optional (number) : std::nullopt;
}

std::optional<Patch> findPatch (std::string_view name) noexcept
{
    if (const auto number = numberBehind ("connections:", name, kMaxConnections))
        return Patch { .name = name, .numConnections = *number };

    if (const auto number = numberBehind ("routes:", name, kNumModSources * kNumModDests))
        return Patch { .name = name, .numRoutes = *number };

    const auto* const found = std::ranges::find (kPatches, name, &Patch::name);
    return found != kPatches.end() ? std::optional (*found) : std::nullopt;
}

PatchedInstance::PatchedInstance (const Patch& patch, double sampleRate, int blockSize)
    : noiseLeft (whiteNoise (static_cast<std::size_t> (blockSize), 1)),
      noiseRight (whiteNoise (static_cast<std::size_t> (blockSize), 2)), buffer (2, blockSize)
{
    // What doubles at every frame takes 128 of them from one to infinity. This gets there in about 30.
    if (patch.isRunningAway)
        for (auto* samples : { &noiseLeft, &noiseRight })
            for (auto& sample : *samples)
                sample *= 1.0e30f;

    apply (patch);
    processor.prepareToPlay (sampleRate, blockSize);
    process();
    midi.clear();
}

bool PatchedInstance::process()
{
    const int n = buffer.getNumSamples();
    buffer.copyFrom (0, 0, noiseLeft.data(), n);
    buffer.copyFrom (1, 0, noiseRight.data(), n);
    processor.processBlock (buffer, midi);

    // A patch that runs away has its node values zeroed at the end of the block.
    return processor.engine->signal.signalSources[sourceInputL] != 0.0f;
}

void PatchedInstance::set (NumericalParamID id, float realValue)
{
    auto* const parameter = processor.parameterTree.getParameter (paramMapper[id].name);
    parameter->setValueNotifyingHost (parameter->convertTo0to1 (realValue));
}

void PatchedInstance::quietFeedback()
{
    // Where both lines lead straight into both lines, at unity: eight seconds between one doubling and the next, and
    // saturators that limit, keep a patch from running away while anybody measures.
    for (auto id : { Delay1Time, Delay2Time })
        set (id, 1000.0f);

    for (auto id : { Delay1Multiplier, Delay2Multiplier })
        set (id, 3.0f);

    for (auto id : { Delay1Feedback, Delay2Feedback, Saturation1, Saturation2 })
        set (id, 0.5f);
}

void PatchedInstance::connect (int count)
{
    for (int source = 0; source < kNumSignalSources; ++source)
        for (int destination = 0; destination < kNumSignalDests; ++destination)
            processor.setSignalConnection (source, destination, false);

    // Spread over the destinations. Without the shift by one after 40, half of the pairs never came up.
    for (int i = 0; i < count; ++i)
        processor.setSignalConnection ((i + i / 40) % kNumSignalSources, i % kNumSignalDests, true);

    quietFeedback();
}

void PatchedInstance::route (int count)
{
    for (int i = 0; i < count; ++i)
        processor.setModConnection (i % kNumModSources, i / kNumModSources, true);

    // Small enough for the sums to stay inside most limits most of the time.
    for (auto id : { Delay1Mod, Delay2Mod, LFO1Mod, LFO2Mod, Filter1Mod, Filter2Mod, Pan1Mod,
                     Pan2Mod, Level1Mod, Level2Mod })
        set (id, 0.1f);
}

void PatchedInstance::apply (const Patch& patch)
{
    set (Delay1Fine, patch.speed1);
    set (Delay2Fine, patch.speed2);
    set (Delay1Reverse, patch.isReversed ? 1.0f : 0.0f);
    set (Delay2Reverse, patch.isReversed ? 1.0f : 0.0f);

    if (patch.isConnected)
    {
        for (int source = 0; source < kNumSignalSources; ++source)
            for (int destination = 0; destination < kNumSignalDests; ++destination)
                processor.setSignalConnection (source, destination, true);

        quietFeedback();
    }

    if (patch.numConnections >= 0)
        connect (patch.numConnections);

    if (patch.numRoutes >= 0)
        route (patch.numRoutes);

    if (patch.isRunningAway)
        for (int source : { sourceSaturation1, sourceSaturation2, sourceInputL })
            for (int destination : { destSaturation1, destSaturation2 })
                processor.setSignalConnection (source, destination, true);

    if (patch.isModulated)
    {
        route (kNumModSources * kNumModDests);
        set (LFO1Wave, 1.0f);  // sine; a skewed one costs two table look-ups
        set (LFO1Skew, 0.3f);
        set (LFO2Wave, 3.0f);  // random
        set (LFO2Rate, 5.0f);
        set (EnvSensitivity, 1.0f);

        for (auto id : { Filter1Reso, Filter2Reso })
            set (id, 5.0f);

        midi.addEvent (juce::MidiMessage::noteOn (1, 48, 0.8f), 0);
        midi.addEvent (juce::MidiMessage::controllerEvent (1, 1, 40), 0);
    }
}
