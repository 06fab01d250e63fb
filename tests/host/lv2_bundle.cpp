// SPDX-License-Identifier: AGPL-3.0-or-later
#include "lv2_bundle.h"

#include <algorithm>
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/patch/patch.h>
#include <stdexcept>

namespace
{

using World = std::unique_ptr<LilvWorld, decltype (&lilv_world_free)>;
using Node = std::unique_ptr<LilvNode, decltype (&lilv_node_free)>;
using Nodes = std::unique_ptr<LilvNodes, decltype (&lilv_nodes_free)>;

constexpr const char* kRdfs = "http://www.w3.org/2000/01/rdf-schema#";
constexpr const char* kRdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";

Node owned (LilvNode* node)
{
    return { node, lilv_node_free };
}

std::string textOf (const LilvNode* node)
{
    return node == nullptr ? std::string() : lilv_node_as_string (node);
}

}  // namespace

struct Lv2Bundle::Impl
{
    Node uri (const std::string& text) const
    {
        return owned (lilv_new_uri (world.get(), text.c_str()));
    }

    Node uri (const char* vocabulary, const char* name) const
    {
        return uri (std::string (vocabulary) + name);
    }

    Node get (const LilvNode* subject, const Node& predicate) const
    {
        return owned (lilv_world_get (world.get(), subject, predicate.get(), nullptr));
    }

    Nodes find (const LilvNode* subject, const Node& predicate) const
    {
        return { lilv_world_find_nodes (world.get(), subject, predicate.get(), nullptr),
                 lilv_nodes_free };
    }

    float number (const LilvNode* subject, const char* name) const
    {
        const auto node = get (subject, uri (LV2_CORE_PREFIX, name));

        if (node == nullptr)
            throw std::runtime_error (textOf (subject) + " has no lv2:" + name);

        return lilv_node_as_float (node.get());
    }

    Lv2Parameter parameter (const LilvNode* node) const
    {
        Lv2Parameter result;
        result.uri = textOf (node);
        result.minimum = number (node, "minimum");
        result.maximum = number (node, "maximum");
        result.defaultValue = number (node, "default");
        const auto points = find (node, uri (LV2_CORE_PREFIX, "scalePoint"));

        LILV_FOREACH (nodes, i, points.get())
        {
            const auto* point = lilv_nodes_get (points.get(), i);
            const auto value = get (point, uri (kRdf, "value"));
            result.scalePoints[lilv_node_as_float (value.get())] =
                textOf (get (point, uri (kRdfs, "label")).get());
        }

        return result;
    }

    World world { lilv_world_new(), lilv_world_free };
    const LilvPlugin* plugin = nullptr;
};

Lv2Bundle::Lv2Bundle (const std::string& folder) : impl (std::make_unique<Impl>())
{
    auto* const world = impl->world.get();
    const auto path = owned (lilv_new_file_uri (world, nullptr, (folder + "/").c_str()));
    lilv_world_load_bundle (world, path.get());
    const auto* plugins = lilv_world_get_all_plugins (world);

    if (lilv_plugins_size (plugins) != 1)
        throw std::runtime_error (std::to_string (lilv_plugins_size (plugins)) + " plug-ins in " +
                                  folder);

    impl->plugin = lilv_plugins_get (plugins, lilv_plugins_begin (plugins));
}

Lv2Bundle::~Lv2Bundle() = default;

std::string Lv2Bundle::getUri() const
{
    return textOf (lilv_plugin_get_uri (impl->plugin));
}

std::string Lv2Bundle::getName() const
{
    return textOf (owned (lilv_plugin_get_name (impl->plugin)).get());
}

std::string Lv2Bundle::getAuthor() const
{
    return textOf (owned (lilv_plugin_get_author_name (impl->plugin)).get());
}

std::vector<std::string> Lv2Bundle::getRequiredFeatures() const
{
    const Nodes features (lilv_plugin_get_required_features (impl->plugin), lilv_nodes_free);
    std::vector<std::string> result;

    LILV_FOREACH (nodes, i, features.get())
    result.push_back (textOf (lilv_nodes_get (features.get(), i)));

    std::sort (result.begin(), result.end());
    return result;
}

std::map<std::uint32_t, std::string> Lv2Bundle::getPorts (const char* type,
                                                          const char* direction) const
{
    const auto typeNode = impl->uri (LV2_CORE_PREFIX, type);
    const auto atomNode = impl->uri (LV2_ATOM_PREFIX, type);
    const auto directionNode = impl->uri (LV2_CORE_PREFIX, direction);
    std::map<std::uint32_t, std::string> result;

    for (std::uint32_t i = 0; i < lilv_plugin_get_num_ports (impl->plugin); ++i)
    {
        const auto* port = lilv_plugin_get_port_by_index (impl->plugin, i);

        if ((lilv_port_is_a (impl->plugin, port, typeNode.get()) ||
             lilv_port_is_a (impl->plugin, port, atomNode.get())) &&
            lilv_port_is_a (impl->plugin, port, directionNode.get()))
            result[i] = textOf (lilv_port_get_symbol (impl->plugin, port));
    }

    return result;
}

std::map<std::string, Lv2Parameter> Lv2Bundle::getParameters() const
{
    const auto* plugin = lilv_plugin_get_uri (impl->plugin);
    const auto label = impl->uri (kRdfs, "label");
    std::map<std::string, Lv2Parameter> result;
    static_cast<void> (getName());  // makes lilv read the files that the manifest refers to

    for (const auto access : { &Lv2Parameter::writable, &Lv2Parameter::readable })
    {
        const auto nodes = impl->find (plugin, impl->uri (access == &Lv2Parameter::writable
                                                              ? LV2_PATCH__writable
                                                              : LV2_PATCH__readable));

        LILV_FOREACH (nodes, i, nodes.get())
        {
            const auto* node = lilv_nodes_get (nodes.get(), i);
            const auto name = textOf (impl->get (node, label).get());

            if (! result.contains (name))
                result[name] = impl->parameter (node);

            result[name].*access = true;
        }
    }

    return result;
}

const LilvPluginImpl* Lv2Bundle::getPlugin() const
{
    return impl->plugin;
}

LilvWorldImpl* Lv2Bundle::getWorld() const
{
    return impl->world.get();
}
