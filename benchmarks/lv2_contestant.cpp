// SPDX-License-Identifier: AGPL-3.0-or-later
#include "lv2_contestant.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <deque>
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>
#include <lv2/resize-port/resize-port.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>
#include <stdexcept>
#include <utility>

namespace
{

using World = std::unique_ptr<LilvWorld, decltype (&lilv_world_free)>;
using Node = std::unique_ptr<LilvNode, decltype (&lilv_node_free)>;
using Instance = std::unique_ptr<LilvInstance, decltype (&lilv_instance_free)>;

}  // namespace

struct Lv2World::Impl
{
    LV2_URID numberOf (const std::string& uri)
    {
        const auto [place, isNew] =
            numbers.try_emplace (uri, static_cast<LV2_URID> (numbers.size() + 1));

        if (isNew)
            uris.push_back (&place->first);

        return place->second;
    }

    const char* uriOf (LV2_URID number) const
    {
        return number > 0 && number <= uris.size() ? uris[number - 1]->c_str() : nullptr;
    }

    Node uri (const char* text) const
    {
        return { lilv_new_uri (lilv.get(), text), lilv_node_free };
    }

    World lilv { lilv_world_new(), lilv_world_free };
    std::map<std::string, LV2_URID> numbers;
    std::vector<const std::string*> uris;  ///< into numbers, whose nodes stay in place
    LV2_URID_Map map { this, [] (LV2_URID_Map_Handle self, const char* uri)
                       { return static_cast<Impl*> (self)->numberOf (uri); } };
    LV2_URID_Unmap unmap { this, [] (LV2_URID_Unmap_Handle self, LV2_URID number)
                           { return static_cast<Impl*> (self)->uriOf (number); } };
};

Lv2World::Lv2World() : impl (std::make_unique<Impl>()) {}
Lv2World::~Lv2World() = default;

void Lv2World::load (const std::string& folder)
{
    auto* const lilv = impl->lilv.get();
    const Node path (lilv_new_file_uri (lilv, nullptr, (folder + "/").c_str()), lilv_node_free);
    lilv_world_load_bundle (lilv, path.get());
}

/** One plug-in with two audio inputs and two outputs, at work. */
class Lv2Plugin
{
public:
    Lv2Plugin (const Lv2World& owner, const PluginSetting& setting, double sampleRate,
               std::uint32_t maxBlock);

    ~Lv2Plugin() { lilv_instance_deactivate (instance.get()); }

    Lv2Plugin (const Lv2Plugin&) = delete;
    Lv2Plugin& operator= (const Lv2Plugin&) = delete;

    void connectInput (const float* left, const float* right)
    {
        lilv_instance_connect_port (instance.get(), audioIn[0], const_cast<float*> (left));
        lilv_instance_connect_port (instance.get(), audioIn[1], const_cast<float*> (right));
    }

    void run (std::uint32_t frames) { lilv_instance_run (instance.get(), frames); }

    /** What a host does between blocks: work that the plug-in put off, and room for what it sends. */
    void betweenBlocks();

    std::array<std::vector<float>, 2> output;

private:
    /** A sequence port's memory, in units that keep the alignment that atoms need. */
    using AtomBuffer = std::vector<std::uint64_t>;

    const LilvPlugin* find (const std::string& uri) const;
    void instantiate (double sampleRate, std::uint32_t maxBlock);
    void connect (std::uint32_t index, std::map<std::string, float>& wanted, float defaultValue);
    void connectAudio (std::uint32_t index, bool isInput);
    void connectSequence (std::uint32_t index, bool isInput);
    bool isA (const LilvPort* port, const char* portClass) const;
    void clearSent (AtomBuffer& buffer) const;

    Lv2World::Impl& world;
    const LilvPlugin* plugin;
    const LV2_URID chunk = world.numberOf (LV2_ATOM__Chunk);

    std::int32_t minBlock = 1, blockSize = 0, sequenceSize = 8192;
    float rate = 0.0f;
    std::array<LV2_Options_Option, 6> options {};
    LV2_Worker_Schedule schedule {};
    std::deque<std::vector<std::byte>> putOff;     ///< work, from run
    std::deque<std::vector<std::byte>> responses;  ///< from work
    const LV2_Worker_Interface* worker = nullptr;

    std::vector<std::uint32_t> audioIn, audioOut;
    std::deque<float> controls;  ///< a deque, so that the values stay in place
    std::deque<AtomBuffer> received, sent;

    Instance instance { nullptr, lilv_instance_free };  // last: it may use all the rest
};

Lv2Plugin::Lv2Plugin (const Lv2World& owner, const PluginSetting& setting, double sampleRate,
                      std::uint32_t maxBlock)
    : world (*owner.impl), plugin (find (setting.uri))
{
    instantiate (sampleRate, maxBlock);
    output.fill (std::vector<float> (maxBlock));

    const auto numPorts = lilv_plugin_get_num_ports (plugin);
    std::vector<float> defaults (numPorts);
    lilv_plugin_get_port_ranges_float (plugin, nullptr, nullptr, defaults.data());
    auto wanted = setting.ports;

    for (std::uint32_t i = 0; i < numPorts; ++i)
        connect (i, wanted, std::isnan (defaults[i]) ? 0.0f : defaults[i]);

    if (! wanted.empty())
        throw std::runtime_error (setting.uri + " has no control input " + wanted.begin()->first);

    if (audioIn.size() != 2 || audioOut.size() != 2)
        throw std::runtime_error (setting.uri + " is not stereo");

    lilv_instance_activate (instance.get());
}

const LilvPlugin* Lv2Plugin::find (const std::string& uri) const
{
    const auto node = world.uri (uri.c_str());
    const auto* const found =
        lilv_plugins_get_by_uri (lilv_world_get_all_plugins (world.lilv.get()), node.get());

    if (found == nullptr)
        throw std::runtime_error ("no " + uri + " in the bundles");

    return found;
}

void Lv2Plugin::instantiate (double sampleRate, std::uint32_t maxBlock)
{
    blockSize = static_cast<std::int32_t> (maxBlock);
    rate = static_cast<float> (sampleRate);

    const auto option =
        [&] (const char* key, const char* type, std::uint32_t size, const void* value)
    {
        return LV2_Options_Option { LV2_OPTIONS_INSTANCE,  0,    world.numberOf (key), size,
                                    world.numberOf (type), value };
    };

    options = {
        option (LV2_BUF_SIZE__minBlockLength, LV2_ATOM__Int, sizeof minBlock, &minBlock),
        option (LV2_BUF_SIZE__maxBlockLength, LV2_ATOM__Int, sizeof blockSize, &blockSize),
        option (LV2_BUF_SIZE__nominalBlockLength, LV2_ATOM__Int, sizeof blockSize, &blockSize),
        option (LV2_BUF_SIZE__sequenceSize, LV2_ATOM__Int, sizeof sequenceSize, &sequenceSize),
        option (LV2_PARAMETERS__sampleRate, LV2_ATOM__Float, sizeof rate, &rate),
        LV2_Options_Option {}
    };

    // Without this a plug-in that wants it would start a thread of its own, and how many blocks pass before a delay
    // line has its memory would be left to chance.
    schedule = { this, [] (LV2_Worker_Schedule_Handle self, std::uint32_t size, const void* data)
                 {
                     const auto* const bytes = static_cast<const std::byte*> (data);
                     static_cast<Lv2Plugin*> (self)->putOff.emplace_back (bytes, bytes + size);
                     return LV2_WORKER_SUCCESS;
                 } };

    const std::array features { LV2_Feature { LV2_URID__map, &world.map },
                                LV2_Feature { LV2_URID__unmap, &world.unmap },
                                LV2_Feature { LV2_OPTIONS__options, options.data() },
                                LV2_Feature { LV2_BUF_SIZE__boundedBlockLength, nullptr },
                                LV2_Feature { LV2_WORKER__schedule, &schedule } };
    std::array<const LV2_Feature*, features.size() + 1> list {};

    for (std::size_t i = 0; i < features.size(); ++i)
        list[i] = &features[i];

    instance.reset (lilv_plugin_instantiate (plugin, sampleRate, list.data()));

    if (instance == nullptr)
        throw std::runtime_error (std::string (lilv_node_as_uri (lilv_plugin_get_uri (plugin))) +
                                  " makes no instance");

    worker = static_cast<const LV2_Worker_Interface*> (
        lilv_instance_get_extension_data (instance.get(), LV2_WORKER__interface));
}

void Lv2Plugin::connect (std::uint32_t index, std::map<std::string, float>& wanted,
                         float defaultValue)
{
    const auto* const port = lilv_plugin_get_port_by_index (plugin, index);
    const bool isInput = isA (port, LV2_CORE__InputPort);

    if (isA (port, LV2_CORE__AudioPort))
        return connectAudio (index, isInput);

    if (isA (port, LV2_ATOM__AtomPort))
        return connectSequence (index, isInput);

    const std::string symbol = lilv_node_as_string (lilv_port_get_symbol (plugin, port));
    const auto optional = world.uri (LV2_CORE__connectionOptional);

    if (isA (port, LV2_CORE__ControlPort))
    {
        // Meters too, though most are optional: hosts connect them, and a plug-in may save the metering without.
        const auto set = isInput ? wanted.extract (symbol) : decltype (wanted.extract (symbol)) {};
        controls.push_back (set.empty() ? defaultValue : set.mapped());
        lilv_instance_connect_port (instance.get(), index, &controls.back());
    }
    else if (lilv_port_has_property (plugin, port, optional.get()))
    {
        lilv_instance_connect_port (instance.get(), index, nullptr);
    }
    else
    {
        throw std::runtime_error ("port " + symbol + " is of a kind that this host does not know");
    }
}

void Lv2Plugin::connectAudio (std::uint32_t index, bool isInput)
{
    auto& ports = isInput ? audioIn : audioOut;
    ports.push_back (index);

    if (! isInput && ports.size() <= output.size())
        lilv_instance_connect_port (instance.get(), index, output[ports.size() - 1].data());
}

void Lv2Plugin::connectSequence (std::uint32_t index, bool isInput)
{
    const auto property = world.uri (LV2_RESIZE_PORT__minimumSize);
    const Node size (
        lilv_port_get (plugin, lilv_plugin_get_port_by_index (plugin, index), property.get()),
        lilv_node_free);
    const auto bytes = std::max (size == nullptr ? 0 : lilv_node_as_int (size.get()), sequenceSize);
    auto& buffer =
        (isInput ? received : sent)
            .emplace_back (static_cast<std::size_t> (bytes) / sizeof (std::uint64_t) + 1);

    if (isInput)
        *reinterpret_cast<LV2_Atom_Sequence*> (buffer.data()) = {
            { sizeof (LV2_Atom_Sequence_Body), world.numberOf (LV2_ATOM__Sequence) }, { 0, 0 }
        };
    else
        clearSent (buffer);

    lilv_instance_connect_port (instance.get(), index, buffer.data());
}

bool Lv2Plugin::isA (const LilvPort* port, const char* portClass) const
{
    const auto node = world.uri (portClass);
    return lilv_port_is_a (plugin, port, node.get());
}

void Lv2Plugin::clearSent (AtomBuffer& buffer) const
{
    // An output sequence comes as a chunk that says how much room there is.
    const auto room = buffer.size() * sizeof (std::uint64_t) - sizeof (LV2_Atom);
    *reinterpret_cast<LV2_Atom*> (buffer.data()) = { static_cast<std::uint32_t> (room), chunk };
}

void Lv2Plugin::betweenBlocks()
{
    for (auto& buffer : sent)
        clearSent (buffer);

    if (putOff.empty() || worker == nullptr)
        return;

    auto* const handle = lilv_instance_get_handle (instance.get());
    const auto respond = [] (LV2_Worker_Respond_Handle self, std::uint32_t size, const void* data)
    {
        const auto* const bytes = static_cast<const std::byte*> (data);
        static_cast<Lv2Plugin*> (self)->responses.emplace_back (bytes, bytes + size);
        return LV2_WORKER_SUCCESS;
    };

    for (; ! putOff.empty(); putOff.pop_front())
        worker->work (handle, respond, this, static_cast<std::uint32_t> (putOff.front().size()),
                      putOff.front().data());

    for (; ! responses.empty(); responses.pop_front())
        if (worker->work_response != nullptr)
            worker->work_response (handle, static_cast<std::uint32_t> (responses.front().size()),
                                   responses.front().data());

    if (worker->end_run != nullptr)
        worker->end_run (handle);
}

Contestant::Contestant (const Lv2World& world, ContestantSetting what, double rate,
                        std::uint32_t block)
    : setting (std::move (what)), blockSize (block)
{
    for (const auto& plugin : setting.chain)
    {
        plugins.push_back (std::make_unique<Lv2Plugin> (world, plugin, rate, block));

        if (plugins.size() > 1)
        {
            const auto& before = plugins[plugins.size() - 2]->output;
            plugins.back()->connectInput (before[0].data(), before[1].data());
        }
    }
}

Contestant::~Contestant() = default;

void Contestant::feed (const float* left, const float* right)
{
    plugins.front()->connectInput (left, right);

    for (const auto& plugin : plugins)
        plugin->betweenBlocks();
}

[[gnu::noinline]] void Contestant::run()
{
    for (const auto& plugin : plugins)
        plugin->run (blockSize);
}

const float* Contestant::getOutput (int channel) const
{
    return plugins.back()->output[static_cast<std::size_t> (channel)].data();
}
