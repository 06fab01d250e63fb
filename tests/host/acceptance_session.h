// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "session_player.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <memory>

/** A new instance, prepared for the session. */
std::unique_ptr<DirectPlayer> preparedPlayer (const Session& session);

/** What a new instance makes of the session. */
juce::AudioBuffer<float> playedAlone (const Session& session);

/** The session up to a second, which is enough where it is played many times. */
Session shortened (Session session);
