// SPDX-License-Identifier: AGPL-3.0-or-later
#include "counters.h"
#include "lv2_contestant.h"
#include "noise.h"
#include "support/temporary_home.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#if defined(__SSE__)
#include <xmmintrin.h>
#endif

// Times LV2 plug-ins against each other in one process, on the same noise: see compare_peers.

namespace
{

// clang-format off
constexpr const char* kUsage =
    "usage: velkor_peers [--bundle FOLDER]... [--block FRAMES] [--rate HZ] [--seconds S] CONTESTANT...\n"
    "       velkor_peers [--bundle FOLDER]... [--block FRAMES] [--rate HZ] --count BLOCKS CONTESTANT\n"
    "CONTESTANT: 'NAME: URI [PORT=VALUE]... [+ URI [PORT=VALUE]...]...', a chain with + between its plug-ins.\n"
    "Prints, with tabs between: name, block, ns per frame (median, quietest rounds), time ratio to the first\n"
    "contestant (median, quartiles, quietest rounds), decibels of the output (left, right) and of the echo.\n"
    "With --count only runs so many blocks, for an instruction counter.\n";
// clang-format on

/** Frames between two looks at the clock, in whole blocks: 2/3 s of sound, 1 to 10 ms of work. */
constexpr std::size_t kTurnFrames = 32768;

/** Share of the rounds that counts as the quietest. */
constexpr double kQuiet = 0.05;

struct Settings
{
    std::vector<std::string> bundles;
    std::vector<ContestantSetting> contestants;
    std::size_t block = 512;
    double rate = 48000.0, seconds = 5.0;
    int count = 0;  ///< blocks to run under a counter; 0 to measure times
};

struct Noise
{
    std::vector<float> left = whiteNoise (kTurnFrames, 1), right = whiteNoise (kTurnFrames, 2);
};

/** As on a host's audio thread. What has no such mode here keeps its own. */
void flushToZero()
{
#if defined(__SSE__)
    _mm_setcsr (_mm_getcsr() | 0x8040);  // flush to zero, denormals are zero
#elif defined(__aarch64__)
    unsigned long mode = 0;
    asm volatile("mrs %0, fpcr" : "=r"(mode));
    asm volatile("msr fpcr, %0" : : "r"(mode | 1UL << 24));
#endif
}

ContestantSetting parseContestant (const std::string& text)
{
    const auto end = text.find (": ");

    if (end == std::string::npos)
        throw std::invalid_argument ("no name in '" + text + "'");

    ContestantSetting result { text.substr (0, end), {} };
    std::istringstream words (text.substr (end + 1));
    bool isUri = true;

    for (std::string word; words >> word;)
    {
        const auto equals = word.find ('=');

        if (isUri)
            result.chain.push_back ({ word, {} });
        else if (word != "+" && equals == std::string::npos)
            throw std::invalid_argument ("neither a value nor a + : '" + word + "'");
        else if (word != "+")
            result.chain.back().ports[word.substr (0, equals)] =
                std::stof (word.substr (equals + 1));

        isUri = word == "+";
    }

    if (isUri)
        throw std::invalid_argument ("a plug-in is missing in '" + text + "'");

    return result;
}

Settings parse (const std::vector<std::string>& words)
{
    Settings result;

    for (std::size_t i = 0; i < words.size(); ++i)
    {
        if (! words[i].starts_with ("--"))
        {
            result.contestants.push_back (parseContestant (words[i]));
            continue;
        }

        const auto& option = words[i];
        const auto& value = words.at (++i);

        if (option == "--bundle")
            result.bundles.push_back (value);
        else if (option == "--block")
            result.block = std::stoul (value);
        else if (option == "--rate")
            result.rate = std::stod (value);
        else if (option == "--seconds")
            result.seconds = std::stod (value);
        else if (option == "--count")
            result.count = std::stoi (value);
        else
            throw std::invalid_argument ("unknown option " + option);
    }

    if (result.contestants.empty() || (result.count != 0 && result.contestants.size() != 1))
        throw std::invalid_argument ("no contestant, or several to count");

    if (result.block < 1 || result.block > kTurnFrames || ! (result.rate > 0.0) || result.count < 0)
        throw std::invalid_argument ("a number is out of range");

    return result;
}

/** A turn of whole blocks, one after the other. */
void runTurn (Contestant& contestant, const Noise& noise, std::size_t block)
{
    for (std::size_t frame = 0; frame + block <= kTurnFrames; frame += block)
    {
        contestant.feed (&noise.left[frame], &noise.right[frame]);
        contestant.run();
    }
}

double decibels (double sumOfSquares, double frames)
{
    return 10.0 * std::log10 (sumOfSquares / frames + 1.0e-30);
}

/** How loud the two channels are under noise, and how loud what comes back is when the noise has stopped, both in
    decibels of the mean square. */
struct Levels
{
    std::array<double, 2> sounding {}, echo {};
};

/** Tells from its sound whether a contestant does what it is here for. Throws std::runtime_error if not: a delay that
    is bypassed, idle in one channel or broken would win every race. */
Levels listen (Contestant& contestant, const Noise& noise, const Settings& settings)
{
    const std::vector<float> silence (settings.block);
    const auto blocksIn = [&] (double seconds)
    { return static_cast<int> (seconds * settings.rate / static_cast<double> (settings.block)); };
    std::array<double, 2> sums {};
    std::size_t frame = 0;

    const auto play = [&] (double seconds, bool isSilent)
    {
        sums = {};

        for (int i = 0; i < blocksIn (seconds); ++i)
        {
            contestant.feed (isSilent ? silence.data() : &noise.left[frame],
                             isSilent ? silence.data() : &noise.right[frame]);
            contestant.run();
            frame = frame + 2 * settings.block <= kTurnFrames ? frame + settings.block : 0;

            for (std::size_t n = 0; n < settings.block; ++n)
            {
                const double left = contestant.getOutput (0)[n],
                             right = contestant.getOutput (1)[n];
                sums[0] += left * left;
                sums[1] += right * right;
            }
        }
    };

    play (3.0, false);
    play (1.0, false);
    const double frames = blocksIn (1.0) * static_cast<double> (settings.block);
    Levels result;

    for (std::size_t i : { 0U, 1U })
        result.sounding[i] = decibels (sums[i], frames);

    play (0.1, true);  // what filters and saturators still hold
    play (1.0, true);

    for (std::size_t i : { 0U, 1U })
        result.echo[i] = decibels (sums[i], frames);

    const auto isHeard = [] (double level) { return level > -70.0 && level < 12.0; };

    for (double level : { result.sounding[0], result.sounding[1], result.echo[0], result.echo[1] })
        if (! isHeard (level))
            throw std::runtime_error (
                contestant.getName() +
                " does not work: a channel is silent, too loud or without echo");

    return result;
}

/** The value that a share of the others, 0 to 1, lies below. */
double quantile (std::vector<double> values, double share)
{
    const auto place =
        static_cast<std::ptrdiff_t> (share * static_cast<double> (values.size() - 1));
    std::ranges::nth_element (values, values.begin() + place);
    return values[static_cast<std::size_t> (place)];
}

using Contestants = std::vector<std::unique_ptr<Contestant>>;

/** Nanoseconds per frame of each contestant in each round. All take a turn in every round, so that what slows the
    machine down for a while hits them alike; a different one begins each time, as the first may find colder caches. */
std::vector<std::vector<double>> race (const Contestants& contestants, const Noise& noise,
                                       const Settings& settings)
{
    std::vector<std::vector<double>> times (contestants.size());
    const auto blocks = kTurnFrames / settings.block;
    const auto frames = static_cast<double> (blocks * settings.block);
    const Stopwatch whole;

    for (std::size_t round = 0; round < 9 || whole.nanoseconds() < settings.seconds * 1.0e9;
         ++round)
        for (std::size_t i = 0; i < contestants.size(); ++i)
        {
            const auto which = (round + i) % contestants.size();
            const Stopwatch stopwatch;
            runTurn (*contestants[which], noise, settings.block);
            times[which].push_back (stopwatch.nanoseconds() / frames);
        }

    return times;
}

void measure (const Contestants& contestants, const Noise& noise, const Settings& settings)
{
    std::vector<Levels> levels;

    for (const auto& contestant : contestants)
    {
        levels.push_back (listen (*contestant, noise, settings));
        runTurn (*contestant, noise, settings.block);
    }

    const auto times = race (contestants, noise, settings);

    for (std::size_t i = 0; i < contestants.size(); ++i)
    {
        std::vector<double> ratios (times[i]);

        for (std::size_t round = 0; round < ratios.size(); ++round)
            ratios[round] /= times[0][round];

        // A busy machine doesn't slow all of them down alike, so it moves the ratio too. The quietest rounds are
        // the ones to compare from day to day.
        const double fastest = quantile (times[i], kQuiet);
        std::printf ("%s\t%zu\t%.2f\t%.2f\t%.3f\t%.3f\t%.3f\t%.3f\t%.1f\t%.1f\t%.1f\t%.1f\n",
                     contestants[i]->getName().c_str(), settings.block, quantile (times[i], 0.5),
                     fastest, quantile (ratios, 0.5), quantile (ratios, 0.25),
                     quantile (ratios, 0.75), fastest / quantile (times[0], kQuiet),
                     levels[i].sounding[0], levels[i].sounding[1], levels[i].echo[0],
                     levels[i].echo[1]);
    }
}

void count (Contestant& contestant, const Noise& noise, const Settings& settings)
{
    const auto blocksInTurn = kTurnFrames / settings.block;

    for (int i = 0; i < settings.count; ++i)
    {
        const auto frame = static_cast<std::size_t> (i) % blocksInTurn * settings.block;
        contestant.feed (&noise.left[frame], &noise.right[frame]);
        contestant.run();
    }
}

void run (const Settings& settings)
{
    Lv2World world;

    for (const auto& bundle : settings.bundles)
        world.load (bundle);

    Contestants contestants;

    for (const auto& setting : settings.contestants)
        contestants.push_back (std::make_unique<Contestant> (
            world, setting, settings.rate, static_cast<std::uint32_t> (settings.block)));

    const Noise noise;
    flushToZero();

    if (settings.count > 0)
        count (*contestants[0], noise, settings);
    else
        measure (contestants, noise, settings);
}

}  // namespace

int main (int argc, char** argv)
{
    const TemporaryHome home;  // an instance works on the user's files

    try
    {
        run (parse ({ argv + 1, argv + argc }));
        return 0;
    }
    catch (const std::logic_error& error)
    {
        std::fprintf (stderr, "velkor_peers: %s\n%s", error.what(), kUsage);
        return 2;
    }
    catch (const std::exception& error)
    {
        std::fprintf (stderr, "velkor_peers: %s\n", error.what());
        return 1;
    }
}
