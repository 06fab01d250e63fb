// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/VelkorAudioProcessor.h"

#include <string>

/** What is wrong with an instance after it has been given anything to load: values out of their range, a
    tree that isn't the store's, a matrix whose list and flags differ, sound that isn't finite, a state that
    doesn't come back as it went. Empty if nothing is. */
std::string faultOf (VelkorAudioProcessor& processor);
