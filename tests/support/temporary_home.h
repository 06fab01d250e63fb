// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdlib.h>
#include <string>
#include <system_error>

/** A home folder of this process's own, empty at first and gone at the end. */
class TemporaryHome
{
public:
    TemporaryHome()
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "velkor-test-XXXXXX").string();

        if (mkdtemp (pattern.data()) == nullptr)
            std::abort();

        path = pattern;
        setenv ("HOME", pattern.c_str(), 1);
    }

    ~TemporaryHome()
    {
        std::error_code ignored;
        std::filesystem::remove_all (path, ignored);
    }

    TemporaryHome (const TemporaryHome&) = delete;
    TemporaryHome& operator= (const TemporaryHome&) = delete;

    std::filesystem::path path;
};
