#!/usr/bin/env bash
# Runs an example host program against a qrx-sim of its own.
#   run_example.sh <qrx-sim> <address> <program> [arguments...]
# The program gets the address as its last argument; qrx-sim gets a job
# folder of its own (uploads land there, jobs run from it). qrx-sim is stopped
# afterwards; the exit status is the program's. QRX_SIM_ARGS adds options of
# qrx-sim (e.g. --count 2).
set -u
SIM="$1"
ADDRESS="$2"
shift 2

LOG="$(mktemp)"
JOBS="$(mktemp -d)" # the controller's job folder (uploads land there)
# shellcheck disable=SC2086 # QRX_SIM_ARGS is a list of words
"$SIM" --address "$ADDRESS" --job-dir "$JOBS" ${QRX_SIM_ARGS:-} >"$LOG" 2>&1 &
SIM_PID=$!
cleanup() {
    kill "$SIM_PID" 2>/dev/null
    wait "$SIM_PID" 2>/dev/null
    rm -f "$LOG"
    rm -rf "$JOBS"
}
trap cleanup EXIT

# qrx-sim prints one line once it listens.
for _ in $(seq 1 200); do
    grep -q "listening" "$LOG" && break
    if ! kill -0 "$SIM_PID" 2>/dev/null; then
        echo "qrx-sim did not start:" >&2
        cat "$LOG" >&2
        exit 2
    fi
    sleep 0.05
done
grep -q "listening" "$LOG" || { echo "qrx-sim is not listening" >&2; exit 2; }

"$@" "$ADDRESS"
