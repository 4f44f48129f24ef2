"""Refusals and bounds a host can act on: a command the controller refuses
raises Refused with the controller's text in the call that sent it, waits
take the Robot's timeout, and the timeout bounds the connect too."""
from __future__ import annotations

import time
from typing import Any, Callable

import pytest

import qrx_host
from conftest import Sim, next_address
from qrx_host import Coord

FAR = (170.0, -80.0, 60.0, 0.0, 90.0, 170.0)


# Refused while the servo is off, each by the controller's error 0x2B03
# answering the command's own code.
@pytest.mark.parametrize("call, command, text", [
    pytest.param(lambda r: r.movj(FAR), 0x4501, "move refused: the servo is not running", id="movj"),
    pytest.param(lambda r: r.movl(FAR), 0x4502, "move refused: the servo is not running", id="movl"),
    pytest.param(lambda r: r.open_job("NOSUCH"), 0x3114, "job not found: NOSUCH", id="open unknown job"),
    pytest.param(lambda r: setattr(r, "mode", 7), 0x2101, "mode refused: 7 is outside 0..2", id="mode out of range"),
    pytest.param(lambda r: r.set_dout(40, True), 0x3601, "digital output port refused: 40 is outside 1..16",
                 id="output port out of range"),
    # Not sent at all: the library itself runs no job while the servo is off.
    pytest.param(lambda r: r.run_job("A"), 0x2501, "run_job: not sent, the servo is off", id="run job"),
    pytest.param(lambda r: r.start_jogging(1), 0x2901, "start_jogging: not sent, the servo is not running", id="jog"),
])
def test_refused_command_raises_in_its_own_call(robot: qrx_host.Robot, call: Callable[[qrx_host.Robot], Any],
                                                command: int, text: str) -> None:
    with pytest.raises(qrx_host.Refused) as raised:
        call(robot)
    assert str(raised.value) == text
    assert raised.value.command == command
    # The refusal belongs to that call: the next one is not refused.
    robot.mode = qrx_host.Mode.TEACH
    assert robot.position() is not None


def _jog_in_remote_mode(robot: qrx_host.Robot) -> None:
    robot.mode = qrx_host.Mode.REMOTE
    robot.start_jogging(2, False)


# Refused by the controller with the drives running.
@pytest.mark.parametrize("call, command, text", [
    pytest.param(lambda r: r.run_job("NOSUCH"), 0x2501, "job not found: NOSUCH", id="unknown job"),
    pytest.param(_jog_in_remote_mode, 0x2901, "jog refused: not in teach mode", id="jog outside teach mode"),
])
def test_refused_once_the_drives_run(robot: qrx_host.Robot, call: Callable[[qrx_host.Robot], Any], command: int,
                                     text: str) -> None:
    robot.power_on()
    with pytest.raises(qrx_host.Refused) as raised:
        call(robot)
    assert (str(raised.value), raised.value.command) == (text, command)


def test_wait_move_done_takes_the_robots_timeout(robot: qrx_host.Robot) -> None:
    robot.power_on()
    robot.movj(FAR, vel=1, acc=1, dec=1)  # far and slow: minutes away
    robot.timeout = 0.5
    started = time.monotonic()
    with pytest.raises(qrx_host.CallTimedOut):
        robot.wait_move_done(FAR, Coord.JOINT)
    # The Robot's 0.5 s, not a bound of its own (30 s before).
    assert time.monotonic() - started < 10.0


def test_connect_takes_the_robots_timeout() -> None:
    dead = next_address()  # nothing listens there
    started = time.monotonic()
    with pytest.raises(qrx_host.ConnectionRefused):
        qrx_host.Robot(dead, timeout=0.5)
    # The 0.5 s bound, not the five checks a second apart (5 s).
    assert time.monotonic() - started < 4.0

