// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <string>

/** Why no disk of a given size can be had here; empty if one can. It takes a namespace of mounts, which a
    container or a hardened system may refuse. */
std::string whyNoSmallDisk();

/** The start of a shell command: what is put behind it runs where a disk of its own is mounted at a folder, which
    is empty and as large as tmpfs's mount options say ("size=64k"). The disk is gone with the command and nobody
    else sees it, so a script may fill it before and copy out of it after. The exit code is the command's. Folder
    and scripts may not hold single quotes. */
std::string onSmallDisk (const std::string& folder, const std::string& mountOptions,
                         const std::string& scriptBefore, const std::string& scriptAfter);
