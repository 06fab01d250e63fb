// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

/** From here on, Ctrl-C, a request to terminate, a closed terminal or a closed pipe are kept for
    throwIfInterrupted, so that temporary files get cleared away. */
void catchInterruptions();

/** Fails if the user asked for an end. Call it once in a while. */
void throwIfInterrupted();

/** If the user asked for an end, ends the process the way it would have ended without us, so that a
    shell's loop stops too. */
void endIfInterrupted();
