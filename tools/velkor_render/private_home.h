// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <filesystem>

/** A home folder of this process's own, empty at first and gone at the end. Make it before the first call
    to the framework. */
class PrivateHome
{
public:
    /** Makes the folder and points HOME at it. Fails if there is no place for temporary files. */
    PrivateHome();
    ~PrivateHome();

    PrivateHome (const PrivateHome&) = delete;
    PrivateHome& operator= (const PrivateHome&) = delete;

private:
    std::filesystem::path folder;
};
