// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <atomic>

/** How far a download is: written by its thread, read by the message thread. */
class zb_PresetManagerDownloadListener : public juce::URL::DownloadTaskListener
{
public:
    void finished (juce::URL::DownloadTask*, bool) override { isFinished = true; }

    void progress (juce::URL::DownloadTask*, juce::int64 bytesDownloaded,
                   juce::int64 totalLength) override
    {
        fraction = static_cast<float> (bytesDownloaded) / static_cast<float> (totalLength);
    }

    std::atomic<float> fraction { 0.0f };  ///< 0 to 1; no useful value where the length is unknown
    std::atomic<bool> isFinished { false };  ///< the task has ended, well or badly
};
