#!/usr/bin/env bash
# showDialog(window id) from a plain C host puts the about dialog inside a
# window of another X11 program (xmessage), under Xvfb: the dialog must be
# listed among that window's children. A screenshot of the whole screen is
# kept as x11_embedding.png in the output folder.
#   x11_embedding.sh <qrx-sim> <address> <dialog_host> <x11_screenshot> <output folder>
# Exit 77 (skipped) where Xvfb or the X11 utilities are missing.
set -u
if [ "${1:-}" != "--inside" ]; then
    for tool in xvfb-run Xvfb xwininfo xmessage; do
        if ! command -v "$tool" >/dev/null 2>&1; then
            echo "SKIP: $tool is missing (install xvfb, xauth and x11-utils)"
            exit 77
        fi
    done
    exec xvfb-run -a -s "-screen 0 1024x768x24" "$0" --inside "$@"
fi
shift
SIM="$1" ADDRESS="$2" HOST="$3" SHOT="$4" OUT="$5"
mkdir -p "$OUT"
WORK="$(mktemp -d)"
PIDS=()
cleanup() {
    for pid in "${PIDS[@]}"; do kill "$pid" 2>/dev/null; wait "$pid" 2>/dev/null; done
    rm -rf "$WORK"
}
trap cleanup EXIT

# Waits up to 20 s for a command to succeed.
wait_for() {
    for _ in $(seq 1 400); do
        "$@" >/dev/null 2>&1 && return 0
        sleep 0.05
    done
    return 1
}

"$SIM" --address "$ADDRESS" >"$WORK/sim.log" 2>&1 &
PIDS+=($!)
wait_for grep -q listening "$WORK/sim.log" || { echo "qrx-sim did not start"; cat "$WORK/sim.log"; exit 1; }

xmessage -title qrxparent -geometry 700x520+10+10 "host program window" &
PIDS+=($!)
wait_for xwininfo -name qrxparent || { echo "the parent window never appeared"; exit 1; }
PARENT="$(xwininfo -name qrxparent | awk '/Window id:/ {print $4}')"
echo "parent window $PARENT"

unset QT_QPA_PLATFORM
"$HOST" x11 "$PARENT" "$ADDRESS" >"$WORK/host.log" 2>&1 &
PIDS+=($!)
if ! wait_for grep -q '^shown' "$WORK/host.log"; then
    echo "showDialog did not show the dialog:"; cat "$WORK/host.log"; exit 1
fi
children() { xwininfo -children -id "$PARENT"; }
if ! wait_for sh -c "xwininfo -children -id $PARENT | grep -q 'qrx_host'"; then
    echo "the dialog is not a child of the parent window:"; children; cat "$WORK/host.log"; exit 1
fi
children | grep 'qrx_host'
# The dialog is mapped inside the parent (not an own top-level window).
DIALOG="$(children | awk '/qrx_host/ {print $1; exit}')"
xwininfo -id "$DIALOG" | grep -q 'Map State: IsViewable' || { echo "the dialog is not viewable"; xwininfo -id "$DIALOG"; exit 1; }
if xwininfo -root -children | grep -q "^ *$DIALOG "; then
    echo "the dialog is also a top-level window"; exit 1
fi
wait_for xwininfo -id "$DIALOG"
"$SHOT" "$OUT/x11_embedding.png" || { echo "no screenshot"; exit 1; }
echo "screenshot: $OUT/x11_embedding.png"
