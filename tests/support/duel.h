// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/VelkorAudioProcessor.h"
#include "reference_engine.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <optional>
#include <span>
#include <vector>

/** A transport that says what the test wants it to say. */
class FakePlayHead : public juce::AudioPlayHead
{
public:
    juce::Optional<PositionInfo> getPosition() const override;

    bool answers = true;
    std::optional<double> tempo, position;
};

/** White noise in -1..1 from a fixed generator, the same on every machine. */
class Noise
{
public:
    explicit Noise (std::uint32_t seed) : state (seed * 2654435761u + 1u) {}

    std::uint32_t bits() noexcept;

    /** 0 up to below 1. */
    float unit() noexcept { return static_cast<float> (bits() >> 8) * (1.0f / 16777216.0f); }

    float operator()() noexcept { return unit() * 2.0f - 1.0f; }

    /** 0 to n - 1. */
    int below (int n) noexcept
    {
        return static_cast<int> (bits() % static_cast<std::uint32_t> (n));
    }

    bool chance (float p) noexcept { return unit() < p; }

    /** So many samples of up to that level. */
    std::vector<float> samples (int n, float level);

private:
    std::uint32_t state;
};

/** The product and the reference engine side by side, given the same things and compared to the bit. One at
    a time: the product's sample rate is the process's. Message thread. */
class Duel
{
public:
    /** Both as in a process that has worked at this rate before; not prepared yet. */
    explicit Duel (double rateBefore = 44100.0);

    void prepare (double rate);

    /** Sets a parameter of the product's store; the reference sees the store's value. */
    void set (NumericalParamID id, float realValue);
    void set (NumericalParamID first, NumericalParamID second, float realValue);

    void connect (int source, int destination, bool on);
    void route (int source, int dest, bool on);
    void connectAll (bool on);

    /** An event of the coming block; its place in the block is spread, which must not matter. */
    void midi (std::uint8_t status, std::uint8_t data1, std::uint8_t data2);

    /** One block of n samples through both; the input is copied from the spans, and the product's result is
        left in left and right. Adds a test failure at the first sample whose bits differ. False then. */
    bool process (std::vector<float>& left, std::vector<float>& right, int channels = 2);

    /** Blocks of noise, up to half of full scale, until one differs; the last one's peak on the left. */
    float run (Noise& noise, int blocks, int length);

    VelkorAudioProcessor product;
    reference::Globals globals;
    FakePlayHead playHead;
    std::optional<reference::ReferenceEngine> engine;

private:
    juce::MidiBuffer events;
    int eventPlace = 0;
    bool isMidiUsed = false;  ///< by the coming block
};

/** The store's value of each parameter, in the catalogue's order. */
void readValues (const VelkorAudioProcessor& processor, float (&values)[reference::kNumParams]);

/** Sets a parameter to a value in its own unit, as a host does. */
void setParameter (VelkorAudioProcessor& processor, NumericalParamID id, float realValue);

/** Takes back what the default preset of the machine has put into a new instance: the parameters get their
    own defaults, the matrices those of a new engine. */
void useBareDefaults (VelkorAudioProcessor& processor);
