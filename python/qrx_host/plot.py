"""A picture of a recorded session: what the robot did.

    python3 -m qrx_host.plot session.pcap -o session.png

Top: the joint positions over time (one line per joint, from the position
reports in joint coordinates, 0x2F08 and 0x2A03), with the controller's
errors and warnings (0x2B03, 0x2B04) marked at their times with their texts.
Bottom: the servo state (0x2003), the operation mode (0x2103) and the
running state (0x3D03) as bands.
"""
from __future__ import annotations

import argparse
import sys
from typing import Any, Callable, Dict, List, Optional, Sequence, Tuple

import matplotlib.pyplot as plt  # type: ignore[import]
from matplotlib.figure import Figure  # type: ignore[import]

from . import recording
from .types import Mode, ServoState

POSITION_CODES = (0x2F08, 0x2A03)
ERROR, WARNING = 0x2B03, 0x2B04
RUNNING = {0: "stopped", 1: "paused", 2: "running"}  # 0x3D03 "status", as qrx status shows it
# band: (name, code, key, how a value reads)
BANDS: List[Tuple[str, int, str, Callable[[int], str]]] = [
    ("servo", 0x2003, "status", lambda v: ServoState(v).name.lower() if v in ServoState._value2member_map_ else str(v)),
    ("mode", 0x2103, "mode", lambda v: Mode(v).name.lower() if v in Mode._value2member_map_ else str(v)),
    ("running", 0x3D03, "status", lambda v: RUNNING.get(v, "state %s" % v)),
]
MIN_JOINTS = 6


def _joint_positions(frame: recording.Frame) -> Optional[List[float]]:
    data = frame.json
    if not isinstance(data, dict) or data.get("coord", 0) != 0:
        return None
    values = data.get("posDeg", data.get("pos"))
    if not isinstance(values, list) or not all(isinstance(v, (int, float)) for v in values):
        return None
    return [float(v) for v in values]


def _message_text(frame: recording.Frame) -> str:
    data = frame.json
    if isinstance(data, dict) and "data" in data:
        return str(data["data"])
    return frame.payload.decode("utf-8", "replace").strip()


def _bands(frames: Sequence[recording.Frame], start: float, end: float) -> Dict[str, List[Tuple[float, float, str]]]:
    """Per band: (from, to, label) spans, each value held until the next report."""
    spans: Dict[str, List[Tuple[float, float, str]]] = {}
    for name, code, key, label in BANDS:
        changes: List[Tuple[float, str]] = []
        for f in frames:
            if f.code == code and f.direction == recording.FROM_CONTROLLER and isinstance(f.json, dict) \
                    and isinstance(f.json.get(key), int):
                text = label(f.json[key])
                if not changes or changes[-1][1] != text:
                    changes.append((f.time - start, text))
        spans[name] = [(t, (changes[i + 1][0] if i + 1 < len(changes) else end - start), text)
                       for i, (t, text) in enumerate(changes)]
    return spans


def figure(frames: Sequence[recording.Frame], title: str = "") -> Figure:
    """The figure of a session (see the module's text)."""
    reports = [f for f in frames if f.direction == recording.FROM_CONTROLLER and not f.file_connection]
    start = frames[0].time if frames else 0.0
    end = frames[-1].time if frames else 1.0
    fig, (joints, bands) = plt.subplots(2, 1, sharex=True, figsize=(11, 6.5),
                                        gridspec_kw={"height_ratios": [3, 1]})
    samples = [(f.time - start, p) for f in reports if f.code in POSITION_CODES
               for p in [_joint_positions(f)] if p is not None]
    count = max((len(p) for _, p in samples), default=0)
    used = [j for j in range(count) if j < MIN_JOINTS or any(p[j] != 0.0 for _, p in samples if j < len(p))]
    for j in used:
        points = [(t, p[j]) for t, p in samples if j < len(p)]
        joints.plot([t for t, _ in points], [v for _, v in points], label="J%d" % (j + 1), linewidth=1.4)
    for f in reports:
        if f.code in (ERROR, WARNING):
            t = f.time - start
            color = "red" if f.code == ERROR else "orange"
            joints.axvline(t, color=color, linestyle="--", linewidth=0.8)
            joints.plot([t], [1.0], marker="v" if f.code == ERROR else "^", color=color, markersize=9,
                        transform=joints.get_xaxis_transform(), clip_on=False,
                        label="_error" if f.code == ERROR else "_warning")
            joints.annotate(("error: " if f.code == ERROR else "warning: ") + _message_text(f), xy=(t, 0.97),
                            xycoords=("data", "axes fraction"), rotation=90, va="top", ha="right", fontsize=8,
                            color=color)
    joints.set_ylabel("joint position (deg)")
    joints.set_title(title or "recorded session")
    if used:
        joints.legend(loc="upper left", ncol=len(used), fontsize=8)
    joints.grid(True, alpha=0.3)

    spans = _bands(reports, start, end)
    colors = plt.get_cmap("tab20").colors
    palette: Dict[str, Any] = {}
    for row, (name, _, _, _) in enumerate(BANDS):
        for t0, t1, text in spans[name]:
            color = palette.setdefault(text, colors[len(palette) % len(colors)])
            bands.broken_barh([(t0, max(t1 - t0, 1e-3))], (row - 0.4, 0.8), facecolors=color)
            if t1 - t0 >= 0.05 * (end - start):  # a label only where it fits
                bands.text(t0, row, " " + text, va="center", ha="left", fontsize=8, clip_on=True)
    bands.set_yticks(range(len(BANDS)))
    bands.set_yticklabels([name for name, _, _, _ in BANDS])
    bands.set_ylim(-0.6, len(BANDS) - 0.4)
    bands.set_xlabel("time (s) from the first frame")
    bands.set_xlim(0, max(end - start, 1e-3))
    fig.tight_layout()
    return fig


def main(argv: Optional[Sequence[str]] = None) -> int:
    parser = argparse.ArgumentParser(prog="python3 -m qrx_host.plot",
                                     description="Plot a recorded session (QRX_RECORD) into a picture.")
    parser.add_argument("recording", help="the pcap file")
    parser.add_argument("-o", "--output", required=True, help="the picture to write (png, svg, pdf)")
    parser.add_argument("--title", default="", help="the picture's title (default: the file name)")
    args = parser.parse_args(argv)
    plt.switch_backend("Agg")  # a file, no window
    try:
        frames = recording.read(args.recording)
    except recording.RecordingError as error:
        print("qrx_host.plot: %s: %s; plotting the %d frames before it" % (args.recording, error,
              len(error.frames)), file=sys.stderr)
        frames = error.frames
    except OSError as error:
        print("qrx_host.plot: %s" % error, file=sys.stderr)
        return 1
    figure(frames, args.title or args.recording).savefig(args.output, dpi=100)
    return 0


if __name__ == "__main__":
    sys.exit(main())
