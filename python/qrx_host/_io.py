"""Inputs and outputs, positions, global variables, motor figures and tools
of :class:`~qrx_host.Robot`."""
from __future__ import annotations

import ctypes
from typing import Callable, Sequence, Tuple

from ._calls import Calls, Floats, doubles, text
from .types import Coord, MotorFigures


class IoVariables(Calls):
    # ---- IO, positions, variables ------------------------------------------
    def position(self, coord: Coord = Coord.JOINT) -> Floats:
        """The current position (6 values) in coord."""
        return self._read(self._lib.get_current_position, 6, "get_current_position", after=(int(coord),))

    def sync_position(self) -> Floats:
        """The external-axis position (5 values)."""
        return self._read(self._lib.get_current_sync_position, 5, "get_current_sync_position")

    def dout(self) -> Tuple[bool, ...]:
        """Digital outputs 1..16 (index 0 is port 1)."""
        return tuple(v != 0 for v in self._read(self._lib.get_dout, 16, "get_dout"))

    def din(self) -> Tuple[bool, ...]:
        """Digital inputs 1..16."""
        return tuple(v != 0 for v in self._read(self._lib.get_din, 16, "get_din"))

    def aout(self) -> Floats:
        return self._read(self._lib.get_aout, 16, "get_aout")

    def ain(self) -> Floats:
        return self._read(self._lib.get_ain, 16, "get_ain")

    def set_dout(self, port: int, on: bool) -> None:
        self._command(lambda: self._lib.set_dout(port, 1 if on else 0), "set_dout")

    def set_aout(self, port: int, value: float) -> None:
        self._command(lambda: self._lib.set_aout(port, value), "set_aout")

    def global_variable(self, name: str) -> float:
        """A global variable ("GI001", "GD002", "GB003")."""
        return self._wait(lambda: float(self._lib.get_global_variant(text(name))), "get_global_variant")

    def set_global_variable(self, name: str, value: float) -> None:
        self._command(lambda: self._lib.set_global_variant(text(name), value), "set_global_variant")

    def global_position(self, name: str) -> Floats:
        """A global position: 7 robot axes then 7 synchronous axes."""
        return self._read(self._lib.get_GPosition, 14, "get_GPosition", before=(text(name),))

    def motor_torque(self) -> MotorFigures:
        return self._motor(self._lib.get_motor_torque, "get_motor_torque")

    def motor_speed(self) -> MotorFigures:
        return self._motor(self._lib.get_motor_vel, "get_motor_vel")

    def _motor(self, function: Callable[..., None], name: str) -> MotorFigures:
        def call() -> MotorFigures:
            rows = [doubles(7), doubles(7), doubles(5), doubles(5)]
            function(*rows)
            return MotorFigures(robot=(tuple(rows[0]), tuple(rows[1])), external=(tuple(rows[2]), tuple(rows[3])))

        return self._wait(call, name)

    # ---- tools -----------------------------------------------------------
    @property
    def tool(self) -> int:
        """The current tool number (0: none)."""
        return int(self._wait(self._lib.get_current_tool_hand, "get_current_tool_hand"))

    @tool.setter
    def tool(self, number: int) -> None:
        self._command(lambda: self._lib.switch_tool_hand(number), "switch_tool_hand")

    def tool_parameters(self, number: int) -> Floats:
        """x, y, z, A, B, C of a tool (0..31)."""
        return self._read(self._lib.query_tool_hand_param, 6, "query_tool_hand_param", before=(number,))

    def set_tool_parameters(self, number: int, values: Sequence[float]) -> None:
        tool = (ctypes.c_double * 6)(*values[:6])
        self._command(lambda: self._lib.set_tool_hand_param(number, tool), "set_tool_hand_param")
