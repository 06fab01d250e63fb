// SPDX-License-Identifier: AGPL-3.0-or-later

// The build renames the entries of JUCE's client, here too. These are the bundle's own.
#undef lv2_descriptor
#undef lv2ui_descriptor

#include "processor/Lv2AudioProcessor.h"
#include "processor/lv2_song_events.h"

#include <cstring>
#include <memory>
#include <vector>

extern "C"
{
    const LV2_Descriptor* velkor_client_lv2_descriptor (std::uint32_t index);
    const LV2UI_Descriptor* velkor_client_lv2ui_descriptor (std::uint32_t index);
}

namespace
{

/** A host's handle: JUCE's instance, and what reads the song's position past it. */
struct Instance
{
    LV2_Handle client = nullptr;
    Lv2AudioProcessor* processor = nullptr;  ///< the client's
    Lv2SongEvents events;
    std::uint32_t controlPort = 0, transportPort = 0;
    const LV2_Atom_Sequence* control = nullptr;    ///< the host's, and so the next
    const LV2_Atom_Sequence* transport = nullptr;  ///< nullptr if not connected
};

const LV2_Descriptor& client()
{
    return *velkor_client_lv2_descriptor (0);
}

Instance& instanceOf (LV2_Handle handle)
{
    return *static_cast<Instance*> (handle);
}

template <typename Data>
Data findFeature (const LV2_Feature* const* features, const char* uri)
{
    for (; *features != nullptr; ++features)
        if (std::strcmp ((*features)->URI, uri) == 0)
            return static_cast<Data> ((*features)->data);

    return nullptr;
}

LV2_Handle instantiate (const LV2_Descriptor*, double sampleRate, const char* bundle,
                        const LV2_Feature* const* features)
{
    const auto* const map = findFeature<const LV2_URID_Map*> (features, LV2_URID__map);

    if (map == nullptr)
        return nullptr;

    const auto handle = client().instantiate (&client(), sampleRate, bundle, features);
    auto* const processor = Lv2AudioProcessor::takeLastMade();

    if (handle == nullptr)
        return nullptr;

    if (processor == nullptr)  // made on another thread, as no JUCE known today does
    {
        client().cleanup (handle);
        return nullptr;
    }

    // JUCE numbers the audio ports first, then the control port and four more. The Turtle adds one.
    auto instance =
        std::make_unique<Instance> (Instance { handle, processor, Lv2SongEvents (*map) });
    instance->controlPort = static_cast<std::uint32_t> (processor->getTotalNumInputChannels() +
                                                        processor->getTotalNumOutputChannels());
    instance->transportPort = instance->controlPort + 5;
    return instance.release();
}

void connectPort (LV2_Handle handle, std::uint32_t port, void* data)
{
    auto& instance = instanceOf (handle);

    if (port == instance.transportPort)
    {
        instance.transport = static_cast<const LV2_Atom_Sequence*> (data);
        return;
    }

    if (port == instance.controlPort)
        instance.control = static_cast<const LV2_Atom_Sequence*> (data);

    client().connect_port (instance.client, port, data);
}

void run (LV2_Handle handle, std::uint32_t numSamples)
{
    auto& instance = instanceOf (handle);
    instance.events.clear();
    instance.events.add (instance.control);
    instance.events.add (instance.transport);
    instance.processor->beginRun (instance.events.get());
    client().run (instance.client, numSamples);
    instance.processor->endRun();
}

void cleanup (LV2_Handle handle)
{
    const std::unique_ptr<Instance> instance (&instanceOf (handle));
    client().cleanup (instance->client);
}

const LV2_State_Interface& clientState()
{
    return *static_cast<const LV2_State_Interface*> (
        client().extension_data (LV2_STATE__interface));
}

const void* extensionData (const char* uri)
{
    static const LV2_State_Interface state {
        [] (LV2_Handle handle, LV2_State_Store_Function store, LV2_State_Handle target,
            std::uint32_t flags, const LV2_Feature* const* features)
        { return clientState().save (instanceOf (handle).client, store, target, flags, features); },
        [] (LV2_Handle handle, LV2_State_Retrieve_Function retrieve, LV2_State_Handle source,
            std::uint32_t flags, const LV2_Feature* const* features) {
            return clientState().restore (instanceOf (handle).client, retrieve, source, flags,
                                          features);
        }
    };

    return std::strcmp (uri, LV2_STATE__interface) == 0 ? &state : client().extension_data (uri);
}

/** The editor's client takes its own instance from the features, which the host fills with ours. */
LV2UI_Handle instantiateUi (const LV2UI_Descriptor*, const char* plugin, const char* bundle,
                            LV2UI_Write_Function write, LV2UI_Controller controller,
                            LV2UI_Widget* widget, const LV2_Feature* const* features)
{
    const auto& ui = *velkor_client_lv2ui_descriptor (0);
    const auto handle = findFeature<LV2_Handle> (features, LV2_INSTANCE_ACCESS_URI);

    if (handle == nullptr)
        return nullptr;

    const LV2_Feature access { LV2_INSTANCE_ACCESS_URI, instanceOf (handle).client };
    std::vector<const LV2_Feature*> forClient { &access };

    for (; *features != nullptr; ++features)
        if (std::strcmp ((*features)->URI, LV2_INSTANCE_ACCESS_URI) != 0)
            forClient.push_back (*features);

    forClient.push_back (nullptr);
    return ui.instantiate (&ui, plugin, bundle, write, controller, widget, forClient.data());
}

}  // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor (std::uint32_t index)
{
    if (index != 0)
        return nullptr;

    static const LV2_Descriptor descriptor {
        client().URI, instantiate,
        connectPort,  [] (LV2_Handle handle) { client().activate (instanceOf (handle).client); },
        run,          [] (LV2_Handle handle) { client().deactivate (instanceOf (handle).client); },
        cleanup,      extensionData,
    };
    return &descriptor;
}

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor (std::uint32_t index)
{
    if (index != 0)
        return nullptr;

    static const LV2UI_Descriptor descriptor = []
    {
        auto ours = *velkor_client_lv2ui_descriptor (0);
        ours.instantiate = instantiateUi;
        return ours;
    }();
    return &descriptor;
}
