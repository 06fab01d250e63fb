// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string>

/** An X server without a screen, for the suites whose name begins with "BrowserWindow": started before them,
    ended with the process. */
class XServer : public testing::Environment
{
public:
    /** Whether windows can be opened. */
    static bool isThere() { return running; }

    void SetUp() override
    {
        if (! isWanted())
            return;

        outliveErrors();

        // It goes when this process has gone, not before: the framework keeps its connection to the end.
        server = popen ("exec setpriv --pdeathsig TERM Xvfb -displayfd 1 -screen 0 2400x2000x24 "
                        "-nolisten tcp 2>/dev/null",
                        "r");
        char number[16] = {};
        running = server != nullptr && std::fgets (number, sizeof (number), server) != nullptr;

        if (running)
            setenv ("DISPLAY", (":" + std::to_string (std::atoi (number))).c_str(), 1);
    }

private:
    static inline bool running = false;
    static inline std::FILE* server = nullptr;

    /** Whether a test that is to run needs it: starting it takes some tenths of a second. */
    static bool isWanted()
    {
        const auto& filter = testing::GTEST_FLAG (filter);
        return filter.find ("BrowserWindow") != filter.npos || filter.find ('*') != filter.npos;
    }

    /** Without a window manager some atoms that the framework sets do not exist, and the library's own
        handler would end the process. */
    static void outliveErrors()
    {
        using Handler = int (*) (void*, void*);

        if (void* const library = dlopen ("libX11.so.6", RTLD_NOW | RTLD_GLOBAL))
            if (auto* const set =
                    reinterpret_cast<Handler (*) (Handler)> (dlsym (library, "XSetErrorHandler")))
                set ([] (void*, void*) { return 0; });
    }
};
