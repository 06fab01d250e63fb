#!/usr/bin/env bash
# SPDX-License-Identifier: AGPL-3.0-or-later
#
# plots_current.sh BUILD: whether the manual's plots are what the engine gives now. Exit code 77, skipped, without the
# gnuplot that the committed ones were drawn with.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

case "$(gnuplot --version 2>/dev/null)" in
    "gnuplot 5.4 "*) ;;
    *) printf 'gnuplot 5.4 is not here: skipped\n'; exit 77 ;;
esac

VELKOR_BUILD_DIR=$1 exec scripts/make-plots --check
