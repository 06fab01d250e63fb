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
    if (download != nullptr)
        return;  // the button stays live while the loop below runs

    downloadListener = std::make_shared<zb_PresetManagerDownloadListener>();
    downloadPanel = std::make_unique<zb_PresetManagerDownloadPanel> (*this);
    addAndMakeVisible (*downloadPanel);
    downloadPanel->layOut (unit);

    download = std::make_unique<FactoryDownload> (processor.factoryContentUrl, downloadTarget(),
                                                  downloadListener);

    const SafePointer<zb_PresetManager> stillThere (this);
    bool running = true;

    while (running && ! downloadListener->isFinished)
    {
        if (download->isConnected())
            downloadPanel->updatePanel (juce::translate ("Downloading"), downloadListener->fraction,
                                        false);

        running = letMessageLoopRun();

        if (stillThere == nullptr)
            return;

        running = running && ! download->hasNoServer();
    }

    if (running)
    {
        downloadPanel->updatePanel (juce::translate ("Downloading"), 1.0f, true);
        letMessageLoopRun();  // lets the panel paint: unpacking keeps the thread

        if (stillThere == nullptr)
            return;

        installFactoryContent();
    }

    download.reset();
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
