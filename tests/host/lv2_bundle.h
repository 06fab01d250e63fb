// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct LilvPluginImpl;
struct LilvWorldImpl;

/** What the bundle's Turtle says of a parameter. */
struct Lv2Parameter
{
    std::string uri;
    bool writable = false, readable = false;
    float minimum = 0.0f, maximum = 0.0f, defaultValue = 0.0f;
    std::map<float, std::string> scalePoints;
};

/** A bundle with one plug-in, as lilv reads it. */
class Lv2Bundle
{
public:
    /** folder is the .lv2 folder. Throws std::runtime_error if it holds no plug-in. */
    explicit Lv2Bundle (const std::string& folder);
    ~Lv2Bundle();

    std::string getUri() const;
    std::string getName() const;
    std::string getAuthor() const;

    /** URIs, sorted. */
    std::vector<std::string> getRequiredFeatures() const;

    /** Symbols of the ports of a class and direction ("AudioPort", "InputPort"), by index. */
    std::map<std::uint32_t, std::string> getPorts (const char* type, const char* direction) const;

    /** By label. */
    std::map<std::string, Lv2Parameter> getParameters() const;

    /** lilv's own objects, which live as long as this. */
    const LilvPluginImpl* getPlugin() const;
    LilvWorldImpl* getWorld() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};
