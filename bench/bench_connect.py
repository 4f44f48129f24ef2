#!/usr/bin/env python3
"""What a connect costs, against qrx-sim as a process of its own, each
figure beside its baseline from the same run:

  - qrx status (a whole run of the program: start, connect, eleven values,
    goodbye) beside qrx --help (the same program, started and ended, no
    link); goal: status under 0.3 s;
  - qrx status --timeout 1 against an address where nothing listens; goal:
    within the bound + 0.5 s;
  - the Python package's Robot(address) connect and close, and the connect
    alone, beside the described connect_robot() (five checks a second apart)
    in the same process;
  - Robot(dead address, timeout=1.0) until it raises ConnectionRefused.

  bench_connect.py BUILD_DIR [RUNS]     (RUNS per figure, default 10)

Prints one line per figure: mean, min and max in milliseconds.
"""
from __future__ import annotations

import ctypes
import os
import statistics
import subprocess
import sys
import time
from pathlib import Path
from typing import Callable, List

ADDRESS = "127.6.254.1"  # qrx-sim
DEAD = "127.6.254.2"     # nothing listens here


def timed(runs: int, work: Callable[[], None]) -> List[float]:
    figures = []
    for _ in range(runs):
        started = time.perf_counter()
        work()
        figures.append((time.perf_counter() - started) * 1000.0)
    return figures


def report(name: str, figures: List[float]) -> None:
    print(f"{name:<44} mean {statistics.mean(figures):8.1f} ms  min {min(figures):8.1f}  max {max(figures):8.1f}")


def main() -> int:
    build = Path(sys.argv[1]).resolve()
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 10
    qrx = str(build / "tools" / "qrx" / "qrx")
    env = dict(os.environ, QT_LOGGING_RULES="*.debug=false;*.info=false")
    sim = subprocess.Popen([str(build / "sim" / "qrx-sim"), "--address", ADDRESS], stdout=subprocess.PIPE,
                           stderr=subprocess.DEVNULL, text=True)
    try:
        assert sim.stdout and "listening" in sim.stdout.readline()

        def run_qrx(*args: str, expect: int = 0) -> None:
            done = subprocess.run([qrx, *args], env=env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            assert done.returncode == expect, (args, done.returncode)

        report("qrx --help (baseline: start and end)", timed(runs, lambda: run_qrx("--help")))
        report("qrx status", timed(runs, lambda: run_qrx("--host", ADDRESS, "status")))
        report("qrx status --timeout 1, dead address", timed(runs, lambda: run_qrx(
            "--host", DEAD, "--timeout", "1", "status", expect=3)))

        sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "python"))
        os.environ["QRX_HOST_LIBRARY"] = str(build / "src" / "libqrx_host.so")
        os.environ["QT_LOGGING_RULES"] = env["QT_LOGGING_RULES"]
        import qrx_host

        lib = qrx_host.load_library()

        def described() -> None:
            assert lib.connect_robot(ADDRESS.encode()) == 1
            lib.disconnect_robot()

        def connect_only() -> List[float]:
            # The close waits for the link thread, which pauses 200 ms on the
            # controller's mode report after link-up: timed apart.
            figures = []
            for _ in range(runs):
                started = time.perf_counter()
                robot = qrx_host.Robot(ADDRESS, timeout=2.0)
                figures.append((time.perf_counter() - started) * 1000.0)
                robot.close()
            return figures

        def package() -> None:
            qrx_host.Robot(ADDRESS, timeout=2.0).close()

        def dead() -> None:
            try:
                qrx_host.Robot(DEAD, timeout=1.0)
            except qrx_host.ConnectionRefused:
                return
            raise AssertionError("connected to a dead address")

        report("connect_robot + disconnect (baseline)", timed(max(2, runs // 3), described))
        report("Robot(address) + close", timed(runs, package))
        report("Robot(address), the connect alone", connect_only())
        report("Robot(dead address, timeout=1.0)", timed(runs, dead))
    finally:
        sim.terminate()
        sim.wait(10)
    return 0


if __name__ == "__main__":
    sys.exit(main())
