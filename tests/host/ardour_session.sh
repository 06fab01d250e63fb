#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
#
# Puts the bundles into sessions of Ardour, on a track with clicks, moves "Delay 1 Time" and "Kill" by automation,
# saves, loads again and exports twice. Without a display or a sound card.
#
#   ardour_session.sh BUNDLE.vst3 BUNDLE.lv2    0: both come out as they must, 1: they don't, 77: Ardour is missing
set -euo pipefail

vst3=$(cd "$1" && pwd)
lv2=$(cd "$2" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

# Ardour's Lua and its session files change from one major version to the next: this is tried with 7.
libraries=/usr/lib/ardour7

for tool in ardour7-lua ardour7-export sox "$libraries/ardour-vst3-scanner"; do
    command -v "$tool" >/dev/null || { echo "no $tool: skipped"; exit 77; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/home/.vst3"
export HOME=$work/home LV2_PATH=${lv2%/*}
unset XDG_CONFIG_HOME XDG_CACHE_HOME XDG_DATA_HOME WAYLAND_DISPLAY

# Without a name the framework would look for a server at :0, which may be another test's and end before this one.
export DISPLAY=none

fail() { tail -n 20 "$work"/*.log >&2; printf '%s\n' "$*" >&2; exit 1; }

# try WHAT COMMAND...: Ardour's tools break their own heap or hang in one run out of some fifteen, without any plug-in
# too: what ends by a signal or by the time limit (124) doesn't count.
try()
{
    local attempt status

    for attempt in 1 2 3 4 5; do
        status=0
        timeout 90 "${@:2}" >"$work/ardour.log" 2>&1 || status=$?
        [ "$status" = 124 ] || [ "$status" -ge 128 ] || break
        echo "$1 ended with $status at attempt $attempt"
    done

    [ "$status" = 0 ] || fail "$1 ended with $status"
}

# in_ardour TASK FOLDER [ARGUMENT...]: the tool ends with 0 after an error in Lua.
in_ardour()
{
    try "$*" ardour7-lua "$here/ardour_session.lua" "$@"
    grep -q -x 'done' "$work/ardour.log" || fail "Ardour did not come through $*"
}

# --- scan -----------------------------------------------------------------------------------------

# The scanner keeps the time of the bundle, and its path as it is told.
cp -a "$vst3" "$work/home/.vst3/"
env LD_LIBRARY_PATH="$libraries" ARDOUR_DATA_PATH=/usr/share/ardour7 ARDOUR_CONFIG_PATH=/etc/ardour7 \
    ARDOUR_DLL_PATH="$libraries" timeout 60 "$libraries/ardour-vst3-scanner" -f -v "$work/home/.vst3/Velkor.vst3" \
    >"$work/scan.log" 2>&1 || fail "the scanner ended with $?"
vst3_id=$(sed -n 's/.*<VST3Info uid="\([0-9A-F]*\)" name="Velkor".*/\1/p' "$work/scan.log" | head -n 1)
[ -n "$vst3_id" ] || fail "the scanner finds no Velkor"

# --- one format -----------------------------------------------------------------------------------

rate=48000
seconds=4

# take FILE SOUND: on the left clicks at 0.1 s and each second from there, or a constant from 0.1 s on; silence on the
# right; as long as FILE.
take()
{
    local length sound=silence
    length=$(soxi -s "$1" 2>/dev/null)
    case $1 in *%L.wav) sound=$2 ;; esac
    awk -v n="$length" -v sound="$sound" -v rate="$rate" 'BEGIN { print "; Sample Rate " rate; print "; Channels 1"
        for (i = 0; i < n; ++i) print i / rate,
            (sound == "clicks" && i % rate == rate / 10 || sound == "constant" && i >= rate / 10 ? 0.5 : 0) }' \
        >"$work/take.dat"
    sox -D "$work/take.dat" -e float -b 32 "$1"
}

# export_to NAME SESSION: leaves "place left right" of each sample. Now and then an export begins 16 samples into the
# session: all in it is early then, the dry clicks too, and is put back by the first of them. Any other place of that
# click stays as it is.
export_to()
{
    try "the $1 export of $2" ardour7-export -b float -o "$work/$1.wav" "$2" session
    sox "$work/$1.wav" -t dat - 2>/dev/null | awk -v early=$((rate / 10 - 16)) '
        /^;/ { next }
        !first && $2 > 0.05 { first = n }
        { line[n++] = $2 " " $3 }
        END { shift = first == early ? 16 : 0
            for (i = 16; i < n - 16; ++i) print i, line[i - shift] }' >"$work/$1"
}

# play FORMAT ID: exports twice and leaves the clicks that come out on the left as "place level".
play()
{
    local session=$work/$1 file
    in_ardour make "$session" "$1" "$2" "$seconds"

    for file in "$session"/interchange/*/audiofiles/*.wav; do take "$file" clicks; done

    if [ "$1" = LV2 ]; then
        # At 120 beats per minute a second has 2 x 1920 ticks, so 1.7 s is 6528.
        awk -v id=automation-id=\"property-urn:com.zubrow.Velkor: '
            function play(points) { sub(/state="Off"\/>/, "state=\"Play\"><events>" points "</events></AutomationList>") }
            index($0, id "Delay_201_20Sync\"") { play("b0 1\n") }
            index($0, id "Delay_201_20Time\"") { play("b0 570.86\nb6528 570.86\nb6532 371.26\n") }
            index($0, id "Kill\"") { play("b0 0\nb11136 0\nb11140 1\n") }
            { print }' "$session/session.ardour" >"$work/edited"
        [ "$(grep -c 'state="Play"' "$work/edited")" = 3 ] || fail "the session has no automation for properties"
        mv "$work/edited" "$session/session.ardour"
    fi

    in_ardour reload "$session"

    export_to first "$session"
    export_to second "$session"
    cmp -s "$work/first" "$work/second" || fail "$1: the exports differ"
    awk '$2 > 0.05 || $2 < -0.05 { print $1, $2 }' "$work/first" >"$work/clicks"
    awk '$3 > 0.0001 || $3 < -0.0001 { exit 1 }' "$work/first" || fail "$1: the right side is not silent"
}

# --- both formats ---------------------------------------------------------------------------------

# At 120 beats per minute the echo comes a quarter after the click, and from 1.7 s on an eighth: half a second, then a
# quarter of one. An echo is on two samples, the mean of each and the one before. None comes back to the click at 3.1 s.
printf '%s\n' 4800:0.497 28799:0.251 28800:0.251 52800:0.497 76799:0.251 76800:0.251 100800:0.497 112799:0.251 \
    112800:0.251 148800:0.497 | tr : ' ' >"$work/wanted"

for format in "VST3 $vst3_id" "LV2 urn:com.zubrow.Velkor"; do
    read -r format id <<<"$format"
    play "$format" "$id"
    awk 'NR == FNR { place[++n] = $1; level[n] = $2; next }
        { ++got; if ($1 != place[got] || $2 < level[got] - 0.01 || $2 > level[got] + 0.01) exit bad = 1 }
        END { exit bad || got != n || n == 0 }' "$work/wanted" "$work/clicks" ||
        { cat "$work/clicks" >&2; fail "$format: other clicks come out, as places and levels"; }
done

# --- a synced LFO -----------------------------------------------------------------------------------

# Each instance loads this when it is made: the left side, its level moved by an LFO of a whole note.
presets="$HOME/Music/Zubrow Labs/Velkor/Presets/User"
mkdir -p "$presets"
cat >"$presets/Default.zbpreset" <<'END'
<?xml version="1.0" encoding="UTF-8"?>
<VelkorSettings PresetName="Default" Version="65536">
  <Parameters>
    <PARAM id="LFO 1 Rate" value="0.0"/><PARAM id="LFO 1 Sync" value="1.0"/><PARAM id="LFO 1 Wave" value="0.0"/>
    <PARAM id="Level 1 Mod" value="0.25"/><PARAM id="Output 1 Level" value="0.5"/><PARAM id="Dry Level" value="0.0"/>
  </Parameters>
  <SignalMatrix><Connection input="0" output="8"/></SignalMatrix>
  <ModMatrix><Connection source="1" dest="8"/></ModMatrix>
</VelkorSettings>
END

for format in "VST3 $vst3_id" "LV2 urn:com.zubrow.Velkor"; do
    read -r format id <<<"$format"
    in_ardour song "$work/song" "$format" "$id" "$seconds"
    for file in "$work/song"/interchange/*/audiofiles/*.wav; do take "$file" constant; done
    export_to "song-$format" "$work/song"
done

# What hosts say they round to 1/1920 of a quarter note. The takes are a little longer than asked for, not equally so.
paste -d ' ' "$work/song-VST3" "$work/song-LV2" | awk -v rate="$rate" -v end=$((seconds * rate - rate / 10)) '
    $1 > end { next }
    $1 > rate / 5 { if ($2 < low || !n++) low = $2; if ($2 > high) high = $2 }
    { d = $2 > $5 ? $2 - $5 : $5 - $2; if (d > worst) { worst = d; place = $1 } }
    END { printf "the LFO moves the level from %.3f to %.3f, the formats differ by %.6f at sample %d\n",
              low, high, worst, place
          exit n == 0 || high - low < 0.15 || worst > 0.001 }' >"$work/difference" || fail "$(cat "$work/difference")"
cat "$work/difference"

printf 'ardour: as VST3 and as LV2 two exports of a loaded session are the same, %s samples\n' \
    "$(soxi -s "$work/first.wav" 2>/dev/null)"
