// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_import.h"
#include "browser/zb_PresetManager.h"
#include "processor/zb_AudioProcessor.h"

// The download of factory content, for products that offer it.

juce::File zb_PresetManager::downloadTarget() const
{
    return presetFolder.getChildFile ("fact.zip");
}

void zb_PresetManager::downloadFactoryContent()
{
    if (downloadTask != nullptr)
        return;  // the button stays live while the loop below runs

    downloadListener = std::make_unique<zb_PresetManagerDownloadListener>();
    downloadPanel = std::make_unique<zb_PresetManagerDownloadPanel> (*this);
    addAndMakeVisible (*downloadPanel);
    downloadPanel->layOut (unit);

    auto url = processor.factoryContentUrl;
    downloadTask = url.downloadToFile (
        downloadTarget(), juce::URL::DownloadTaskOptions().withListener (downloadListener.get()));

    const SafePointer<zb_PresetManager> stillThere (this);
    bool running = downloadTask != nullptr;

    while (running && ! downloadListener->isFinished)
    {
        downloadPanel->updatePanel (juce::translate ("Downloading"), downloadListener->fraction,
                                    false);
        running = letMessageLoopRun();

        if (stillThere == nullptr)
            return;
    }

    // A task may be made, and end at once, where no server was reached: then there is no answer's number.
    running = running && downloadTask->statusCode() > 0;

    if (running)
    {
        downloadPanel->updatePanel (juce::translate ("Downloading"), 1.0f, true);
        letMessageLoopRun();  // lets the panel paint: unpacking keeps the thread

        if (stillThere == nullptr)
            return;

        installFactoryContent();
    }

    downloadTask.reset();
    downloadTarget().deleteFile();
    removeChildComponent (downloadPanel.get());

    if (running)
    {
        processor.factoryContentOffered = false;
        rebuildAndReopen (getCurrentPath());
    }

    repaint();
}

/** A download that failed half-way ends here as well: what is no archive unpacks to nothing. */
void zb_PresetManager::installFactoryContent()
{
    unpackArchive (downloadTarget(), presetFolder);
    presetFolder.getChildFile ("User").createDirectory();
}
