// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/VelkorAudioProcessor.h"
#include "support/temporary_home.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/** Text of a file, as bytes; empty if there is none. */
std::string bytesOf (const juce::File& file);

/** Makes a file of these bytes, and its folder. */
void putFile (const juce::File& file, std::string_view bytes);

/** A document that is kept beside the tests, as bytes. */
std::string keptDocument (const std::string& name);

/** The texts of the factory presets that an instance has unpacked into this home, in the order of the bank. */
juce::StringArray factoryDocuments();

/** A document with this inside of its root. */
juce::String documentWith (const juce::String& children, const juce::String& name = "Test");

/** A document with these elements inside of its parameters and no matrices. */
juce::String documentWithParams (const juce::String& params);

/** The frame that hosts keep, around any text. */
juce::MemoryBlock chunkAround (const juce::String& text);

/** Puts what happens to be in the parameters out of the way of what is about to be loaded. */
void scramble (VelkorAudioProcessor& processor, std::uint32_t seed);

/** The value of a parameter in its own unit, by its id. */
float valueOf (const VelkorAudioProcessor& processor, juce::StringRef id);

/** All signal connections as "input>output", the order that of the list that the sample loop walks. */
std::vector<std::string> connectionList (const VelkorAudioProcessor& processor);

/** All modulation routes as "source>dest", the order that of the list that the tick walks. */
std::vector<std::string> routeList (const VelkorAudioProcessor& processor);

/** The present document as file text. */
juce::String textOf (VelkorAudioProcessor& processor);

/** The value text of a parameter in a document; "(none)" without one, "(several)" if it occurs twice. */
juce::String valueTextIn (const juce::String& document, const juce::String& id);

/** An audio thread: hands blocks of noise with a note in each to a function until it is told to stop. */
std::thread playNoise (int numSamples, const std::atomic<bool>& stop,
                       std::function<void (juce::AudioBuffer<float>&, juce::MidiBuffer&)> play);

/** Counts what the host is told. */
class HostListener : public juce::AudioProcessorListener
{
public:
    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override {}
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details) override;

    int changes = 0;
    ChangeDetails last;
};

/** Each test has a home of its own, empty at first, and is the message thread. */
class StateTest : public testing::Test
{
protected:
    ~StateTest() override { setenv ("HOME", homeBefore.c_str(), 1); }

    juce::File homeFile (const juce::String& path) const;
    juce::File presets (const juce::String& path = {}) const;
    juce::File globals() const;

private:
    const std::string homeBefore = getenv ("HOME");  ///< first: read before the new one is set

protected:
    TemporaryHome home;
    juce::ScopedJuceInitialiser_GUI framework;
};
