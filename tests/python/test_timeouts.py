"""Bounded calls: a controller that stops answering makes a waiting call
raise CallTimedOut after the bound, per thread, and Ctrl-C ends a call that
waits without one."""
from __future__ import annotations

import os
import signal
import subprocess
import sys
import textwrap
import threading
import time
from typing import Any, Callable

import pytest

import qrx_host
from conftest import Sim, wait_for

CALLS = [
    pytest.param(lambda r: r.position(), id="position"),
    pytest.param(lambda r: r.mode, id="mode"),
    pytest.param(lambda r: r.dout(), id="digital outputs"),
    pytest.param(lambda r: r.global_variable("GD001"), id="global variable"),
    pytest.param(lambda r: r.tool, id="tool"),
    pytest.param(lambda r: r.running_state, id="running state"),
]


@pytest.mark.parametrize("call", CALLS)
def test_silent_controller_times_out(sim: Sim, robot: qrx_host.Robot, call: Callable[[qrx_host.Robot], Any]) -> None:
    call(robot)  # answered
    robot.timeout = 0.3
    assert robot.timeout == pytest.approx(0.3)
    sim.freeze()
    try:
        # A reply the controller sent before it stopped may still answer one
        # call (the controller's own reports on connect share codes with the
        # answers, so the first call may have been answered by one of them).
        # Then nothing more comes: a call within the next three must time out.
        raised = None
        for _ in range(3):
            started = time.monotonic()
            try:
                call(robot)
            except qrx_host.CallTimedOut as error:
                raised = error
                break
        assert raised is not None, "three calls answered by a stopped controller"
        assert time.monotonic() - started >= 0.29
        assert isinstance(raised, TimeoutError)
    finally:
        sim.thaw()
    robot.timeout = 5.0
    call(robot)  # answered again, no exception


def test_time_out_is_the_callers_own(sim: Sim, robot: qrx_host.Robot) -> None:
    robot.timeout = 0.3
    outcome: dict = {}

    def blocked() -> None:
        try:
            robot.position()
            outcome["raised"] = None
        except qrx_host.CallTimedOut as error:
            outcome["raised"] = error

    sim.freeze()
    worker = threading.Thread(target=blocked)
    worker.start()
    worker.join(10)
    sim.thaw()
    assert isinstance(outcome.get("raised"), qrx_host.CallTimedOut)
    robot.timeout = 5.0
    assert robot.mode in tuple(qrx_host.Mode)  # this thread: answered, no exception


def test_connection_refused(sim: Sim) -> None:
    sim.stop()
    started = time.monotonic()
    with pytest.raises(qrx_host.ConnectionRefused) as raised:
        qrx_host.Robot(sim.address, timeout=1.0)
    assert isinstance(raised.value, ConnectionRefusedError)
    assert time.monotonic() - started < 30


def test_ctrl_c_interrupts_an_unbounded_wait(sim: Sim) -> None:
    script = textwrap.dedent(f"""
        import sys, qrx_host
        robot = qrx_host.Robot({sim.address!r}, timeout=None)
        print("connected", flush=True)
        try:
            sys.stdin.readline()
            print("waiting", flush=True)
            robot.position()
            print("answered", flush=True)
        except KeyboardInterrupt:
            print("interrupted", flush=True)
            sys.exit(0)
    """)
    child = subprocess.Popen([sys.executable, "-c", script], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                             text=True, env=os.environ)
    try:
        assert child.stdout is not None and child.stdin is not None
        assert child.stdout.readline().strip() == "connected"
        sim.freeze()  # the position query will wait for ever
        child.stdin.write("go\n")
        child.stdin.flush()
        assert child.stdout.readline().strip() == "waiting"
        child.send_signal(signal.SIGINT)
        out, _ = child.communicate(timeout=20)
        assert out.strip() == "interrupted"
        assert child.returncode == 0
    finally:
        sim.thaw()
        if child.poll() is None:
            child.kill()
