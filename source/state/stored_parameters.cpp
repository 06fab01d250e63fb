// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/stored_parameters.h"

#include "state/parameter_state.h"

StoredParameters::StoredParameters (juce::AudioProcessorValueTreeState& storeToUse,
                                    juce::UndoManager& historyToClear)
    : store (storeToUse), history (historyToClear), tree (store.copyState())
{
    link->target = this;
    store.state.addListener (this);
}

StoredParameters::~StoredParameters()
{
    const juce::ScopedLock sl (link->lock);
    link->target = nullptr;
    store.state.removeListener (this);
}

// --- loading and saving ----------------------------------------------------------------------

void StoredParameters::load (const juce::XmlElement& parameters)
{
    const auto fresh = completeParameters (parameters, store, presentTree());

    if (juce::MessageManager::existsAndIsCurrentThread())
    {
        mustClear = false;
        store.replaceState (fresh);  // clears the history; valueTreeRedirected follows
        return;
    }

    setParameters (fresh);

    {
        const juce::ScopedLock sl (lock);
        tree = fresh;
        takePresentValues();
    }

    askForClearing();
}

juce::ValueTree StoredParameters::save()
{
    if (juce::MessageManager::existsAndIsCurrentThread())
        store.copyState();  // flushes: what has changed so far is one step of the history

    auto copy = presentTree();
    replaceIllegalValues (copy, store);
    return copy;
}

juce::ValueTree StoredParameters::presentTree()
{
    const juce::ScopedLock sl (lock);
    takePresentValues();
    return tree.createCopy();
}

/** Writes each value that differs from its text into the tree, as the store does when it
    flushes. Caller holds lock. */
void StoredParameters::takePresentValues()
{
    for (auto param : tree)
        if (const auto* value = store.getRawParameterValue (param[kParamId].toString());
            value != nullptr && param.hasType (kParamType) &&
            ! juce::approximatelyEqual (static_cast<float> (param[kParamValue]), value->load()))
            param.setProperty (kParamValue, value->load(), nullptr);
}

/** Sets each parameter as the store does when its tree is replaced. Without lock: the host hears
    of it at once. */
void StoredParameters::setParameters (const juce::ValueTree& values)
{
    for (const auto& param : values)
    {
        const auto id = param[kParamId].toString();
        auto* const parameter = store.getParameter (id);

        if (parameter == nullptr || ! param.hasType (kParamType))
            continue;

        const auto value = static_cast<float> (param[kParamValue]);

        if (! juce::approximatelyEqual (value, store.getRawParameterValue (id)->load()))
            parameter->setValueNotifyingHost (parameter->convertTo0to1 (value));
    }
}

// --- the store's tree ------------------------------------------------------------------------

void StoredParameters::valueTreePropertyChanged (juce::ValueTree& param,
                                                 const juce::Identifier& name)
{
    if (name != kParamValue || ! param.hasType (kParamType))
        return;

    const juce::ScopedLock sl (lock);
    auto mine = tree.getChildWithProperty (kParamId, param[kParamId]);

    // A text stays until the parameter differs from it.
    if (mine.hasType (kParamType) && ! juce::approximatelyEqual (static_cast<float> (mine[name]),
                                                                 static_cast<float> (param[name])))
        mine.setProperty (name, param[name], nullptr);
}

void StoredParameters::valueTreeRedirected (juce::ValueTree& replaced)
{
    const juce::ScopedLock sl (lock);
    tree = replaced.createCopy();
}

// --- the history -----------------------------------------------------------------------------

void StoredParameters::askForClearing()
{
    mustClear = true;
    juce::MessageManager::callAsync (
        [held = link]
        {
            const juce::ScopedLock sl (held->lock);

            if (held->target != nullptr)
                held->target->clearHistoryIfAsked();
        });
}

void StoredParameters::clearHistoryIfAsked()
{
    JUCE_ASSERT_MESSAGE_THREAD

    if (! mustClear.exchange (false))
        return;

    // Flushes: what was loaded becomes a step of the history here, and goes with it.
    store.copyState();
    history.clearUndoHistory();
}
