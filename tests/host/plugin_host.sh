#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
#
# Builds the framework's own plug-in host (some minutes, so by hand and in no CI), opens a graph with the VST3 and the
# LV2 side by side on a display of its own, and takes a picture to look at.
#
#   plugin_host.sh JUCE BUILD BUNDLE.vst3 BUNDLE.lv2 PICTURE.png
#       JUCE is the framework's source tree, BUILD a folder to build in.
#       0: both windows are painted, 1: they aren't, 77: a tool is missing
set -euo pipefail

[ $# = 5 ] || { sed -n '5,9s/^# \{0,1\}//p' "$0" >&2; exit 2; }
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
juce=$(cd "$1" && pwd)
build=$2
vst3=$(cd "$3" && pwd)
lv2=$(cd "$4" && pwd)
picture=$5

for tool in cmake Xvfb xdotool import identify; do
    command -v "$tool" >/dev/null || { echo "no $tool: skipped"; exit 77; }
done

cmake -S "$here/plugin_host" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O1 \
    -DVELKOR_JUCE_DIR="$juce" >/dev/null
cmake --build "$build" --target AudioPluginHost

work=$(mktemp -d)
started=()

stop()
{
    for process in "${started[@]}"; do kill "$process" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$work"
}

trap stop EXIT
mkdir -p "$work/home/.lv2"
cp -a "$lv2" "$work/home/.lv2/"    # where the host looks; LV2_PATH it ignores
export HOME=$work/home
unset XDG_CONFIG_HOME XDG_DATA_HOME WAYLAND_DISPLAY LV2_PATH

fail() { tail -n 20 "$work"/*.log >&2; printf '%s\n' "$*" >&2; exit 1; }

# wait_for SECONDS COMMAND...: until it succeeds.
wait_for()
{
    local end=$((SECONDS + $1))
    shift

    until "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$end" ] || return 1
        sleep 0.2
    done
}

# The host knows a VST3 by a hash of its class, whose bytes count as signed.
hash_of()
{
    local hash=0 i byte

    for ((i = 0; i < 32; i += 2)); do
        byte=$((16#${1:i:2}))
        hash=$(((hash * 31 + (byte > 127 ? byte - 256 : byte)) & 0xffffffff))
    done

    printf '%x' "$hash"
}

class=$(sed -n 's/.*"CID": *"\([0-9A-F]*\)".*/\1/p' "$vst3/Contents/Resources/moduleinfo.json" | head -n 1)
[ "${#class}" = 32 ] || fail "the VST3 names no class"

cat >"$work/both.filtergraph" <<END
<?xml version="1.0" encoding="UTF-8"?>
<FILTERGRAPH>
  <FILTER uid="1" x="0.3" y="0.5" uiLastX_Normal="20" uiLastY_Normal="60" uiopen_Normal="1">
    <PLUGIN name="Velkor" format="VST3" file="$vst3" uniqueId="$(hash_of "$class")" uid="$(hash_of "$class")"/>
  </FILTER>
  <FILTER uid="2" x="0.7" y="0.5" uiLastX_Normal="1000" uiLastY_Normal="60" uiopen_Normal="1">
    <PLUGIN name="Velkor" format="LV2" file="urn:com.zubrow.Velkor" uniqueId="0" uid="0"/>
  </FILTER>
</FILTERGRAPH>
END

Xvfb -displayfd 3 -screen 0 2000x1000x24 -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
started+=($!)
wait_for 20 test -s "$work/display" || fail "Xvfb does not start"
DISPLAY=:$(cat "$work/display")
export DISPLAY

"$build/AudioPluginHost/AudioPluginHost_artefacts/Debug/AudioPluginHost" "$work/both.filtergraph" \
    >"$work/host.log" 2>&1 &
host=$!
started+=("$host")

both() { [ "$(xdotool search --onlyvisible --name '^Velkor' | wc -l)" -ge 2 ]; }
wait_for 40 both || { import -window root "$picture"; fail "the host shows no two windows of Velkor: see $picture"; }
sleep 3
kill -0 "$host" 2>/dev/null || fail "the host died"
import -window root "$picture"
colours=$(identify -format %k "$picture")
[ "$colours" -gt 1000 ] || fail "the windows are not painted: see $picture"
printf 'the plug-in host: two windows, %s colours in %s\n' "$colours" "$picture"
