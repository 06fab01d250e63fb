#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
#
# Works the preset browser of the Standalone by mouse and keyboard, on a screen and in a home of its own, and looks
# at the disk after each step.
#
#   standalone_browser.sh VELKOR       0: as it should be, 1: not, 77: a tool is missing
#
# With VELKOR_SHOTS set to a folder and ImageMagick at hand, a picture of each step goes there.
set -euo pipefail

velkor=$1

for tool in Xvfb xdotool; do
    command -v "$tool" >/dev/null || { echo "no $tool: skipped"; exit 77; }
done

work=$(mktemp -d)
pids=()

clean_up()
{
    [ "${#pids[@]}" = 0 ] || kill "${pids[@]}" 2>/dev/null || true
    wait
    rm -rf "$work"
}

trap clean_up EXIT
fail() { printf 'after "%s": %s\n' "$step" "$*" >&2; exit 1; }
step=start

# --- the screen and the program -------------------------------------------------------------------

# until_true SECONDS COMMAND...: waits until a command succeeds; whether it did
until_true()
{
    local tries=$(($1 * 20))
    shift

    for ((; tries > 0; --tries)); do
        "$@" >/dev/null 2>&1 && return 0
        sleep 0.05
    done

    return 1
}

mkfifo "$work/display"
Xvfb -displayfd 3 -noreset -screen 0 1400x1000x24 -nolisten tcp 3>"$work/display" >/dev/null 2>&1 &
pids+=($!)
read -r -t 20 number <"$work/display" || fail "no X server came up"
export DISPLAY=:$number HOME=$work/home XDG_RUNTIME_DIR=$work
mkdir "$HOME"
presets="$HOME/Music/Zubrow Labs/Velkor/Presets"

"$velkor" >"$work/output" 2>&1 &
pids+=($!)
program=$!
until_true 30 xdotool search --onlyvisible --name '^Velkor$' || fail "no window came up"
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

# column C, row R, as "x y"; with a third argument, so many pixels from the right end
place() { echo $((171 + $1 * 369 / 2 + ${3:+166 - }${3:-40})) $((9 + $2 * 22 + 11)); }

click_row() { local at; read -ra at <<<"$(place "$@")"; click "${at[@]}"; }

# drag_row C R TO_C TO_R
drag_row()
{
    local from to i
    read -ra from <<<"$(place "$1" "$2")"
    read -ra to <<<"$(place "$3" "$4")"
    move "${from[@]}"
    xdotool mousedown 1

    for i in 1 2 3 4 5 6; do
        move $((from[0] + (to[0] - from[0]) * i / 6)) $((from[1] + (to[1] - from[1]) * i / 6))
    done

    xdotool mouseup 1
    sleep 0.5
}

open_browser() { click 450 22; sleep 0.5; }
press_cancel() { click 48 30; sleep 0.5; }
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

# done_with STEP: names what was just done
done_with()
{
    step=$1
    kill -0 "$program" 2>/dev/null || { cat "$work/output" >&2; fail "the program is gone"; }

    if [ -n "${VELKOR_SHOTS:-}" ] && command -v import >/dev/null; then
        import -window root "$VELKOR_SHOTS/${step//[ \/]/-}.png"
    fi
}

is_there() { until_true 5 test -e "$presets/$1" || fail "no $1"; }
is_gone() { until_true 5 test ! -e "$presets/$1" || fail "$1 is still there"; }

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
other="Factory/$(basename "${factory[10]}")"

open_browser
save Before
done_with "save"
is_there "User/Before.zbpreset"
same_sound "User/Before.zbpreset" "User/Default.zbpreset" || fail "what was saved is not what was heard"

# To select is to load: what is saved then is what the arrow key has reached.
open_browser
click_row 0 0
click_row 1 3
key Down
done_with "walk"
save "A/B/C"
done_with "save A/B/C"
is_there "Factory/A/B/C.zbpreset"
same_sound "Factory/A/B/C.zbpreset" "$walked" || fail "what was saved is not $walked"
same_sound "Factory/A/B/C.zbpreset" "User/Before.zbpreset" && fail "$walked sounds like the default"
grep -q 'PresetName="C"' "$presets/Factory/A/B/C.zbpreset" || fail "the preset has another name than its file"

# The browser opens where that preset is. A favourite makes a row before all others.
open_browser
click_row 3 0 10
done_with "star"
until_true 5 grep -q 'path="Factory/A/B/C.zbpreset"' "$presets/favorites.xml" || fail "no favourite is stored"

drag_row 3 0 0 2
done_with "drag to User"
is_there "User/C.zbpreset"
is_gone "Factory/A/B/C.zbpreset"
until_true 5 sh -c '! grep -q "<Favorite " "$1"' sh "$presets/favorites.xml" ||
    fail "a favourite stands for a file that has gone"

# User holds Before, C and Default.
click_row 0 1
click_row 1 1
press_delete
done_with "ask"
keep_it
is_there "User/C.zbpreset"
press_delete
do_it
done_with "delete"
is_gone "User/C.zbpreset"
is_there "User/Before.zbpreset"
is_there "User/Default.zbpreset"

# Back to the sound from before the browser was opened, which was C's.
click_row 0 0
click_row 1 10
done_with "audition"
press_cancel
done_with "cancel"
open_browser
save After
done_with "save after cancel"
until_true 5 sh -c 'test -n "$(find "$1" -name After.zbpreset)"' sh "$presets" || fail "no After.zbpreset"
after=$(cd "$presets" && find . -name After.zbpreset)
same_sound "$after" "$walked" || fail "cancel did not bring $walked back"
same_sound "$after" "$other" && fail "the audition of $other stayed"

# Nothing else has come or gone.
[ "$(find "$presets/Factory" -name '*.zbpreset' ! -name After.zbpreset | wc -l)" = 64 ] ||
    fail "factory presets have changed"
[ -z "$(find "$presets" -name '.*')" ] || fail "something half-written is left"
echo "all steps are as they should be"
