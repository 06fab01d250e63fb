// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine_globals.h"
#include "processor/VelkorAudioProcessor.h"
#include "velkor_render/demo_phrase.h"
#include "velkor_render/failure.h"
#include "velkor_render/interruption.h"
#include "velkor_render/options.h"
#include "velkor_render/patch.h"
#include "velkor_render/private_home.h"
#include "velkor_render/progress_bar.h"
#include "velkor_render/report.h"
#include "velkor_render/resampling.h"
#include "velkor_render/sound.h"
#include "velkor_render/text.h"

#include <juce_events/juce_events.h>

#include <cstdio>
#include <exception>

namespace
{
/** A new instance with a sound. */
std::unique_ptr<VelkorAudioProcessor> makeProcessor (const Sound& sound)
{
    // A delay line takes its longest time from the rate that the process ran at when the line was made.
    // This is the rate of a new process: no file is to sound different for the one before it.
    setAudioSamplingRate (44100.0);
    auto processor = std::make_unique<VelkorAudioProcessor>();
    loadSound (*processor, sound);
    return processor;
}

/** What is rendered. Edits go through a document too, so that a patch sounds to the bit as the preset that it
    is saved to: cables are summed in the order of the document, and the way from a value's text into the store
    may cost its last bit. */
Sound soundOf (VelkorAudioProcessor& patch, const Options& options, Sound startingSound)
{
    if (options.edits == PatchEdits {} && ! options.savePreset)
        return startingSound;

    auto document = std::make_unique<juce::XmlElement> (patch.stateTag);
    patch.saveStateToXML (*document);
    return { startingSound.preset, std::move (document) };
}

AudioInput openInput (const Job& job, const Options& options)
{
    if (job.input.empty())
    {
        const double rate = options.rate.value_or (48000);
        return inputFromMemory (demoPhrase (rate, options.tempo), rate);
    }

    auto input = openAudioFile (job.input);

    if (options.rate)
        return resampled (std::move (input), *options.rate);

    if (input.rate < kLowestRate || input.rate > kHighestRate)
        fail (job.input.string() + ": its rate of " + numberText (input.rate) +
              " Hz can't be rendered at; choose another with --rate");

    return input;
}

FinishedJob renderJob (const Job& job, const Options& options, const Sound& sound)
{
    const auto processor = makeProcessor (sound);
    auto input = openInput (job, options);
    RenderSettings settings { options.tempo, options.block, options.tailSeconds, {} };

    if (options.midi)
        settings.midi = readMidiFile (*options.midi, options.tempo, input.rate);

    AudioOutput output (job.output, job.type, input.rate, options.bits);
    ProgressBar bar (job.inputName());
    const auto result = render (*processor, input, settings, output,
                                [&bar] (double proportion) { bar.show (proportion); });
    output.commit();
    return { job, input.rate, result };
}

void print (const std::string& text)
{
    const bool taken = std::fputs (text.c_str(), stdout) >= 0;

    if (std::fflush (stdout) != 0 || ! taken)
        fail ("standard output can't be written");
}

void run (const Options& options)
{
    // The parameter store has a timer, which wants a message manager to be there. No display is opened.
    const juce::ScopedJuceInitialiser_GUI framework;

    if (options.listPresets)
    {
        print (options.json ? presetJson() : presetList());
        return;
    }

    // What is wrong with the patch shows before all else.
    auto startingSound = readSound (options.preset);
    const auto patch = makeProcessor (startingSound);
    applyEdits (*patch, options.edits);
    const auto sound = soundOf (*patch, options, std::move (startingSound));
    const auto processor = makeProcessor (sound);

    if (options.listParameters)
    {
        print (options.json ? parameterJson (*processor) : parameterTable (*processor));
        return;
    }

    const auto jobs = planJobs (options);
    std::vector<FinishedJob> finished;

    for (const auto& job : jobs)
        openInput (job, options);  // better now than after an hour's work

    if (options.savePreset)
    {
        savePreset (*patch, *options.savePreset);

        if (! options.json)
            print (options.savePreset->string() + ": preset saved\n");
    }

    for (const auto& job : jobs)
    {
        finished.push_back (renderJob (job, options, sound));

        if (! options.json)
            print (renderLine (finished.back()));
    }

    if (options.json)
        print (renderJson (finished, options, sound.preset, *processor));
}

/** One line, whatever is in the names that it quotes. */
void complain (const std::string& message)
{
    std::string line = message;

    for (auto& c : line)
        if (static_cast<unsigned char> (c) < ' ')
            c = ' ';

    std::fprintf (stderr, "velkor-render: %s\n", line.c_str());
}
}  // namespace

int main (int argc, char* argv[])
{
    int exitCode = 0;
    catchInterruptions();

    try
    {
        const PrivateHome home;  // before the framework's first word

        if (const auto options = readOptions (argc, argv))
            run (*options);
    }
    catch (const Failure& failure)
    {
        complain (failure.what());
        exitCode = failure.kind;
    }
    catch (const std::exception& error)
    {
        complain (error.what());
        exitCode = Failure::operation;
    }

    endIfInterrupted();
    return exitCode;
}
