"""Moves of :class:`~qrx_host.Robot`, one at a time or as a continuous-motion
queue, and the wait for a move to end."""
from __future__ import annotations

import ctypes
from typing import Iterable, Optional, Sequence

from ._calls import Calls
from ._records import MotionRecord
from .types import CallTimedOut, Coord, DigitalOut, Instruction, Move, Wait

# wait_move_done(timeout=ROBOT_TIMEOUT): the Robot's timeout.
ROBOT_TIMEOUT = -1.0


class Motion(Calls):
    # ---- motion ----------------------------------------------------------
    def movj(self, target: Sequence[float], vel: int = 50, coord: Coord = Coord.JOINT, acc: int = 50,
             dec: int = 50) -> None:
        """Joint move to target (6 values); returns once the controller has
        taken it (raises Refused when it refuses), without waiting for the
        move to end."""
        goal = (ctypes.c_double * 6)(*target[:6])
        self._command(lambda: self._lib.robot_movj(goal, vel, int(coord), acc, dec), "robot_movj")

    def movl(self, target: Sequence[float], vel: int = 50, coord: Coord = Coord.JOINT, acc: int = 50,
             dec: int = 50) -> None:
        """Linear move to target (6 values); like :meth:`movj`."""
        goal = (ctypes.c_double * 6)(*target[:6])
        self._command(lambda: self._lib.robot_movl(goal, vel, int(coord), acc, dec), "robot_movl")

    def wait_move_done(self, target: Optional[Sequence[float]] = None, coord: Coord = Coord.JOINT,
                       tolerance: float = 1e-3, timeout: Optional[float] = ROBOT_TIMEOUT) -> None:
        """Waits until every axis is within tolerance of target (or, without
        a target, until nothing runs); raises CallTimedOut after timeout
        (by default the Robot's; None: no bound) and Refused when the
        controller refuses meanwhile."""
        goal = (ctypes.c_double * 6)(*target[:6]) if target is not None else None
        if timeout == ROBOT_TIMEOUT:
            timeout = self._timeout_s
        ms = 0 if not timeout else max(1, int(timeout * 1000))
        done = self._wait(lambda: int(self._lib.qrx_wait_move_done(goal, int(coord), tolerance, ms)), "wait_move_done")
        if done != 1:
            raise CallTimedOut("wait_move_done: the robot did not get there in time")

    # ---- continuous motion -------------------------------------------------
    def continuous_mode(self, on: bool) -> None:
        self._command(lambda: self._lib.continuous_motion_mode(1 if on else 0), "continuous_motion_mode")

    def continuous_start(self) -> None:
        self._command(self._lib.continuous_motion_start, "continuous_motion_start")

    def continuous_suspend(self) -> None:
        self._command(self._lib.continuous_motion_suspend, "continuous_motion_suspend")

    def continuous_stop(self) -> None:
        self._command(self._lib.continuous_motion_stop, "continuous_motion_stop")

    def send_queue(self, instructions: Iterable[Instruction]) -> None:
        """Sends the instructions as one continuous-motion queue. A value out
        of range refuses the whole queue (nothing is sent; the library logs
        it)."""
        records = [_record(i) for i in instructions]
        array = (MotionRecord * len(records))(*records)
        self._command(lambda: self._lib.send_continuous_motion_queue(array, len(records)),
                      "send_continuous_motion_queue")


def _put(struct: ctypes.Structure, field: str, text: str) -> None:
    """Sets a fixed-size text field (NUL included), shortened to fit."""
    size = getattr(type(struct), field).size
    setattr(struct, field, text.encode("latin-1")[: size - 1])


def _record(instruction: Instruction) -> MotionRecord:
    record = MotionRecord()
    if isinstance(instruction, Move):
        record.type = int(instruction.kind)
        move = record.u.move
        move.velocity.value = instruction.velocity
        move.vUnit = int(instruction.unit)
        move.acc.value = instruction.acc
        move.dec.value = instruction.dec
        move.pl.value = instruction.blending
        move.ctype = int(instruction.coord)
        _put(move, "positionId", instruction.name)
        _put(move.pos, "name", instruction.name)
        move.pos.ctype = int(instruction.coord)
        for i, value in enumerate(instruction.target[:21]):
            move.pos.data[i] = value
    elif isinstance(instruction, Wait):
        record.type = 7
        record.u.timer.duration.value = instruction.seconds
    elif isinstance(instruction, DigitalOut):
        record.type = 16
        record.u.io.portId = instruction.port
        record.u.io.portValue = 1 if instruction.on else 0
    else:
        raise TypeError(f"not a queue instruction: {instruction!r}")
    return record
