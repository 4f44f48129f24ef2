"""Each family of calls through the package against qrx-sim: results come
back as Python values (enums, tuples, bools) and what is set reads back."""
from __future__ import annotations

import queue
from typing import Any, Callable

import pytest

import qrx_host
from qrx_host import Coord, Mode, Move, ServoState
from conftest import wait_for

Setter = Callable[[qrx_host.Robot, Any], None]
Getter = Callable[[qrx_host.Robot], Any]


def _set_mode(r: qrx_host.Robot, v: Any) -> None:
    r.mode = v


def _set_coord(r: qrx_host.Robot, v: Any) -> None:
    r.coord = v


def _set_speed(r: qrx_host.Robot, v: Any) -> None:
    r.jog_speed = v


def _set_tool(r: qrx_host.Robot, v: Any) -> None:
    r.tool = v


@pytest.mark.parametrize("setter, getter, value, kind", [
    pytest.param(_set_mode, lambda r: r.mode, Mode.RUN, Mode, id="mode"),
    pytest.param(_set_mode, lambda r: r.mode, Mode.REMOTE, Mode, id="mode remote"),
    pytest.param(_set_coord, lambda r: r.coord, Coord.TOOL, Coord, id="coordinate system"),
    pytest.param(_set_speed, lambda r: r.jog_speed, 37, int, id="jog speed"),
    pytest.param(_set_tool, lambda r: r.tool, 5, int, id="tool"),
    pytest.param(lambda r, v: r.set_global_variable("GI007", v), lambda r: r.global_variable("GI007"), 42.0, float,
                 id="global integer"),
    pytest.param(lambda r, v: r.set_global_variable("GD011", v), lambda r: r.global_variable("GD011"), -2.5, float,
                 id="global real"),
    pytest.param(lambda r, v: r.set_dout(3, v), lambda r: r.dout()[2], True, bool, id="digital output 3"),
    pytest.param(lambda r, v: r.set_tool_parameters(4, v), lambda r: r.tool_parameters(4),
                 (1.0, 2.0, 3.0, 10.0, 20.0, 30.0), tuple, id="tool parameters"),
])
def test_set_then_read_back(robot: qrx_host.Robot, setter: Setter, getter: Getter, value: Any, kind: type) -> None:
    before = getter(robot)
    assert before != value
    setter(robot, value)
    # With matched replies each read is the answer to its own query, and the
    # controller answers in order: the first read after the set shows it.
    result = getter(robot)
    assert result == value
    assert isinstance(result, kind)


def test_power_move_and_position(robot: qrx_host.Robot) -> None:
    assert robot.servo_state is ServoState.STOP
    # power_on returns once the drives run, so a move right after is taken.
    assert robot.power_on() is True
    assert robot.servo_state is ServoState.RUNNING
    target = (12.0, -8.0, 4.0, 0.0, 15.0, 30.0)
    robot.movj(target, vel=100, acc=100, dec=100)
    robot.wait_move_done(target, tolerance=1e-3, timeout=30)
    position = robot.position(Coord.JOINT)
    assert len(position) == 6 and all(isinstance(v, float) for v in position)
    assert position == pytest.approx(target, abs=1e-3)
    robot.wait_move_done(None, timeout=10)  # nothing runs
    robot.power_off()


def test_robot_type_is_the_reported_model(robot: qrx_host.Robot) -> None:
    robot.mode  # answered after the start-up reports, the model among them
    assert robot.robot_type == (1, "R_GENERAL_6S")  # qrx-sim reports a six-axis robot


def test_io_reads_are_tuples_of_sixteen(robot: qrx_host.Robot) -> None:
    robot.set_aout(2, 3.5)
    assert robot.aout()[1] == 3.5
    for read in (robot.dout, robot.din, robot.aout, robot.ain):
        values = read()
        assert isinstance(values, tuple) and len(values) == 16


# The simulator's trace shows the first 240 characters of a queue: enough
# for the first instruction or two, checked in order.
@pytest.mark.parametrize("instructions, shown", [
    pytest.param([qrx_host.Wait(0.5), Move((1, 2, 3, 4, 5, 6))], ['"duration":0.50', '"type":7', '{"ParaACC"'],
                 id="wait then move"),
    pytest.param([qrx_host.DigitalOut(2, True), qrx_host.Wait(1.0)], ['"portId":2', '"portValue":1', '"type":16'],
                 id="output then wait"),
    pytest.param([qrx_host.DigitalOut(7, False)], ['"portId":7', '"portValue":0', '"type":16'], id="output off"),
    pytest.param([Move((1, 2, 3, 4, 5, 6), kind=qrx_host.MoveKind.MOVL, velocity=20)], ['{"data":[{"ParaACC"'],
                 id="linear move"),
    pytest.param([Move((1, 2, 3, 4, 5, 6), velocity=500)], None, id="velocity out of range refused"),
    pytest.param([qrx_host.Wait(0.5), qrx_host.DigitalOut(17, True)], None, id="port out of range refused"),
])
def test_motion_queue_from_dataclasses(sim: Any, robot: qrx_host.Robot, instructions: list, shown: Any) -> None:
    robot.continuous_mode(True)
    robot.send_queue(instructions)
    robot.continuous_stop()  # a marker: anything the queue sent arrives before it
    assert wait_for(lambda: sim.received(0x50B9), 10)
    queued = sim.received(0x50B4)
    if shown is None:
        assert queued == []  # one bad value refuses the whole queue
        return
    assert len(queued) == 1
    position = 0
    for text in shown:
        position = queued[0].index(text, position) + len(text)


def test_controller_messages_reach_a_python_callback(robot: qrx_host.Robot) -> None:
    texts: "queue.Queue[str]" = queue.Queue()
    qrx_host.Robot.on_message(texts.put)
    with pytest.raises(qrx_host.Refused):
        robot.open_job("NO_SUCH_JOB")
    assert texts.get(timeout=10) == "错误： job not found: NO_SUCH_JOB"
    # kept as the last message once the library has delivered it
    assert wait_for(lambda: robot.last_message == "job not found: NO_SUCH_JOB", 10)


def test_closed_robot_refuses_waiting_calls(sim: Any) -> None:
    robot = qrx_host.Robot(sim.address, timeout=2.0)
    robot.close()
    with pytest.raises(qrx_host.NotConnected):
        robot.position()
    robot.connect()
    assert robot.connected
    robot.close()
