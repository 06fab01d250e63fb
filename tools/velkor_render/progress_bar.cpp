// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/progress_bar.h"

#include <algorithm>
#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

static bool stderrIsTerminal()
{
#ifdef _WIN32
    return _isatty (_fileno (stderr)) != 0;
#else
    return isatty (fileno (stderr)) != 0;
#endif
}

ProgressBar::ProgressBar (std::string nameOfTask)
    : name (std::move (nameOfTask)), enabled (stderrIsTerminal())
{
}

ProgressBar::~ProgressBar()
{
    if (shownPercent >= 0)
        std::fputs ("\r\033[K", stderr);
}

void ProgressBar::show (double proportion)
{
    constexpr int kWidth = 30;
    const int percent = static_cast<int> (std::clamp (proportion, 0.0, 1.0) * 100.0);

    if (! enabled || percent == shownPercent)
        return;

    shownPercent = percent;
    std::string bar (static_cast<std::size_t> (percent * kWidth / 100), '#');
    bar.resize (kWidth, '.');
    std::fprintf (stderr, "\r\033[K[%s] %3d%% %s", bar.c_str(), percent, name.c_str());
    std::fflush (stderr);
}
