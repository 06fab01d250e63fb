// SPDX-License-Identifier: AGPL-3.0-or-later
#include <cstdlib>

// Linked into the framework's two helpers, which make an instance of the plug-in after each link: set
// before main, so that the instance finds a home of its own and leaves the user's alone.
static const int homeIsSet = setenv ("HOME", VELKOR_SCRATCH_HOME, 1);
