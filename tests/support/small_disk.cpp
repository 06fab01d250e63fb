// SPDX-License-Identifier: AGPL-3.0-or-later
#include "small_disk.h"

#include <cstdlib>
#include <initializer_list>

static constexpr auto kAsRoot = "unshare -m";
static constexpr auto kAsAnybody = "unshare -rm";  ///< root of a namespace of users

/** The way into a namespace of mounts of one's own; empty if there is none. */
static std::string findNamespace()
{
    for (const auto* way : { kAsRoot, kAsAnybody })
    {
        const auto probe = std::string (way) +
                           " sh -c 'd=$(mktemp -d); mount -t tmpfs -o size=16k none $d; code=$?;"
                           " umount $d; rmdir $d; exit $code' >/dev/null 2>&1";

        if (std::system (probe.c_str()) == 0)
            return way;
    }

    return {};
}

static const std::string& theNamespace()
{
    static const auto way = findNamespace();
    return way;
}

std::string whyNoSmallDisk()
{
    return theNamespace().empty() ? "no disk may be mounted here, not even in a namespace" : "";
}

std::string onSmallDisk (const std::string& folder, const std::string& mountOptions,
                         const std::string& scriptBefore, const std::string& scriptAfter)
{
    return theNamespace() + " sh -c 'mount -t tmpfs -o " + mountOptions + " none \"" + folder +
           "\" || exit 99; " + scriptBefore + "\n\"$@\"; code=$?\n" + scriptAfter +
           "\nexit $code' sh";
}
