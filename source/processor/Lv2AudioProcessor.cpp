// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/Lv2AudioProcessor.h"

void ContinuedPlayHead::hear (const juce::Optional<PositionInfo>& told)
{
    if (told)
        position = told;
}

void ContinuedPlayHead::advance (int numSamples, double sampleRate)
{
    if (! position || ! position->getIsPlaying() || ! (sampleRate > 0.0))
        return;

    const double seconds = numSamples / sampleRate;

    if (const auto ppq = position->getPpqPosition(); ppq && position->getBpm())
        position->setPpqPosition (*ppq + seconds * *position->getBpm() / 60.0);

    if (const auto samples = position->getTimeInSamples())
        position->setTimeInSamples (*samples + numSamples);

    if (const auto time = position->getTimeInSeconds())
        position->setTimeInSeconds (*time + seconds);
}

void Lv2AudioProcessor::setPlayHead (juce::AudioPlayHead* client)
{
    clientPlayHead = client;
    VelkorAudioProcessor::setPlayHead (&continued);
}

void Lv2AudioProcessor::hearTransport()
{
    if (clientPlayHead != nullptr)
        continued.hear (clientPlayHead->getPosition());
}

void Lv2AudioProcessor::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi)
{
    hearTransport();
    VelkorAudioProcessor::processBlock (buffer, midi);
    continued.advance (buffer.getNumSamples(), getSampleRate());
    midi.clear();
}

void Lv2AudioProcessor::processBlockBypassed (juce::AudioBuffer<float>& buffer,
                                              juce::MidiBuffer& midi)
{
    hearTransport();
    VelkorAudioProcessor::processBlockBypassed (buffer, midi);
    continued.advance (buffer.getNumSamples(), getSampleRate());
    midi.clear();
}
