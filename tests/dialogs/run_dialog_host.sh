#!/usr/bin/env bash
# Runs dialog_host in the given mode against a qrx-sim of its own, with no
# display at all.
#   run_dialog_host.sh <mode> <qrx-sim> <address> <dialog_host>
set -u
HERE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
MODE="$1"
exec env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM \
    "$HERE/../api/run_example.sh" "$2" "$3" "$4" "$MODE"
