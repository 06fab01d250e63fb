# SPDX-License-Identifier: AGPL-3.0-or-later
#
# Sourced by scripts that show a window: a home in the folder $work, a display of one's own, and an end for whatever
# was started.

# need TOOL...: without one of them the test is skipped
need()
{
    local tool
    for tool in "$@"; do command -v "$tool" >/dev/null || { echo "no $tool: skipped"; exit 77; }; done
}

stop()
{
    for process in "${started[@]}"; do kill "$process" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$work"
}

fail() { tail -n 20 "$work"/*.log >&2; printf '%s\n' "$*" >&2; exit 1; }

# start NAME COMMAND...: what it says goes to NAME.log
start()
{
    "${@:2}" >"$work/$1.log" 2>&1 &
    started+=($!)
}

# wait_for SECONDS COMMAND...: until it succeeds
wait_for()
{
    local end=$((SECONDS + $1))
    shift

    until "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$end" ] || return 1
        sleep 0.1
    done
}

need Xvfb xdotool
work=$(mktemp -d)
started=()
trap stop EXIT
mkdir "$work/home"
export HOME=$work/home
unset XDG_CONFIG_HOME XDG_DATA_HOME WAYLAND_DISPLAY

start xvfb sh -c 'exec Xvfb -displayfd 3 -noreset -screen 0 1600x1200x24 -nolisten tcp 3>"$1"' sh "$work/display"
wait_for 20 test -s "$work/display" || fail "Xvfb does not start"
DISPLAY=:$(cat "$work/display")
export DISPLAY
