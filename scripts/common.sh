# SPDX-License-Identifier: AGPL-3.0-or-later
# shellcheck shell=bash
# Sourced by run and test: where things are, and how they are built.

export VELKOR_JUCE_DIR="${VELKOR_JUCE_DIR:-}"

# The cache lives in the tree: building writes nothing into anybody's home.
export CCACHE_DIR="${CCACHE_DIR:-$PWD/.deps/ccache}"

# What one working copy compiled of the framework serves the next, if they share a cache.
export CCACHE_BASEDIR="${CCACHE_BASEDIR:-$(dirname "$PWD")}" CCACHE_NOHASHDIR=1

if command -v ccache >/dev/null; then
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

say() { printf '\n== %s\n' "$*"; }

# build PRESET FOLDER [TARGET...]: configures once, then builds.
build()
{
    local preset=$1 folder=$2
    shift 2
    local options=()
    [ -z "$VELKOR_JUCE_DIR" ] || options+=("-DVELKOR_JUCE_DIR=$VELKOR_JUCE_DIR")

    if [ ! -f "$folder/build.ninja" ] || [ "${#options[@]}" -gt 0 ]; then
        say "configuring $folder (builds JUCE's own helper first: a few minutes without output)"
        mkdir -p .deps
        cmake --preset "$preset" "${options[@]}" > "$folder.log" 2>&1 ||
            { cat "$folder.log" >&2; rm -f "$folder.log" "$folder/build.ninja"; return 1; }
        rm -f "$folder.log"
    fi

    say "building $folder"
    cmake --build "$folder" ${1:+--target "$@"}
}
