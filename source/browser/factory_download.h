// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

class zb_PresetManagerDownloadListener;

/** Fetches a file over the network. A thread does all that may wait for the network, connecting
    included. Nobody waits for that thread. Message thread. */
class FactoryDownload
{
public:
    /** Begins at once: deletes the target, opens it and connects. */
    FactoryDownload (const juce::URL& url, const juce::File& targetToWrite,
                     std::shared_ptr<zb_PresetManagerDownloadListener> listenerToCall);

    /** Gives up what is still running, and deletes the target. */
    ~FactoryDownload();

    /** Whether a server has answered, if only to refuse. From then on the listener is called. */
    bool isConnected() const;

    /** Whether no server has answered and none will. The listener is not called. */
    bool hasNoServer() const;

private:
    struct Transfer;

    const juce::File target;
    const std::shared_ptr<Transfer> transfer;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (FactoryDownload)
};
