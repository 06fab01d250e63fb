#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
#
# Validates a bundle's Turtle against the LV2 specification and looks it up as hosts do.
#
#   lv2_validate.sh BUNDLE.lv2        0: sound, 1: not, 77: a tool is missing
#
# The framework's generator breaks some rules in every bundle, and calls the plug-in no project. Those, and no
# others, pass.
set -euo pipefail

bundle=$(cd "$1" && pwd)
uri=urn:com.zubrow.Velkor

fail() { printf '%s\n' "$*" >&2; exit 1; }

# fail_showing FILE MESSAGE
fail_showing() { cat "$1" >&2; fail "$2"; }

for tool in lv2_validate sord_validate lv2ls lv2info; do
    command -v "$tool" >/dev/null || { echo "no $tool: skipped"; exit 77; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work

# --- validation -----------------------------------------------------------------------------------

lv2_validate "$bundle"/*.ttl >"$work/report" 2>&1 || true
summary=$(tail -n 1 "$work/report")
[[ $summary =~ ^Found\ [0-9]+\ errors\ among\ [0-9]+\ files ]] ||
    fail_showing "$work/report" "the validator did not finish"

# One line a finding: message, subject, predicate, object. Blank nodes lose their changing numbers.
awk '/^(error|warning):/ { if (finding) print finding; finding = $0; next }
     /^ / { if (finding) { sub(/^ +/, ""); sub(/^b[0-9]+$/, "_"); finding = finding " | " $0 } next }
     /^$/ || /^Skipping file / || /^Found / { next }
     { if (finding) print finding; finding = $0 }
     END { if (finding) print finding }' "$work/report" >"$work/findings"

lv2=http://lv2plug.in/ns
core=$lv2/lv2core
doap=http://usefulinc.com/ns/doap
cat >"$work/expected" <<END
error: Subject not in domain <$doap#Project> | $uri | $doap#(maintainer|release) | _
error: Subject not in domain <$doap#Project> | $uri | $doap#license | https://spdx.org/licenses/AGPL-3.0-or-later
error: Subject not in domain <$core#Port> | $uri:[A-Za-z0-9_]+ | $core#portProperty | $core#(enumeration|toggled)
error: Object not in range <$core#ExtensionData> | $uri:UI | $core#extensionData | $lv2/extensions/ui#noUserResize
error: Object not in range <$core#Feature> | $uri:UI | $core#optionalFeature | $lv2/ext/options#interface
error: Use of undefined property | _ | $uri:Program | 0
error: Property <$uri:Program> has no label | _ | $uri:Program | 0
END
sed -i 's/ | / \\| /g' "$work/expected"

if grep -v -x -E -f "$work/expected" "$work/findings" >"$work/unexpected"; then
    fail_showing "$work/unexpected" "the validator objects to more than the framework's usual"
fi

# --- look-up --------------------------------------------------------------------------------------

export LV2_PATH=${bundle%/*}
[ "$(lv2ls)" = "$uri" ] || fail "lv2ls does not find $uri"
lv2info "$uri" >"$work/info" 2>"$work/complaints" || fail_showing "$work/complaints" "lv2info can't read $uri"
[ ! -s "$work/complaints" ] || fail_showing "$work/complaints" "lv2info complains"
grep -q 'Optional Features: .*hardRTCapable' "$work/info" ||
    fail_showing "$work/info" "it doesn't claim to be fit for real time"

echo "$summary, all of them the framework's usual"
