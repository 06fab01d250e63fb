// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_strings.h"

const juce::StringArray typeString { "Root", "Folder", "Preset", "Sample", "Favorites" };

const juce::StringArray buttonString { "Copy To Clipboard",
                                       "Paste From Clipboard",
                                       "Import Preset / Zip",
                                       "Export Folder As Zip",
                                       "Delete Folder",
                                       "Save Preset",
                                       "Download Factory Content",
                                       "Cancel",
                                       "Close" };

const juce::StringArray toolTipString {
    "Copies current state of the plugin to the system clipboard.",
    "Paste contents of the system clipboard to the plugin.",
    "Opens a native file chooser to select a single preset, or a zip file containing presets. The "
    "zip will be "
    "unzipped to the current selected folder.",
    "Opens a native file chooser to select a destination, then exports currently selected folder "
    "(as a zip) or "
    "single preset.",
    "Deletes currently selected folder or preset.",
    "Saves current state of the plugin to the selected folder. You will get the opportunity to "
    "name the preset "
    "in the next step.",
    "Downloads the factory preset package and installs it to the appropriate location. "
    "(Approximately 280mb of "
    "data transfer)",
    "Restore the plugin to its state before the browser was opened and close."
};
