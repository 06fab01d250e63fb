// SPDX-License-Identifier: AGPL-3.0-or-later
#include "lv2_instance.h"

#include <array>
#include <cstddef>
#include <iterator>
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
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
#include <stdexcept>
#include <utility>
#include <vector>

namespace
{

using State = std::unique_ptr<LilvState, decltype (&lilv_state_free)>;
using Instance = std::unique_ptr<LilvInstance, decltype (&lilv_instance_free)>;
using Text = std::unique_ptr<char, decltype (&lilv_free)>;

/** URIs as numbers, from 1. */
class Symbols
{
public:
    Symbols() = default;
    Symbols (const Symbols&) = delete;
    Symbols& operator= (const Symbols&) = delete;

    LV2_URID operator[] (const std::string& uri)
    {
        const auto [place, isNew] =
            numbers.try_emplace (uri, static_cast<LV2_URID> (numbers.size() + 1));

        if (isNew)
            uris.push_back (&place->first);

        return place->second;
    }

    const char* uri (LV2_URID number) const
    {
        return number > 0 && number <= uris.size() ? uris[number - 1]->c_str() : nullptr;
    }

    LV2_URID_Map map { this, [] (LV2_URID_Map_Handle self, const char* uri)
                       { return (*static_cast<Symbols*> (self))[uri]; } };
    LV2_URID_Unmap unmap { this, [] (LV2_URID_Unmap_Handle self, LV2_URID number)
                           { return static_cast<Symbols*> (self)->uri (number); } };

private:
    std::map<std::string, LV2_URID> numbers;
    std::vector<const std::string*> uris;  ///< into numbers, whose nodes stay in place
};

}  // namespace

struct Lv2Instance::Impl
{
    Impl (const Lv2Bundle& b, double sampleRate, std::int32_t maxBlock);

    /** The sequence that the last run wrote, event by event. */
    template <typename Callback>
    void forEachSent (Callback&& callback) const
    {
        const auto* sequence = reinterpret_cast<const LV2_Atom_Sequence*> (sent.data());

        LV2_ATOM_SEQUENCE_FOREACH (sequence, event)
        callback (event->body);
    }

    bool isSet (const LV2_Atom& atom) const
    {
        return atom.type == forge.Object &&
               reinterpret_cast<const LV2_Atom_Object&> (atom).body.otype == patchSet;
    }

    void beginSequence();

    const Lv2Bundle& bundle;
    Symbols symbols;
    LV2_Atom_Forge forge {};
    LV2_Atom_Forge_Frame frame {};

    alignas (8) std::array<std::uint8_t, 65536> toSend {};
    alignas (8) std::array<std::uint8_t, 65536> sent {};
    float latency = -1.0f, freeWheeling = 0.0f, enabled = 1.0f;

    const LV2_URID patchSet = symbols[LV2_PATCH__Set];
    const LV2_URID patchProperty = symbols[LV2_PATCH__property];
    const LV2_URID patchValue = symbols[LV2_PATCH__value];

    std::int32_t minBlock = 0, blockSize = 0, sequenceSize = 65536;
    float rate = 0.0f;
    std::array<LV2_Options_Option, 6> options {};
    std::array<LV2_Feature, 4> features {};
    std::array<const LV2_Feature*, 5> featureList {};

    Instance instance { nullptr, lilv_instance_free };  // last: it may use all the rest
};

Lv2Instance::Impl::Impl (const Lv2Bundle& b, double sampleRate, std::int32_t maxBlock)
    : bundle (b), blockSize (maxBlock), rate (static_cast<float> (sampleRate))
{
    lv2_atom_forge_init (&forge, &symbols.map);

    const auto integer = [&] (const char* key, const std::int32_t& value)
    {
        return LV2_Options_Option { LV2_OPTIONS_INSTANCE, 0,         symbols[key],
                                    sizeof value,         forge.Int, &value };
    };

    options = { integer (LV2_BUF_SIZE__minBlockLength, minBlock),
                integer (LV2_BUF_SIZE__maxBlockLength, blockSize),
                integer (LV2_BUF_SIZE__nominalBlockLength, blockSize),
                integer (LV2_BUF_SIZE__sequenceSize, sequenceSize),
                LV2_Options_Option { LV2_OPTIONS_INSTANCE, 0, symbols[LV2_PARAMETERS__sampleRate],
                                     sizeof rate, forge.Float, &rate },
                LV2_Options_Option {} };

    features = { LV2_Feature { LV2_URID__map, &symbols.map },
                 LV2_Feature { LV2_URID__unmap, &symbols.unmap },
                 LV2_Feature { LV2_OPTIONS__options, options.data() },
                 LV2_Feature { LV2_BUF_SIZE__boundedBlockLength, nullptr } };

    for (std::size_t i = 0; i < features.size(); ++i)
        featureList[i] = &features[i];

    instance.reset (lilv_plugin_instantiate (bundle.getPlugin(), sampleRate, featureList.data()));

    if (instance == nullptr)
        throw std::runtime_error ("the plug-in makes no instance");

    const auto connect =
        [&] (const char* type, const char* direction, const char* symbol, void* data)
    {
        for (const auto& [index, name] : bundle.getPorts (type, direction))
            if (name == symbol)
                return lilv_instance_connect_port (instance.get(), index, data);

        throw std::runtime_error (std::string ("no port ") + symbol);
    };

    connect ("AtomPort", "InputPort", "in", toSend.data());
    connect ("AtomPort", "OutputPort", "out", sent.data());
    connect ("ControlPort", "OutputPort", "latency", &latency);
    connect ("ControlPort", "InputPort", "freeWheeling", &freeWheeling);
    connect ("ControlPort", "InputPort", "enabled", &enabled);
    beginSequence();
    lilv_instance_activate (instance.get());
}

void Lv2Instance::Impl::beginSequence()
{
    lv2_atom_forge_set_buffer (&forge, toSend.data(), toSend.size());
    lv2_atom_forge_sequence_head (&forge, &frame, 0);
}

Lv2Instance::Lv2Instance (const Lv2Bundle& bundle, double sampleRate, std::int32_t maxBlock)
    : impl (std::make_unique<Impl> (bundle, sampleRate, maxBlock))
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
    lv2_atom_forge_object (&forge, &object, 0, impl->patchSet);
    lv2_atom_forge_key (&forge, impl->patchProperty);
    lv2_atom_forge_urid (&forge, impl->symbols[uri]);
    lv2_atom_forge_key (&forge, impl->patchValue);
    lv2_atom_forge_float (&forge, value);
    lv2_atom_forge_pop (&forge, &object);
}

void Lv2Instance::sendPosition (const Lv2Position& position)
{
    auto& forge = impl->forge;
    auto& symbols = impl->symbols;
    LV2_Atom_Forge_Frame object;
    lv2_atom_forge_frame_time (&forge, 0);
    lv2_atom_forge_object (&forge, &object, 0, symbols[LV2_TIME__Position]);
    lv2_atom_forge_key (&forge, symbols[LV2_TIME__frame]);
    lv2_atom_forge_long (&forge, position.frame);
    lv2_atom_forge_key (&forge, symbols[LV2_TIME__speed]);
    lv2_atom_forge_float (&forge, position.isRolling ? 1.0f : 0.0f);

    if (position.beatsPerMinute)
    {
        lv2_atom_forge_key (&forge, symbols[LV2_TIME__beatsPerMinute]);
        lv2_atom_forge_float (&forge, *position.beatsPerMinute);
    }

    if (position.beat)
    {
        lv2_atom_forge_key (&forge, symbols[LV2_TIME__beat]);
        lv2_atom_forge_double (&forge, *position.beat);
    }

    lv2_atom_forge_pop (&forge, &object);
}

void Lv2Instance::sendMidi (std::int64_t frame, std::span<const std::uint8_t> bytes)
{
    const auto size = static_cast<std::uint32_t> (bytes.size());
    lv2_atom_forge_frame_time (&impl->forge, frame);
    lv2_atom_forge_atom (&impl->forge, size, impl->symbols[LV2_MIDI__MidiEvent]);
    lv2_atom_forge_write (&impl->forge, bytes.data(), size);
}

void Lv2Instance::setEnabled (bool enabled)
{
    impl->enabled = enabled ? 1.0f : 0.0f;
}

void Lv2Instance::run (const float* inLeft, const float* inRight, float* outLeft, float* outRight,
                       std::uint32_t numSamples)
{
    auto* const instance = impl->instance.get();
    lv2_atom_forge_pop (&impl->forge, &impl->frame);

    const auto ins = impl->bundle.getPorts ("AudioPort", "InputPort");
    const auto outs = impl->bundle.getPorts ("AudioPort", "OutputPort");
    const auto connect = [&] (const auto& ports, const float* left, const float* right)
    {
        lilv_instance_connect_port (instance, ports.begin()->first, const_cast<float*> (left));
        lilv_instance_connect_port (instance, std::next (ports.begin())->first,
                                    const_cast<float*> (right));
    };

    connect (ins, inLeft, inRight);
    connect (outs, outLeft, outRight);

    // An output sequence comes as a chunk that says how much room there is.
    auto* const room = reinterpret_cast<LV2_Atom*> (impl->sent.data());
    *room = { static_cast<std::uint32_t> (impl->sent.size() - sizeof (LV2_Atom)),
              impl->forge.Chunk };
    lilv_instance_run (instance, numSamples);
    impl->beginSequence();
}

std::map<std::string, float> Lv2Instance::getSentParameters() const
{
    std::map<std::string, float> result;

    impl->forEachSent (
        [&] (const LV2_Atom& atom)
        {
            if (! impl->isSet (atom))
                return;

            const LV2_Atom* property = nullptr;
            const LV2_Atom* value = nullptr;
            lv2_atom_object_get (reinterpret_cast<const LV2_Atom_Object*> (&atom),
                                 impl->patchProperty, &property, impl->patchValue, &value, 0);

            if (property != nullptr && value != nullptr && value->type == impl->forge.Float)
                result[impl->symbols.uri (
                    reinterpret_cast<const LV2_Atom_URID*> (property)->body)] =
                    reinterpret_cast<const LV2_Atom_Float*> (value)->body;
        });

    return result;
}

int Lv2Instance::getNumOtherEvents() const
{
    int count = 0;
    impl->forEachSent ([&] (const LV2_Atom& atom) { count += impl->isSet (atom) ? 0 : 1; });
    return count;
}

std::string Lv2Instance::saveState() const
{
    const State state (lilv_state_new_from_instance (
                           impl->bundle.getPlugin(), impl->instance.get(), &impl->symbols.map,
                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                           LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE, impl->featureList.data()),
                       lilv_state_free);

    if (state == nullptr)
        return {};

    const Text text (lilv_state_to_string (impl->bundle.getWorld(), &impl->symbols.map,
                                           &impl->symbols.unmap, state.get(), "urn:session:state",
                                           nullptr),
                     lilv_free);
    return text == nullptr ? std::string() : text.get();
}

bool Lv2Instance::restoreState (const std::string& turtle)
{
    const State state (
        lilv_state_new_from_string (impl->bundle.getWorld(), &impl->symbols.map, turtle.c_str()),
        lilv_state_free);

    if (state == nullptr)
        return false;

    lilv_state_restore (state.get(), impl->instance.get(), nullptr, nullptr, 0,
                        impl->featureList.data());
    return true;
}

bool Lv2Instance::restoreProperty (const std::string& uri, const std::string& value)
{
    struct Property
    {
        LV2_URID key, type;
        const std::string& value;
    };

    const auto* state = static_cast<const LV2_State_Interface*> (
        lilv_instance_get_extension_data (impl->instance.get(), LV2_STATE__interface));

    if (state == nullptr)
        return false;

    const auto retrieve = [] (LV2_State_Handle handle, std::uint32_t key, std::size_t* size,
                              std::uint32_t* type, std::uint32_t* flags) -> const void*
    {
        const auto& property = *static_cast<const Property*> (handle);

        if (key != property.key)
            return nullptr;

        *size = property.value.size() + 1;
        *type = property.type;
        *flags = LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE;
        return property.value.c_str();
    };

    Property property { impl->symbols[uri], impl->forge.String, value };
    return state->restore (lilv_instance_get_handle (impl->instance.get()), retrieve, &property, 0,
                           impl->featureList.data()) == LV2_STATE_SUCCESS;
}
