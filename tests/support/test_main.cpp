// SPDX-License-Identifier: AGPL-3.0-or-later
#include "temporary_home.h"

#include <gtest/gtest.h>

int main (int argc, char** argv)
{
    const TemporaryHome
        home;  // before the first call into the framework: no test sees the user's files
    testing::InitGoogleTest (&argc, argv);
    return RUN_ALL_TESTS();
}
