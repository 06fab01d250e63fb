// SPDX-License-Identifier: AGPL-3.0-or-later
#include "patches.h"

#include <algorithm>
#include <random>

std::optional<Patch> findPatch (std::string_view name) noexcept
{
    const auto* const found = std::ranges::find (kPatches, name, &Patch::name);
    return found != kPatches.end() ? std::optional (*found) : std::nullopt;
}

std::vector<float> noise (int numSamples, unsigned seed)
{
    // The distributions of the standard library differ from one library to the next; this doesn't.
    std::minstd_rand generator (seed);
    std::vector<float> samples (static_cast<std::size_t> (numSamples));

    for (auto& sample : samples)
        sample = 0.2f * static_cast<float> (generator() >> 7) / 16777216.0f - 0.1f;

    return samples;
}

PatchedInstance::PatchedInstance (const Patch& patch, double sampleRate, int blockSize)
    : noiseLeft (noise (blockSize, 1)), noiseRight (noise (blockSize, 2)), buffer (2, blockSize)
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

        // Both lines lead straight into both lines now, at unity. Eight seconds between one doubling and
        // the next, and saturators that limit, keep this from running away while anybody measures.
        for (auto id : { Delay1Time, Delay2Time })
            set (id, 1000.0f);

        for (auto id : { Delay1Multiplier, Delay2Multiplier })
            set (id, 3.0f);

        for (auto id : { Delay1Feedback, Delay2Feedback, Saturation1, Saturation2 })
            set (id, 0.5f);
    }

    if (patch.isRunningAway)
        for (int source : { sourceSaturation1, sourceSaturation2, sourceInputL })
            for (int destination : { destSaturation1, destSaturation2 })
                processor.setSignalConnection (source, destination, true);

    if (patch.isModulated)
    {
        for (int source = 0; source < kNumModSources; ++source)
            for (int dest = 0; dest < kNumModDests; ++dest)
                processor.setModConnection (source, dest, true);

        // Small enough for the sums to stay inside most limits most of the time.
        for (auto id : { Delay1Mod, Delay2Mod, LFO1Mod, LFO2Mod, Filter1Mod, Filter2Mod, Pan1Mod,
                         Pan2Mod, Level1Mod, Level2Mod })
            set (id, 0.1f);

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
