// SPDX-License-Identifier: AGPL-3.0-or-later
#include "acceptance_session.h"

#include <cstddef>

std::unique_ptr<DirectPlayer> preparedPlayer (const Session& session)
{
    auto player = std::make_unique<DirectPlayer>();
    player->processor.prepareToPlay (session.sampleRate, session.maxBlock);
    return player;
}

juce::AudioBuffer<float> playedAlone (const Session& session)
{
    return preparedPlayer (session)->play (session);
}

Session shortened (Session session)
{
    const int length = static_cast<int> (session.sampleRate);
    int end = 0;

    for (std::size_t i = 0; i < session.blocks.size(); ++i)
        if ((end += session.blocks[i].numSamples) > length)
        {
            end -= session.blocks[i].numSamples;
            session.blocks.resize (i);
        }

    session.input.setSize (2, end, true);
    return session;
}
