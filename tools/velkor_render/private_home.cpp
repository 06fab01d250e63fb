// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/private_home.h"

#include "velkor_render/failure.h"

#include <cstdlib>
#include <random>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

// The plug-in keeps its presets and settings in the user's home, and its constructor may set them up there.
// A render is to leave no trace but its output, and to sound the same whatever the user's default sound is:
// so the plug-in gets a home that has nothing in it and that goes away with the process.
PrivateHome::PrivateHome()
{
    std::error_code error;
    const auto parent = fs::temp_directory_path (error);
    std::random_device random;

    for (int attempt = 0; attempt < 16 && ! error && folder.empty(); ++attempt)
    {
        const auto candidate = parent / ("velkor-render-" + std::to_string (random()));

        if (fs::create_directory (candidate, error))
            folder = candidate;
    }

    if (folder.empty())
        fail ("can't make a temporary folder: " + error.message());

    fs::permissions (folder, fs::perms::owner_all, error);

#ifdef _WIN32
    _putenv_s ("HOME", folder.string().c_str());
#else
    setenv ("HOME", folder.c_str(), 1);
#endif
}

PrivateHome::~PrivateHome()
{
    std::error_code ignored;
    fs::remove_all (folder, ignored);
}
