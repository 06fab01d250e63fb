#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
#
# Installs from the archive's tree into a home of its own, over an older copy, and takes it away again.
#
#   install_script.sh BUILD_FOLDER        0: nothing is left and nothing of the user's is gone, 1: otherwise
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
umask 022
tree=$work/velkor
unset XDG_DATA_HOME
export HOME="$work/a home & more"

fail() { printf '%s\n' "$*" >&2; exit 1; }
listing() { (cd "$HOME" && find . -printf '%y %m %p\n' | LC_ALL=C sort -k 3); }

for component in velkor archive; do
    cmake --install "$1" --prefix "$tree" --component "$component" --strip >/dev/null
done

# A user with plug-ins and programs of his own, and presets.
mkdir -p "$HOME/.lv2/Other.lv2" "$HOME/.local/bin" "$HOME/Music/Zubrow Labs/Velkor/Presets/User"
touch "$HOME/.lv2/Other.lv2/manifest.ttl" "$HOME/.local/bin/other" \
    "$HOME/Music/Zubrow Labs/Velkor/Presets/User/Mine.zbpreset"
listing >"$work/before"

"$tree/install" >"$work/said" 2>&1 || { cat "$work/said" >&2; fail "install failed"; }
! grep warning "$work/said" || fail "a library is missing"
listing >"$work/installed"
diff -r "$tree/lib/vst3/Velkor.vst3" "$HOME/.vst3/Velkor.vst3"
diff -r "$tree/lib/lv2/Velkor.lv2" "$HOME/.lv2/Velkor.lv2"
"$HOME/.local/bin/velkor-render" --version >/dev/null
grep -q -x -F "Exec=\"$HOME/.local/bin/velkor\"" "$HOME/.local/share/applications/velkor.desktop" ||
    fail "the menu's entry does not start the program that was installed"

# Over an older version with a file that the new one lacks, and over a build of one's own.
echo "file $HOME/.local/bin/velkor-old" >>"$HOME/.local/share/velkor/installed"
touch "$HOME/.local/bin/velkor-old" "$HOME/.lv2/Velkor.lv2/stale.ttl"
"$tree/install" >/dev/null
listing | diff "$work/installed" - || fail "a second installation left something of the first"

# Elsewhere, and without a word of it when it goes; from a place that a search path of folders hides.
"$HOME/.local/share/velkor/install" --uninstall >/dev/null
(cd "$work" && XDG_DATA_HOME="$HOME/data of 50% \$" CDPATH=/ sh velkor/install >/dev/null)
"$HOME/data of 50% \$/velkor/install" --uninstall >/dev/null
listing | diff "$work/before" - || fail "the removal from elsewhere left something"
! "$tree/install" --uninstall 2>/dev/null || fail "a removal of nothing was none"
"$tree/install" >/dev/null

# The copy that was installed removes it, also after an installation that broke off.
rm "$HOME/.local/bin/velkor"
rm -r "$tree"
"$HOME/.local/share/velkor/install" --uninstall >/dev/null
listing | diff "$work/before" - || fail "the removal left something, or took something of the user's"
