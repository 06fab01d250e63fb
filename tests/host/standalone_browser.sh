#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
#
# Works the preset browser of the Standalone by mouse and keyboard, on a screen and in a home of its own, and looks
# at the disk after each step.
#
#   standalone_browser.sh VELKOR       0: as it should be, 1: not, 77: a tool is missing
set -euo pipefail

velkor=$1

. "$(dirname "${BASH_SOURCE[0]}")/own_display.sh"
export XDG_RUNTIME_DIR=$work
presets="$HOME/Music/Zubrow Labs/Velkor/Presets"

start velkor "$velkor"
program=$!
wait_for 30 xdotool search --onlyvisible --name '^Velkor$' || fail "no window came up"
window=$(xdotool search --onlyvisible --name '^Velkor$' | tail -n 1)
sleep 1  # the window takes its final size
eval "$(xdotool getwindowgeometry --shell "$window")"

# The editor stands at the bottom of a frame; the browser covers it. Its unit is 9 pixels.
left=$((X + (WIDTH - 900) / 2))
top=$((Y + HEIGHT - (WIDTH - 900) / 2 - 675))

# --- hands ----------------------------------------------------------------------------------------

move() { xdotool mousemove $((left + $1)) $((top + $2)); sleep 0.1; }
click() { move "$1" "$2"; xdotool click 1; sleep 0.3; }
key() { xdotool key "$@"; sleep 0.3; }

# column C, row R, as "x y"
place() { echo $((211 + $1 * 369 / 2)) $((9 + $2 * 22 + 11)); }

click_row() { local at; read -ra at <<<"$(place "$@")"; click "${at[@]}"; }

# drag_row C R TO_C TO_R
drag_row()
{
    local from to
    read -ra from <<<"$(place "$1" "$2")"
    read -ra to <<<"$(place "$3" "$4")"
    move "${from[@]}"
    xdotool mousedown 1
    move $(((from[0] + to[0]) / 2)) $(((from[1] + to[1]) / 2))
    move "${to[@]}"
    move "${to[@]}"
    xdotool mouseup 1
    sleep 0.5
}

open_browser() { click 450 22; sleep 0.5; }
press_delete() { click 81 129; }
do_it() { click 400 387; }
keep_it() { click 500 387; }

# save NAME: the box opens with the old name selected, so that typing replaces it
save()
{
    click 81 100
    xdotool type --delay 30 "$1"
    sleep 0.3
    key Return
    sleep 0.5
}

# --- eyes -----------------------------------------------------------------------------------------

is_there() { wait_for 5 test -e "$presets/$1" || fail "no $1"; }
is_gone() { wait_for 5 test ! -e "$presets/$1" || fail "$1 is still there"; }

# values FILE: the parameters of a preset, by id
values() { grep -o 'id="[^"]*" value="[^"]*"' "$presets/$1" | sed -E 's/id="([^"]*)" value="([^"]*)"/\1\t\2/' | sort; }

# same_sound A B: whether two presets hold the same values, to what a file of the bank is rounded to
same_sound()
{
    join -t "$(printf '\t')" <(values "$1") <(values "$2") | awk -F '\t' '
        { ++n; d = $2 - $3; if (d * d > 1e-6 * (1e-3 + $2 * $2)) { ++differ } }
        END { exit n < 40 || differ > 0 }'
}

# --- the session ----------------------------------------------------------------------------------

shopt -s nullglob
is_there "User/Default.zbpreset"
factory=("$presets/Factory/"*.zbpreset)
[ "${#factory[@]}" = 64 ] || fail "${#factory[@]} factory presets"
walked="Factory/$(basename "${factory[4]}")"

open_browser
save Before
is_there "User/Before.zbpreset"
same_sound "User/Before.zbpreset" "User/Default.zbpreset" || fail "what was saved is not what was heard"

# To select is to load: what is saved then is what the arrow key has reached.
open_browser
click_row 0 0
click_row 1 3
key Down
save "A/B/C"
is_there "Factory/A/B/C.zbpreset"
same_sound "Factory/A/B/C.zbpreset" "$walked" || fail "what was saved is not $walked"
grep -q 'PresetName="C"' "$presets/Factory/A/B/C.zbpreset" || fail "the preset has another name than its file"

# The browser opens where that preset is.
open_browser
drag_row 3 0 0 1
is_there "User/C.zbpreset"
is_gone "Factory/A/B/C.zbpreset"

# User holds Before, C and Default.
click_row 0 1
click_row 1 1
press_delete
keep_it
is_there "User/C.zbpreset"
press_delete
do_it
is_gone "User/C.zbpreset"
is_there "User/Before.zbpreset"
is_there "User/Default.zbpreset"

# Nothing else has come or gone.
[ "$(find "$presets/Factory" -name '*.zbpreset' | wc -l)" = 64 ] ||
    fail "factory presets have changed"
[ -z "$(find "$presets" -name '.*')" ] || fail "something half-written is left"
kill -0 "$program" || fail "the program is gone"
echo "all steps are as they should be"
