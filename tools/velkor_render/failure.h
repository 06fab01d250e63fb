// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string>

/** Why a render came to nothing: what() is one line that names the culprit, for the user to read. */
class Failure : public std::runtime_error
{
public:
    /** What went wrong; the program's exit code. */
    enum Kind
    {
        operation = 1,
        usage = 2
    };

    Failure (Kind kindOfFailure, const std::string& line)
        : std::runtime_error (line), kind (kindOfFailure)
    {
    }

    Kind kind;
};

/** The world isn't as it should be: a file is missing, a disk is full. */
[[noreturn]] inline void fail (const std::string& line)
{
    throw Failure (Failure::operation, line);
}

/** The command line isn't as it should be. */
[[noreturn]] inline void failUsage (const std::string& line)
{
    throw Failure (Failure::usage, line);
}
