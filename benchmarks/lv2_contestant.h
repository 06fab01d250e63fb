// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

class Lv2Plugin;

/** One plug-in of a contestant and the control ports that are not to stay at their defaults, by symbol. */
struct PluginSetting
{
    std::string uri;
    std::map<std::string, float> ports;
};

/** What is measured as one: plug-ins in a row, the output of each being the next one's input. */
struct ContestantSetting
{
    std::string name;
    std::vector<PluginSetting> chain;
};

/** The bundles that plug-ins are looked for in, and the numbers that stand for their URIs. */
class Lv2World
{
public:
    Lv2World();
    ~Lv2World();

    /** folder is an .lv2 folder. What is wrong with it shows when a plug-in is not found. */
    void load (const std::string& folder);

private:
    friend class Lv2Plugin;
    struct Impl;
    std::unique_ptr<Impl> impl;
};

/** A contestant, prepared and ready to run. Any one thread at a time. */
class Contestant
{
public:
    /** rate in hertz, block in frames. Throws std::runtime_error if a plug-in or a port is not there, if a port is of
        a kind that this host does not know, or if a plug-in refuses. The world must outlive this. */
    Contestant (const Lv2World& world, ContestantSetting what, double rate, std::uint32_t block);
    ~Contestant();

    const std::string& getName() const { return setting.name; }

    /** Makes ready for a block: these are its input, a block's length of each, which stay the caller's. */
    void feed (const float* left, const float* right);

    /** Processes what feed has set, the work of a host's audio thread and nothing else. An instruction counter starts
        and stops at this function by its name, so it is never inlined. */
    void run();

    /** A channel of the last block's output, 0 or 1. */
    const float* getOutput (int channel) const;

private:
    ContestantSetting setting;
    std::uint32_t blockSize;
    std::vector<std::unique_ptr<Lv2Plugin>> plugins;
};
