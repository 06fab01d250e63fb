// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <string>

/** A line on stderr that fills while a file is rendered; nothing at all if stderr is no terminal. */
class ProgressBar
{
public:
    explicit ProgressBar (std::string nameOfTask);

    /** Takes the line away. */
    ~ProgressBar();

    ProgressBar (const ProgressBar&) = delete;
    ProgressBar& operator= (const ProgressBar&) = delete;

    /** proportion is 0 to 1. Cheap if nothing visible changes. */
    void show (double proportion);

private:
    std::string name;
    bool enabled;
    int shownPercent = -1;
};
