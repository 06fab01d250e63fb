# shellcheck shell=bash
# SPDX-License-Identifier: AGPL-3.0-or-later
#
# For scripts to source: instructions per sample frame of a program that takes a number of blocks, by valgrind.

shopt -s inherit_errexit  # a count is read from a command substitution, and its failure must show

# More than a second of sound first, so that every delay line has come round.
short_frames=57344
long_frames=98304

fail() { printf '%s: %s\n' "${0##*/}" "$*" >&2; exit 1; }

counting_scratch=$(mktemp -d)
trap 'rm -rf "$counting_scratch"' EXIT

# count_total FUNCTION PROGRAM...: instructions inside the functions of that pattern, which must be symbols of the
# program and not inlined.
count_total() {
    local function=$1 profile=$counting_scratch/profile log=$counting_scratch/log
    shift
    valgrind -q --tool=callgrind --callgrind-out-file="$profile" --toggle-collect="$function" "$@" >"$log" 2>&1 ||
        { cat "$log" >&2; fail "the counted run failed: $*"; }
    awk '/^totals:/ && $2 > 0 { print $2; found = 1 } END { exit !found }' "$profile" ||
        fail "no count in the profile: is the name of $function gone from $1?"
}

# count_per_frame FUNCTION BLOCK PROGRAM...: instructions per frame; a word {} of the program's is the number of blocks
# of BLOCK frames. The difference of a long and a short run leaves out start-up, fade-in and symbol look-up.
count_per_frame() {
    local function=$1 block=$2 short long
    shift 2
    short=$(count_total "$function" "${@/#"{}"/$((short_frames / block))}")
    long=$(count_total "$function" "${@/#"{}"/$((long_frames / block))}")
    awk -v n=$((long - short)) -v frames=$((long_frames / block * block - short_frames / block * block)) \
        'BEGIN { printf "%.1f", n / frames }'
}

# compiler_of BUILD_DIR: the C++ compiler's name and major version, and whether the sample loop's AVX2 form runs here.
compiler_of() {
    local avx2=
    grep -qw avx2 /proc/cpuinfo && avx2=', AVX2'
    sed -n -e 's/^set(CMAKE_CXX_COMPILER_ID "\(.*\)")/\1/p' -e 's/^set(CMAKE_CXX_COMPILER_VERSION "\([0-9]*\).*/\1/p' \
        "$1"/CMakeFiles/*/CMakeCXXCompiler.cmake | tr '\n' ' ' | sed "s/ $/$avx2/"
}
