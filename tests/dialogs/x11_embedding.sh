#!/usr/bin/env bash
# showDialog(window id) from a plain C host puts the about dialog inside a
# window of another X11 program (xmessage), under Xvfb: the dialog must be
# listed among that window's children. A screenshot of the whole screen is
# kept as x11_embedding.png in the output folder.
#   x11_embedding.sh <qrx-sim> <address> <dialog_host> <x11_screenshot> <output folder>
# Exit 77 (skipped) where Xvfb or the X11 utilities are missing.
set -u
for tool in Xvfb xwininfo xmessage; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "SKIP: $tool is missing (install xvfb and x11-utils)"
        exit 77
    fi
done
SIM="$1" ADDRESS="$2" HOST="$3" SHOT="$4" OUT="$5"
mkdir -p "$OUT"
WORK="$(mktemp -d)"
PIDS=()
# Stops the programs in the reverse order of their start, the X server last.
cleanup() {
    for ((i = ${#PIDS[@]} - 1; i >= 0; i--)); do
        kill "${PIDS[i]}" 2>/dev/null; wait "${PIDS[i]}" 2>/dev/null
    done
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

# Xvfb picks a free display itself and writes its number once it accepts
# clients (-displayfd): two servers started at once never share a number, as
# they can when a display is chosen before the server owns it.
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$WORK/display" 2>"$WORK/xvfb.log" &
PIDS+=($!)
wait_for test -s "$WORK/display" || { echo "Xvfb did not start"; cat "$WORK/xvfb.log"; exit 1; }
export DISPLAY=":$(head -n1 "$WORK/display")"
echo "display $DISPLAY"

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
