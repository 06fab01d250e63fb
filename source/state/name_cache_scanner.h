// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "state/name_cache.h"

#include <optional>
#include <string_view>

/** Reads a file of names in the form in which it is written, without a parsed document on the
    way. Empty for any other text, which may be a file of names all the same, and beyond maxPresets.
    Any thread. */
std::optional<NameCacheContents> scanNameCache (std::string_view text, int maxPresets);
