// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/** Changes to a patch, as the user wrote them. */
struct PatchEdits
{
    bool operator== (const PatchEdits&) const = default;

    std::vector<std::string> set;         ///< "Delay 1 Time=750 ms"
    std::vector<std::string> disconnect;  ///< "Delay 1 > Output 1", or "all"
    std::vector<std::string> connect;     ///< "Delay 1 > Filter 1"
    std::vector<std::string> unroute;     ///< "LFO 1 > Pan 1", or "all"
    std::vector<std::string> route;       ///< "LFO 1 > Pan 1"
};

/** What the command line asks for. Names are not looked up yet, nor is any file. */
struct Options
{
    std::vector<std::filesystem::path> inputs;  ///< none with demo, nor where nothing is rendered
    std::string output;                         ///< as written: a slash at its end means something
    bool demo = false;

    std::optional<std::string> preset;  ///< a file, or the name or number of a factory preset
    PatchEdits edits;
    std::optional<std::filesystem::path> savePreset;  ///< ends in ".zbpreset"

    double tempo = 120.0;  ///< beats per minute
    std::optional<std::filesystem::path> midi;
    std::optional<double> tailSeconds;  ///< nothing: until the sound is gone
    int block = 512;                    ///< frames
    std::optional<int> rate;            ///< hertz; nothing: each input's own
    int bits = 24;
    std::optional<std::string> format;  ///< extension of what is written into a folder

    bool listPresets = false;
    bool listParameters = false;
    bool json = false;
};

/** Rates that can be rendered at, in hertz. */
inline constexpr int kLowestRate = 8000;
inline constexpr int kHighestRate = 384000;

/** Reads the command line. Nothing if it asked for --help or --version, which are printed to stdout. Fails
    by usage at what can be told from the words alone: unknown options, bad numbers, numbers of files. */
std::optional<Options> readOptions (int argc, const char* const* argv);
