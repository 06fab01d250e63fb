// SPDX-License-Identifier: AGPL-3.0-or-later
#include "lv2_instance.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <deque>
#include <lilv/lilv.h>
#include <lv2/atom/forge.h>
#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/core/lv2.h>
#include <lv2/midi/midi.h>
#include <lv2/options/options.h>
#include <lv2/patch/patch.h>
#include <lv2/state/state.h>
#include <lv2/time/time.h>
#include <lv2/urid/urid.h>
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

    LV2_URID operator[] (const std::string& uri)
    {
        const auto place = std::find (uris.begin(), uris.end(), uri);
        const auto number = static_cast<LV2_URID> (place - uris.begin() + 1);

        if (place == uris.end())
            uris.push_back (uri);

        return number;
    }

    /** The atom sequence of an input port for the next run. */
    struct Outlet
    {
        LV2_Atom_Forge forge {};
        LV2_Atom_Forge_Frame sequence {}, object {};
        alignas (8) std::array<std::uint8_t, 65536> bytes {};

        void beginSequence();
    };

    void connect (const char* symbol, void* data) const;
    LV2_Atom_Forge* beginObject (Outlet& outlet, std::int64_t frame, const char* type);
    void key (Outlet& outlet, const char* uri) { lv2_atom_forge_key (&outlet.forge, (*this)[uri]); }

    World world { lilv_world_new(), lilv_world_free };
    const LilvPlugin* plugin = nullptr;

    std::deque<std::string> uris;  ///< as numbers they count from 1
    LV2_URID_Map map { this, [] (LV2_URID_Map_Handle self, const char* uri)
                       { return (*static_cast<Impl*> (self))[uri]; } };
    LV2_URID_Unmap unmap { this, [] (LV2_URID_Unmap_Handle self, LV2_URID number)
                           { return static_cast<Impl*> (self)->uris.at (number - 1).c_str(); } };

    Outlet control, transport;
    alignas (8) std::array<std::uint8_t, 65536> sent {};
    float latency = -1.0f, freeWheeling = 0.0f;

    std::int32_t blockSize = 0;
    std::array<LV2_Options_Option, 2> options {};
    std::array<LV2_Feature, 4> features {};
    std::array<const LV2_Feature*, 5> featureList {};

    Instance instance { nullptr, lilv_instance_free };  // last: it may use all the rest
};

Lv2Instance::Impl::Impl (const std::string& folder, double sampleRate, std::int32_t maxBlock)
    : blockSize (maxBlock)
{
    const Node path (lilv_new_file_uri (world.get(), nullptr, (folder + "/").c_str()),
                     lilv_node_free);
    lilv_world_load_bundle (world.get(), path.get());
    const auto* const plugins = lilv_world_get_all_plugins (world.get());
    plugin =
        checked (lilv_plugins_get (plugins, lilv_plugins_begin (plugins)), "no plug-in " + folder);

    for (auto* const outlet : { &control, &transport })
    {
        lv2_atom_forge_init (&outlet->forge, &map);
        outlet->beginSequence();
    }

    options[0] = { LV2_OPTIONS_INSTANCE, 0,         (*this)[LV2_BUF_SIZE__maxBlockLength], 4,
                   control.forge.Int,    &blockSize };
    features = { LV2_Feature { LV2_URID__map, &map }, LV2_Feature { LV2_URID__unmap, &unmap },
                 LV2_Feature { LV2_OPTIONS__options, options.data() },
                 LV2_Feature { LV2_BUF_SIZE__boundedBlockLength, nullptr } };

    for (std::size_t i = 0; i < features.size(); ++i)
        featureList[i] = &features[i];

    instance.reset (checked (lilv_plugin_instantiate (plugin, sampleRate, featureList.data()),
                             "the plug-in makes no instance"));
    connect ("in", control.bytes.data());
    connect ("transport", transport.bytes.data());
    connect ("out", sent.data());
    connect ("latency", &latency);
    connect ("freeWheeling", &freeWheeling);
}

void Lv2Instance::Impl::connect (const char* symbol, void* data) const
{
    const Node name (lilv_new_string (world.get(), symbol), lilv_node_free);
    const auto* const port = checked (lilv_plugin_get_port_by_symbol (plugin, name.get()),
                                      std::string ("no port ") + symbol);
    lilv_instance_connect_port (instance.get(), lilv_port_get_index (plugin, port), data);
}

void Lv2Instance::Impl::Outlet::beginSequence()
{
    lv2_atom_forge_set_buffer (&forge, bytes.data(), bytes.size());
    lv2_atom_forge_sequence_head (&forge, &sequence, 0);
}

LV2_Atom_Forge* Lv2Instance::Impl::beginObject (Outlet& outlet, std::int64_t frame,
                                                const char* type)
{
    lv2_atom_forge_frame_time (&outlet.forge, frame);
    lv2_atom_forge_object (&outlet.forge, &outlet.object, 0, (*this)[type]);
    return &outlet.forge;
}

Lv2Instance::Lv2Instance (const std::string& folder, double sampleRate, std::int32_t maxBlock)
    : impl (std::make_unique<Impl> (folder, sampleRate, maxBlock))
{
    impl->connect ("enabled", &enabled);
    lilv_instance_activate (impl->instance.get());
}

Lv2Instance::~Lv2Instance()
{
    lilv_instance_deactivate (impl->instance.get());
}

void Lv2Instance::sendParameter (const std::string& uri, float value)
{
    auto& outlet = impl->control;
    auto* const forge = impl->beginObject (outlet, 0, LV2_PATCH__Set);
    impl->key (outlet, LV2_PATCH__property);
    lv2_atom_forge_urid (forge, (*impl)[uri]);
    impl->key (outlet, LV2_PATCH__value);
    lv2_atom_forge_float (forge, value);
    lv2_atom_forge_pop (forge, &outlet.object);
}

void Lv2Instance::sendMidi (std::int64_t frame, std::span<const std::uint8_t> bytes)
{
    const auto size = static_cast<std::uint32_t> (bytes.size());
    auto* const forge = &impl->control.forge;
    lv2_atom_forge_frame_time (forge, frame);
    lv2_atom_forge_atom (forge, size, (*impl)[LV2_MIDI__MidiEvent]);
    lv2_atom_forge_write (forge, bytes.data(), size);
}

void Lv2Instance::sendPosition (std::int64_t offset, const Lv2Position& position)
{
    auto& outlet = hasMidi ? impl->control : impl->transport;
    auto* const forge = impl->beginObject (outlet, offset, LV2_TIME__Position);
    impl->key (outlet, LV2_TIME__frame);
    lv2_atom_forge_long (forge, position.frame);
    impl->key (outlet, LV2_TIME__speed);
    lv2_atom_forge_float (forge, position.speed);
    impl->key (outlet, LV2_TIME__barBeat);
    lv2_atom_forge_float (forge, position.barBeat);
    impl->key (outlet, LV2_TIME__bar);
    lv2_atom_forge_long (forge, position.bar);
    impl->key (outlet, LV2_TIME__beatUnit);
    lv2_atom_forge_int (forge, position.beatUnit);
    impl->key (outlet, LV2_TIME__beatsPerBar);
    lv2_atom_forge_float (forge, position.beatsPerBar);
    impl->key (outlet, LV2_TIME__beatsPerMinute);
    lv2_atom_forge_float (forge, position.tempo);
    lv2_atom_forge_pop (forge, &outlet.object);
}

int Lv2Instance::run (float* left, float* right, std::uint32_t numSamples)
{
    for (auto* const outlet : { &impl->control, &impl->transport })
        lv2_atom_forge_pop (&outlet->forge, &outlet->sequence);

    // The standard allows a host to connect both sides to the same memory.
    for (const auto* symbol : { "audio_in_1", "audio_out_1" })
        impl->connect (symbol, left);

    for (const auto* symbol : { "audio_in_2", "audio_out_2" })
        impl->connect (symbol, right);

    // An output sequence comes as a chunk that says how much room there is.
    auto* const room = reinterpret_cast<LV2_Atom*> (impl->sent.data());
    *room = { static_cast<std::uint32_t> (impl->sent.size() - sizeof (LV2_Atom)),
              impl->control.forge.Chunk };
    lilv_instance_run (impl->instance.get(), numSamples);

    for (auto* const outlet : { &impl->control, &impl->transport })
        outlet->beginSequence();

    const auto* const sent = reinterpret_cast<const LV2_Atom_Sequence*> (impl->sent.data());
    int count = 0;

    LV2_ATOM_SEQUENCE_FOREACH (sent, event)
    {
        const auto* const object = reinterpret_cast<const LV2_Atom_Object*> (&event->body);
        count += event->body.type == (*impl)[LV2_MIDI__MidiEvent] ? 1 : 0;
        numStateChanges += event->body.type == impl->control.forge.Object &&
                                   object->body.otype == (*impl)[LV2_STATE__StateChanged]
                               ? 1
                               : 0;
    }

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
