// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <unistd.h>

/** An X server without a screen, for the tests of suites whose name begins with kSuites: started before them,
    ended with the process. */
class XServer : public testing::Environment
{
public:
    static constexpr std::string_view kSuites = "BrowserWindow";

    /** Whether windows can be opened. */
    static bool isThere() { return running; }

    void SetUp() override
    {
        if (! isWanted())
            return;

        outliveErrors();
        int ends[2] = {};

        if (pipe (ends) != 0)
            return;

        const auto child = fork();

        if (child == 0)
        {
            close (ends[0]);
            prctl (PR_SET_PDEATHSIG,
                   SIGTERM);  // not before: the framework keeps its connection to the end
            const auto number = std::to_string (ends[1]);
            const int nowhere = open ("/dev/null", O_RDWR);
            dup2 (nowhere, 1);
            dup2 (nowhere, 2);
            execlp ("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "2400x2000x24",
                    "-nolisten", "tcp", static_cast<char*> (nullptr));
            _exit (127);
        }

        close (ends[1]);
        std::string number;
        char digit = 0;

        while (read (ends[0], &digit, 1) == 1 && digit != '\n')
            number += digit;

        close (ends[0]);

        running = ! number.empty();

        if (running)
            setenv ("DISPLAY", (":" + number).c_str(), 1);
    }

private:
    static inline bool running = false;

    /** Whether a test that is to run needs it: starting it takes some tenths of a second. */
    static bool isWanted()
    {
        const auto& all = *testing::UnitTest::GetInstance();

        for (int i = 0; i < all.total_test_suite_count(); ++i)
            if (const auto& suite = *all.GetTestSuite (i);
                suite.test_to_run_count() > 0 &&
                std::string_view (suite.name()).starts_with (kSuites))
                return true;

        return false;
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
