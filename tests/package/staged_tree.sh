#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
#
# Installs the build into a folder of its own, as the packages do, and looks at what stands there.
#
#   staged_tree.sh BUILD_FOLDER SOURCE_FOLDER VERSION      0: as it should be, 1: not
set -euo pipefail

build=$(cd "$1" && pwd) source=$(cd "$2" && pwd) version=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
tree=$work/tree
umask 022
faults=0

fault() { printf '%s\n' "$*" >&2; faults=$((faults + 1)); }

# same WHAT EXPECTED FOUND
same() { diff -u --label expected "$2" --label found "$3" >&2 || fault "$1 is not what it should be"; }

cmake --install "$build" --prefix "$tree" --component velkor --strip >/dev/null
cd "$tree"

# --- files and modes ------------------------------------------------------------------------------

cat >"$work/expected" <<'END'
755 bin/velkor
755 bin/velkor-render
644 lib/lv2/Velkor.lv2/dsp.ttl
644 lib/lv2/Velkor.lv2/libVelkor.so
644 lib/lv2/Velkor.lv2/manifest.ttl
644 lib/lv2/Velkor.lv2/ui.ttl
644 lib/vst3/Velkor.vst3/Contents/ARCH-linux/Velkor.so
644 lib/vst3/Velkor.vst3/Contents/Resources/moduleinfo.json
644 share/applications/velkor.desktop
644 share/doc/velkor/changelog.gz
644 share/doc/velkor/copyright
644 share/icons/hicolor/128x128/apps/velkor.png
644 share/icons/hicolor/256x256/apps/velkor.png
644 share/icons/hicolor/48x48/apps/velkor.png
644 share/icons/hicolor/scalable/apps/velkor.svg
644 share/man/man1/velkor-render.1.gz
644 share/man/man1/velkor.1.gz
644 share/metainfo/com.zubrow.Velkor.metainfo.xml
END
find . -type f -printf '%m %P\n' |
    sed "s|Contents/$(uname -m)-linux|Contents/ARCH-linux|" | LC_ALL=C sort -k 2 >"$work/found"
same "the list of files" "$work/expected" "$work/found"

# --- libraries and programs -------------------------------------------------------------------------

vst3=$(echo lib/vst3/Velkor.vst3/Contents/*/Velkor.so)
lv2=lib/lv2/Velkor.lv2/libVelkor.so

# exports LIBRARY SYMBOL...
exports()
{
    local library=$1
    shift
    printf '%s\n' "$@" >"$work/expected"
    nm -D --defined-only "$library" | awk '{ print $3 }' | LC_ALL=C sort >"$work/found"
    same "the exported symbols of $library" "$work/expected" "$work/found"
}

exports "$vst3" GetPluginFactory ModuleEntry ModuleExit
exports "$lv2" lv2_descriptor lv2ui_descriptor

# What a plug-in may need: every desktop has these, under the same name in Debian 12 and 13.
common='ld-linux-.*|lib(c|fontconfig|freetype|gcc_s|jpeg|m|png16|stdc\+\+|z)\.so\.[0-9]+'

for library in "$vst3" "$lv2"; do
    readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -v -x -E "$common" &&
        fault "$library needs the library above"
done

for file in "$vst3" "$lv2" bin/velkor bin/velkor-render; do
    ! grep -q -F -e "$source" -e "$build" "$file" || fault "$file holds a path of the build"
done

# --- one class, one version -------------------------------------------------------------------------

# Hosts find the plug-in of a session again by this.
grep -q -F '"CID": "ABCDEF019182FAEB5A627277566C6B72"' lib/vst3/Velkor.vst3/Contents/Resources/moduleinfo.json ||
    fault "the VST3 bundle is of another class"

HOME=$work/home bin/velkor-render --version | grep -q -F "$version" || fault "velkor-render is not of version $version"
grep -q -F "doap:revision \"$version\"" lib/lv2/Velkor.lv2/dsp.ttl || fault "the LV2 bundle is not of version $version"

bin/velkor-render --help | grep -o -E -e '--[a-z-]+' | sort -u >"$work/expected"
gzip -dc share/man/man1/velkor-render.1.gz | sed 's/\\-/-/g; s/velkor-render//g' | grep -o -E -e '--[a-z-]+' |
    sort -u >"$work/found"
same "the list of options in velkor-render.1" "$work/expected" "$work/found"

# A paragraph for every licence that a file is under.
sed -n 's/^License: //p' share/doc/velkor/copyright | sort | uniq -c | awk '$1 < 2 { print $2 }' >"$work/lonely"
[ ! -s "$work/lonely" ] || fault "licences without a text or without a file: $(tr '\n' ' ' <"$work/lonely")"

[ "$faults" = 0 ] || exit 1
printf '%s files, %s KiB\n' "$(find . -type f | wc -l)" "$(du -sk . | cut -f 1)"
