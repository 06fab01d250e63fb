// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <filesystem>

class VelkorAudioProcessor;

/** Loads a preset document: its parameters, and its matrices if it has them. Fails if there is no such
    file or if it isn't a preset. Not while a block runs. */
void loadPreset (VelkorAudioProcessor& processor, const std::filesystem::path& path);
