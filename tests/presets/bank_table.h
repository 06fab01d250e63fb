// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "promises.h"

#include <span>

/** How a preset stands to the rules: most are exceptions that its name asks for. */
enum Note : unsigned
{
    none = 0,
    longTail = 1,  ///< its name is its length
    midi = 2,      ///< measured with a line of notes and the wheel
    noClock = 4,   ///< promises no beat, so that it sounds the same with the transport stopped
};

/** What a preset promises by its name. */
struct BankRow
{
    int number;
    const char* name;
    unsigned notes;
    const char* promise;  ///< the fact that check measures
    Check check;

    bool is (Note note) const { return (notes & note) != 0; }
};

std::span<const BankRow> bankTable();
