// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/options.h"

#include "velkor_render/failure.h"
#include "velkor_render/text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>

namespace
{
/** What the parser fills in, before numbers are read and files are told apart. */
struct RawOptions
{
    std::vector<std::string> files;
    std::optional<std::string> preset, savePreset, midi, tempo, tail, block, rate, bits, format;
};

constexpr const char* kDescription =
    "Renders audio files through Velkor, the patchable dual delay.\n"
    "Without --preset and edits the sound is that of a new instance; --json tells which that is.\n";

constexpr const char* kExamples =
    "Parameter values are written as the plug-in shows them (\"750 ms\", \"-6 dB\", \"2.5 kHz\", "
    "\"50%\",\n"
    "\"x4\", \"Reverse\", \"Lowpass\"; \"1/8D\" for a time or rate whose sync is on), or as a "
    "plain\n"
    "number, which is always the raw value that --parameters lists. Names ignore case. Whatever "
    "their\n"
    "order, the preset comes first, then what is taken apart, then what is set and made. Where a "
    "file\n"
    "bears the name of a factory preset, ./NAME is the file.\n"
    "\n"
    "Signal sources:       Input L, Input R, Delay 1, Delay 2, Filter 1, Filter 2, Saturation 1,\n"
    "                      Saturation 2\n"
    "Signal destinations:  Delay 1, Delay 2, Delay 1 feedback, Delay 2 feedback, Filter 1, Filter "
    "2,\n"
    "                      Saturation 1, Saturation 2, Output 1, Output 2\n"
    "Modulation sources:   Envelope, LFO 1, LFO 2, Note, Gate, Wheel\n"
    "Modulation targets:   Delay 1, Delay 2, LFO 1, LFO 2, Filter 1, Filter 2, Pan 1, Pan 2,\n"
    "                      Level 1, Level 2\n"
    "\n"
    "Examples:\n"
    "  velkor-render --demo demo.wav\n"
    "  velkor-render --set \"Delay 1 Time=375 ms\" \\\n"
    "                --connect \"Delay 1 > Filter 1\" --connect \"Filter 1 > Output 2\" \\\n"
    "                guitar.wav echo.flac\n"
    "  velkor-render --route \"LFO 1 > Pan 1\" --set \"Pan 1 Mod=50%\" *.wav rendered/\n"
    "  velkor-render --preset \"Tape Delay\" --set \"Wet Level=-3 dB\" \\\n"
    "                --save-preset \"Quiet Tape.zbpreset\" --demo tape.wav\n"
    "\n"
    "Exit code: 0 done, 1 something failed, 2 the command line is wrong. An output appears only "
    "once it\n"
    "is complete; one that exists is replaced.";

/** The help text, with a usage line that tells the two kinds of files apart. */
class HelpFormatter : public CLI::Formatter
{
public:
    std::string make_usage (const CLI::App*, std::string) const override
    {
        return "Usage: velkor-render [OPTIONS] INPUT... OUTPUT\n"
               "       velkor-render [OPTIONS] --demo OUTPUT\n"
               "       velkor-render [OPTIONS] --save-preset FILE\n"
               "       velkor-render --parameters [--json] [--preset PRESET] [--set "
               "NAME=VALUE]...\n"
               "       velkor-render --list-presets [--json]\n\n";
    }
};

/** An option that may be given many times, with one value each time. */
void addList (CLI::App& app, const char* name, std::vector<std::string>& values, const char* value,
              const char* description)
{
    app.add_option (name, values, description)
        ->type_name (value)
        ->allow_extra_args (false)
        ->group ("Patch");
}

void addText (CLI::App& app, const char* group, const char* name, std::optional<std::string>& text,
              const char* value, const char* description)
{
    app.add_option_function<std::string> (
           name, [&text] (const std::string& given) { text = given; }, description)
        ->type_name (value)
        ->group (group);
}

void addPatchOptions (CLI::App& app, Options& options, RawOptions& raw)
{
    addText (app, "Patch", "--preset", raw.preset, "PRESET",
             "Start from a preset: a file, or a factory preset by its name or number");
    addList (app, "--set", options.edits.set, "NAME=VALUE", "Set a parameter");
    addList (app, "--connect", options.edits.connect, "CABLE",
             "Plug in a signal cable, \"SOURCE > DESTINATION\"");
    addList (app, "--disconnect", options.edits.disconnect, "CABLE|all",
             "Pull a signal cable, or all");
    addList (app, "--route", options.edits.route, "ROUTE",
             "Make a modulation route, \"SOURCE > TARGET\"");
    addList (app, "--unroute", options.edits.unroute, "ROUTE|all",
             "Remove a modulation route, or all");
    addText (app, "Patch", "--save-preset", raw.savePreset, "FILE",
             "Write the patch to a preset file, .zbpreset, before anything is rendered");
}

void addRenderOptions (CLI::App& app, Options& options, RawOptions& raw)
{
    const char* const group = "Render";
    addText (app, group, "--tempo", raw.tempo, "BPM", "Tempo of synced delays and LFOs (120)");
    addText (app, group, "--midi", raw.midi, "FILE",
             "Standard MIDI file to play along; it runs at --tempo, not at its own");
    addText (app, group, "--tail", raw.tail, "SECONDS|auto",
             "What to render behind the input's end; auto (the default) goes on until\n"
             "one second after the sound has fallen below -90 dBFS, 60 s at most");
    addText (app, group, "--block", raw.block, "FRAMES", "Block size, 1 to 16384 (512)");
    addText (app, group, "--rate", raw.rate, "HZ",
             "Sample rate to convert to and to render at (the input's own)");
    app.add_flag ("--demo", options.demo, "Render a built-in phrase of four bars instead of a file")
        ->group (group);
    addText (app, group, "--bits", raw.bits, "16|24|32",
             "Word length of the output (24); 32 is floating point, WAV only");
    addText (app, group, "--format", raw.format, "wav|aiff|flac",
             "What to write into a folder (wav)");
}

void setUp (CLI::App& app, Options& options, RawOptions& raw)
{
    // Options start with a dash on every system: a slash starts a path.
    app.allow_windows_style_options (false);
    app.footer (kExamples);
    app.formatter (std::make_shared<HelpFormatter>());
    app.get_formatter()->column_width (28);
    app.add_option ("FILES", raw.files,
                    "INPUT: audio to render; WAV, AIFF, FLAC or Ogg Vorbis, mono or stereo\n"
                    "OUTPUT: a .wav, .aif, .aiff or .flac file; for several inputs a folder,\n"
                    "that is, one that exists or a name that ends in \"/\"")
        ->type_name ("")
        ->group ("Files");
    addPatchOptions (app, options, raw);
    addRenderOptions (app, options, raw);
    app.add_flag ("--list-presets", options.listPresets, "List the factory presets")
        ->group ("Information");
    app.add_flag ("--parameters", options.listParameters,
                  "List the parameters, as --preset and --set leave them")
        ->group ("Information");
    app.add_flag ("--json", options.json, "Report, or list, as JSON on standard output")
        ->group ("Information");
    app.set_help_flag ("--help,-h", "Print this text")->group ("Information");
    app.set_version_flag ("--version", "velkor-render " VELKOR_VERSION)
        ->description ("Print the version")
        ->group ("Information");
}

/** The arguments in the order that the parser wants: the last one first. */
std::vector<std::string> argumentsOf (int argc, const char* const* argv)
{
    std::vector<std::string> arguments (argv + 1, argv + argc);

    // The parser takes "[a,b]" for a list. "./[a,b]" it leaves alone, and it is the same file.
    for (auto& argument : arguments)
        if (argument.starts_with ('[') && argument.ends_with (']'))
            argument.insert (0, "./");

    std::reverse (arguments.begin(), arguments.end());
    return arguments;
}

double readNumber (const char* option, const std::string& text, double lowest, double highest)
{
    const auto quantity = readQuantity (text);

    if (! quantity || ! quantity->unit.empty())
        failUsage (std::string (option) + ": " + inQuotes (text) + " is not a number");

    if (quantity->number < lowest || quantity->number > highest)
        failUsage (std::string (option) + ": " + text + " is outside " + numberText (lowest) +
                   " to " + numberText (highest));

    return quantity->number;
}

int readWholeNumber (const char* option, const std::string& text, int lowest, int highest)
{
    const double number = readNumber (option, text, lowest, highest);

    if (number != std::floor (number))
        failUsage (std::string (option) + ": " + text + " is not a whole number");

    return static_cast<int> (number);
}

void takeNumbers (Options& options, const RawOptions& raw)
{
    if (raw.tempo)
        options.tempo = readNumber ("--tempo", *raw.tempo, 1.0, 999.0);

    if (raw.tail && lowerCase (*raw.tail) != "auto")
        options.tailSeconds = readNumber ("--tail", *raw.tail, 0.0, 3600.0);

    if (raw.block)
        options.block = readWholeNumber ("--block", *raw.block, 1, 16384);

    if (raw.rate)
        options.rate = readWholeNumber ("--rate", *raw.rate, kLowestRate, kHighestRate);

    if (raw.bits)
        options.bits = readWholeNumber ("--bits", *raw.bits, 16, 32);

    if (options.bits != 16 && options.bits != 24 && options.bits != 32)
        failUsage ("--bits: " + numberText (options.bits) + " is none of 16, 24, 32");
}

/** A list is all that a run prints, and it makes no file. */
void checkListAlone (const Options& options, const RawOptions& raw)
{
    const std::string list = options.listPresets ? "--list-presets" : "--parameters";
    const auto refuse = [&list] (const std::string& word)
    { failUsage (list + " only lists: leave out " + word); };

    if (! raw.files.empty())
        refuse (inQuotes (raw.files.front()));

    if (options.demo)
        refuse ("--demo");

    if (raw.savePreset)
        refuse ("--save-preset");

    if (options.listPresets && options.listParameters)
        refuse ("--parameters");
}

void takeFiles (Options& options, const RawOptions& raw)
{
    if (raw.preset)
        options.preset = *raw.preset;

    if (raw.savePreset)
        options.savePreset = *raw.savePreset;

    if (raw.midi)
        options.midi = *raw.midi;

    if (raw.format)
        options.format = lowerCase (*raw.format);

    // A sound file named by mistake is not to be replaced.
    if (raw.savePreset && ! lowerCase (*raw.savePreset).ends_with (".zbpreset"))
        failUsage ("--save-preset: " + inQuotes (*raw.savePreset) + " does not end in .zbpreset");

    if (options.listPresets || options.listParameters)
    {
        checkListAlone (options, raw);
        return;
    }

    if (raw.savePreset && raw.files.empty() && ! options.demo)
        return;

    const std::size_t fewest = options.demo ? 1 : 2;

    if (raw.files.empty() && ! options.demo)
        failUsage ("nothing to render: name INPUT and OUTPUT, or see --help");

    if (raw.files.size() < fewest)
        failUsage (options.demo ? "--demo: no OUTPUT is named"
                                : inQuotes (raw.files.front()) + " alone: no OUTPUT is named");

    if (options.demo && raw.files.size() > 1)
        failUsage ("--demo takes no INPUT, but " + inQuotes (raw.files.front()) + " is given");

    options.inputs.assign (raw.files.begin(), raw.files.end() - 1);
    options.output = raw.files.back();
}
}  // namespace

std::optional<Options> readOptions (int argc, const char* const* argv)
{
    Options options;
    RawOptions raw;
    CLI::App app (kDescription, "velkor-render");
    setUp (app, options, raw);

    try
    {
        app.parse (argumentsOf (argc, argv));
    }
    catch (const CLI::Success& wish)
    {
        app.exit (wish, std::cout, std::cerr);
        return std::nullopt;
    }
    catch (const CLI::ParseError& error)
    {
        failUsage (error.what());
    }

    takeNumbers (options, raw);
    takeFiles (options, raw);
    return options;
}
