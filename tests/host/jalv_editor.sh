#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
#
# Runs a bundle in jalv with its editor open, on a display and a JACK server of its own, and sends a tone through.
#
#   jalv_editor.sh BUNDLE.lv2        0: it plays and shows its window, 1: it does not, 77: a tool is missing
set -euo pipefail

bundle=$(cd "$1" && pwd -P)

. "$(dirname "${BASH_SOURCE[0]}")/own_display.sh"
need jalv.gtk3 jackd jack_lsp jack-play jack-record sox import identify
export LV2_PATH=${bundle%/*}    # and no other folder: an installed Velkor has the same URI
export JACK_DEFAULT_SERVER=velkor-$$ JACK_NO_START_SERVER=1 JACK_NO_AUDIO_RESERVATION=1

start jack jackd --name "$JACK_DEFAULT_SERVER" --no-realtime --sync -d dummy -r 48000 -p 1024
wait_for 20 jack_lsp || fail "jackd does not start"

start jalv jalv.gtk3 urn:com.zubrow.Velkor
jalv=$!
wait_for 30 sh -c 'jack_lsp | grep -q -x Velkor:audio_out_2' || fail "jalv shows no ports of Velkor"

grep -q -F "$bundle/" "/proc/$jalv/maps" || fail "jalv plays another Velkor"

# --- the window -------------------------------------------------------------------------------------

wait_for 30 xdotool search --name '^Velkor$' || fail "jalv shows no window of Velkor"

# An empty window has a handful of colours.
painted() { import -window root "$work/shot.png" && [ "$(identify -format %k "$work/shot.png")" -gt 1000 ]; }
wait_for 20 painted || fail "the editor is not painted"

# --- the sound --------------------------------------------------------------------------------------

# The tone fits into the default delay of 501 ms 500 times, so the echo falls in step with it and doubles it.
sox -n -r 48000 -b 16 -c 2 "$work/tone.wav" synth 8 sine 998 gain -12
JACK_PLAY_CONNECT_TO=Velkor:audio_in_%d start play jack-play "$work/tone.wav"
wait_for 20 sh -c 'jack_lsp -c Velkor:audio_in_2 | grep -q play' || fail "the tone does not reach the plug-in"
jack-record -t 3 -p Velkor:audio_out_%d "$work/out.wav" >"$work/record.log" 2>&1 || fail "nothing is recorded"

# measure FILE: its RMS and its frequency, from 1.5 s on, when the echo has set in.
measure() { sox "$1" -n trim 1.5 1 stat 2>&1 | awk '/^RMS +amplitude/ { rms = $3 } /^Rough/ { print rms, $3 }'; }
read -r level frequency <<<"$(measure "$work/out.wav")"
read -r dry_level dry_frequency <<<"$(measure "$work/tone.wav")"
awk "BEGIN { exit !($level > 1.85 * $dry_level && $level < 2.05 * $dry_level) }" ||
    fail "the output's level is $level, that of the tone $dry_level"
[ "$frequency" = "$dry_frequency" ] || fail "the output is a sine of $frequency Hz, not of $dry_frequency"

# --- the end ----------------------------------------------------------------------------------------

kill -0 "$jalv" 2>/dev/null || fail "jalv died"
kill "$jalv"
status=0
wait "$jalv" || status=$?
[ "$status" = 0 ] || [ "$status" = 143 ] || fail "jalv ended with $status"    # 143 is the signal

! grep -i -E 'error|assert|segmentation' "$work/jalv.log" || fail "jalv complains"
printf 'jalv: %s colours in the picture, level %s times the tone\n' "$(identify -format %k "$work/shot.png")" \
    "$(awk "BEGIN { printf \"%.2f\", $level / $dry_level }")"
