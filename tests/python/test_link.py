"""The link seen from Python: connection events from the library's thread,
reconnection after qrx-sim restarts, and two threads calling at once."""
from __future__ import annotations

import queue
import threading
from typing import List, Tuple

import qrx_host
from qrx_host import LinkEvent, LinkReason
from conftest import Sim, wait_for


def _next(events: "queue.Queue[Tuple[LinkEvent, LinkReason, str]]") -> Tuple[LinkEvent, LinkReason]:
    event, reason, _thread = events.get(timeout=30)
    return event, reason


def test_events_and_reconnection_after_restart(sim: Sim) -> None:
    events: "queue.Queue[Tuple[LinkEvent, LinkReason, str]]" = queue.Queue()
    qrx_host.Robot.on_link_event(lambda e, r: events.put((e, r, threading.current_thread().name)))
    try:
        with qrx_host.Robot(sim.address, timeout=5.0) as robot:
            event, reason, thread = events.get(timeout=30)
            assert (event, reason) == (LinkEvent.UP, LinkReason.NONE)
            assert thread == "qrx_host callbacks"  # delivered on the package's thread, not the caller's
            robot.set_global_variable("GI020", 7)
            assert robot.global_variable("GI020") == 7.0

            sim.stop()
            assert _next(events) == (LinkEvent.DROPPED, LinkReason.CONNECTION_LOST)
            assert wait_for(lambda: not robot.connected, 10)
            sim.start()
            assert _next(events) == (LinkEvent.BACK, LinkReason.NONE)
            assert wait_for(lambda: robot.connected, 20)
            # A fresh controller: its own state, answered again.
            assert robot.global_variable("GI020") == 0.0
            assert robot.mode is qrx_host.Mode.TEACH
        assert _next(events) == (LinkEvent.DROPPED, LinkReason.CLOSED_BY_HOST)
    finally:
        qrx_host.Robot.on_link_event(None)


def test_failing_callback_does_not_stop_delivery(sim: Sim) -> None:
    seen: "queue.Queue[LinkEvent]" = queue.Queue()

    def callback(event: LinkEvent, reason: LinkReason) -> None:
        seen.put(event)
        raise RuntimeError("a host callback that fails")

    qrx_host.Robot.on_link_event(callback)
    try:
        robot = qrx_host.Robot(sim.address, timeout=5.0)
        assert seen.get(timeout=30) is LinkEvent.UP
        robot.close()
        assert seen.get(timeout=30) is LinkEvent.DROPPED
    finally:
        qrx_host.Robot.on_link_event(None)


def test_two_threads_at_once(robot: qrx_host.Robot) -> None:
    robot.set_global_variable("GI030", 30)
    robot.set_dout(5, True)
    assert robot.global_variable("GI030") == 30.0
    failures: List[str] = []

    def variables() -> None:
        for _ in range(40):
            value = robot.global_variable("GI030")
            if value != 30.0:
                failures.append(f"variable {value}")

    def outputs() -> None:
        for _ in range(40):
            out = robot.dout()
            if not out[4]:
                failures.append(f"outputs {out}")

    threads = [threading.Thread(target=variables), threading.Thread(target=outputs)]
    for t in threads:
        t.start()
    for t in threads:
        t.join(60)
    assert not any(t.is_alive() for t in threads)
    assert failures == []
