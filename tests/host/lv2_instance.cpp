// SPDX-License-Identifier: AGPL-3.0-or-later
#include "lv2_instance.h"

#include <array>
#include <cstddef>
#include <lilv/lilv.h>
#include <lv2/atom/forge.h>
#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/core/lv2.h>
#include <lv2/midi/midi.h>
#include <lv2/options/options.h>
#include <lv2/parameters/parameters.h>
#include <lv2/patch/patch.h>
#include <lv2/state/state.h>
#include <lv2/time/time.h>
#include <lv2/urid/urid.h>
#include <map>
#include <stdexcept>

namespace
{

using World = std::unique_ptr<LilvWorld, decltype (&lilv_world_free)>;
using Node = std::unique_ptr<LilvNode, decltype (&lilv_node_free)>;
using State = std::unique_ptr<LilvState, decltype (&lilv_state_free)>;
using Instance = std::unique_ptr<LilvInstance, decltype (&lilv_instance_free)>;
using Text = std::unique_ptr<char, decltype (&lilv_free)>;

template <typename Pointer>
Pointer checked (Pointer pointer, const std::string& fault)
{
    if (pointer == nullptr)
        throw std::runtime_error (fault);

    return pointer;
}

}  // namespace

struct Lv2Instance::Impl
{
    Impl (const std::string& folder, double sampleRate, std::int32_t maxBlock);

    void connect (const char* symbol, void* data) const;

    void beginSequence()
    {
        lv2_atom_forge_set_buffer (&forge, toSend.data(), toSend.size());
        lv2_atom_forge_sequence_head (&forge, &frame, 0);
    }

    World world { lilv_world_new(), lilv_world_free };
    const LilvPlugin* plugin = nullptr;

    /** URIs as numbers, from 1. */
    std::map<std::string, LV2_URID> numbers;
    LV2_URID_Map map { &numbers, [] (LV2_URID_Map_Handle handle, const char* uri)
                       {
                           auto& known = *static_cast<std::map<std::string, LV2_URID>*> (handle);
                           const auto next = static_cast<LV2_URID> (known.size() + 1);
                           return known.try_emplace (uri, next).first->second;
                       } };
    LV2_URID_Unmap unmap { &numbers, [] (LV2_URID_Unmap_Handle handle, LV2_URID wanted)
                           {
                               const char* found = nullptr;

                               for (const auto& [uri, number] :
                                    *static_cast<std::map<std::string, LV2_URID>*> (handle))
                                   if (number == wanted)
                                       found = uri.c_str();

                               return found;
                           } };

    LV2_URID operator[] (const char* uri) const { return map.map (map.handle, uri); }

    LV2_Atom_Forge forge {};
    LV2_Atom_Forge_Frame frame {};
    alignas (8) std::array<std::uint8_t, 65536> toSend {}, sent {};
    float latency = -1.0f, freeWheeling = 0.0f, enabled = 1.0f;

    std::int32_t minBlock = 0, blockSize = 0, sequenceSize = 65536;
    float rate = 0.0f;
    std::array<LV2_Options_Option, 6> options {};
    std::array<LV2_Feature, 4> features {};
    std::array<const LV2_Feature*, 5> featureList {};

    Instance instance { nullptr, lilv_instance_free };  // last: it may use all the rest
};

Lv2Instance::Impl::Impl (const std::string& folder, double sampleRate, std::int32_t maxBlock)
    : blockSize (maxBlock), rate (static_cast<float> (sampleRate))
{
    const Node path (lilv_new_file_uri (world.get(), nullptr, (folder + "/").c_str()),
                     lilv_node_free);
    lilv_world_load_bundle (world.get(), path.get());
    const auto* const plugins = lilv_world_get_all_plugins (world.get());
    plugin =
        checked (lilv_plugins_get (plugins, lilv_plugins_begin (plugins)), "no plug-in " + folder);
    lv2_atom_forge_init (&forge, &map);

    const auto option = [&] (const char* key, LV2_URID type, const void* value)
    { return LV2_Options_Option { LV2_OPTIONS_INSTANCE, 0, (*this)[key], 4, type, value }; };

    options = { option (LV2_BUF_SIZE__minBlockLength, forge.Int, &minBlock),
                option (LV2_BUF_SIZE__maxBlockLength, forge.Int, &blockSize),
                option (LV2_BUF_SIZE__nominalBlockLength, forge.Int, &blockSize),
                option (LV2_BUF_SIZE__sequenceSize, forge.Int, &sequenceSize),
                option (LV2_PARAMETERS__sampleRate, forge.Float, &rate),
                LV2_Options_Option {} };

    features = { LV2_Feature { LV2_URID__map, &map }, LV2_Feature { LV2_URID__unmap, &unmap },
                 LV2_Feature { LV2_OPTIONS__options, options.data() },
                 LV2_Feature { LV2_BUF_SIZE__boundedBlockLength, nullptr } };

    for (std::size_t i = 0; i < features.size(); ++i)
        featureList[i] = &features[i];

    instance.reset (checked (lilv_plugin_instantiate (plugin, sampleRate, featureList.data()),
                             "the plug-in makes no instance"));
    connect ("in", toSend.data());
    connect ("out", sent.data());
    connect ("latency", &latency);
    connect ("freeWheeling", &freeWheeling);
    connect ("enabled", &enabled);
    beginSequence();
    lilv_instance_activate (instance.get());
}

void Lv2Instance::Impl::connect (const char* symbol, void* data) const
{
    const Node name (lilv_new_string (world.get(), symbol), lilv_node_free);
    const auto* const port = checked (lilv_plugin_get_port_by_symbol (plugin, name.get()),
                                      std::string ("no port ") + symbol);
    lilv_instance_connect_port (instance.get(), lilv_port_get_index (plugin, port), data);
}

Lv2Instance::Lv2Instance (const std::string& folder, double sampleRate, std::int32_t maxBlock)
    : impl (std::make_unique<Impl> (folder, sampleRate, maxBlock))
{
}

Lv2Instance::~Lv2Instance()
{
    lilv_instance_deactivate (impl->instance.get());
}

void Lv2Instance::sendParameter (const std::string& uri, float value)
{
    auto& forge = impl->forge;
    LV2_Atom_Forge_Frame object;
    lv2_atom_forge_frame_time (&forge, 0);
    lv2_atom_forge_object (&forge, &object, 0, (*impl)[LV2_PATCH__Set]);
    lv2_atom_forge_key (&forge, (*impl)[LV2_PATCH__property]);
    lv2_atom_forge_urid (&forge, (*impl)[uri.c_str()]);
    lv2_atom_forge_key (&forge, (*impl)[LV2_PATCH__value]);
    lv2_atom_forge_float (&forge, value);
    lv2_atom_forge_pop (&forge, &object);
}

void Lv2Instance::sendPosition (const Lv2Position& position)
{
    auto& forge = impl->forge;
    LV2_Atom_Forge_Frame object;
    lv2_atom_forge_frame_time (&forge, 0);
    lv2_atom_forge_object (&forge, &object, 0, (*impl)[LV2_TIME__Position]);
    lv2_atom_forge_key (&forge, (*impl)[LV2_TIME__frame]);
    lv2_atom_forge_long (&forge, position.frame);
    lv2_atom_forge_key (&forge, (*impl)[LV2_TIME__speed]);
    lv2_atom_forge_float (&forge, position.isRolling ? 1.0f : 0.0f);

    if (position.beatsPerMinute > 0.0f)
    {
        lv2_atom_forge_key (&forge, (*impl)[LV2_TIME__beatsPerMinute]);
        lv2_atom_forge_float (&forge, position.beatsPerMinute);
    }

    if (position.beat >= 0.0)
    {
        lv2_atom_forge_key (&forge, (*impl)[LV2_TIME__beat]);
        lv2_atom_forge_double (&forge, position.beat);
    }

    lv2_atom_forge_pop (&forge, &object);
}

void Lv2Instance::sendMidi (std::int64_t frame, std::span<const std::uint8_t> bytes)
{
    const auto size = static_cast<std::uint32_t> (bytes.size());
    lv2_atom_forge_frame_time (&impl->forge, frame);
    lv2_atom_forge_atom (&impl->forge, size, (*impl)[LV2_MIDI__MidiEvent]);
    lv2_atom_forge_write (&impl->forge, bytes.data(), size);
}

void Lv2Instance::setEnabled (bool enabled)
{
    impl->enabled = enabled ? 1.0f : 0.0f;
}

int Lv2Instance::run (float* left, float* right, std::uint32_t numSamples)
{
    lv2_atom_forge_pop (&impl->forge, &impl->frame);

    // The standard allows a host to connect both sides to the same memory.
    impl->connect ("audio_in_1", left);
    impl->connect ("audio_in_2", right);
    impl->connect ("audio_out_1", left);
    impl->connect ("audio_out_2", right);

    // An output sequence comes as a chunk that says how much room there is.
    auto* const room = reinterpret_cast<LV2_Atom*> (impl->sent.data());
    *room = { static_cast<std::uint32_t> (impl->sent.size() - sizeof (LV2_Atom)),
              impl->forge.Chunk };
    lilv_instance_run (impl->instance.get(), numSamples);
    impl->beginSequence();

    const auto* const sequence = reinterpret_cast<const LV2_Atom_Sequence*> (impl->sent.data());
    int count = 0;

    LV2_ATOM_SEQUENCE_FOREACH (sequence, event)
    count += event->body.type == (*impl)[LV2_MIDI__MidiEvent] ? 1 : 0;

    return count;
}

std::string Lv2Instance::saveState() const
{
    const State state (
        checked (lilv_state_new_from_instance (impl->plugin, impl->instance.get(), &impl->map,
                                               nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                               LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE,
                                               impl->featureList.data()),
                 "no state"),
        lilv_state_free);
    const Text text (checked (lilv_state_to_string (impl->world.get(), &impl->map, &impl->unmap,
                                                    state.get(), "urn:session:state", nullptr),
                              "no text"),
                     lilv_free);
    return text.get();
}

void Lv2Instance::restoreState (const std::string& turtle)
{
    const State state (
        checked (lilv_state_new_from_string (impl->world.get(), &impl->map, turtle.c_str()),
                 "no state in " + turtle),
        lilv_state_free);
    lilv_state_restore (state.get(), impl->instance.get(), nullptr, nullptr, 0,
                        impl->featureList.data());
}
