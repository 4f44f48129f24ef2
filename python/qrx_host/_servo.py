"""The servo, the operation mode, the coordinate system, the jog speed and
jogging of :class:`~qrx_host.Robot`."""
from __future__ import annotations

import time

from ._calls import Calls
from .types import CallTimedOut, Coord, Mode, Refused, ServoState

# The command code of a jog step.
_JOG_STEP = 0x2901
# Pause between two looks at the servo state while the drives come up.
_SERVO_POLL_S = 0.02


class ServoMode(Calls):
    # ---- servo, mode, coordinate system, speed ----------------------------
    @property
    def servo_state(self) -> ServoState:
        """The servo state last reported (sends nothing)."""
        return ServoState(self._lib.get_servo_state())

    def power_on(self) -> bool:
        """Servo on and deadman; returns True once the drives run (servo
        state RUNNING). Raises Refused when the controller refuses, and
        CallTimedOut when the drives are not up within the timeout."""
        deadline = None if self._timeout_s is None else time.monotonic() + self._timeout_s
        self._wait(self._lib.servo_power_on, "servo_power_on")
        while True:
            # Each look waits for the controller's answer: a refusal of the
            # power-on comes before it, and the servo state is up to date.
            confirmed = self._interruptible(self._lib.qrx_confirm, "servo_power_on")
            self._raise_refusal("servo_power_on")
            if confirmed >= 0 and self.servo_state is ServoState.RUNNING:
                return True
            if deadline is not None and time.monotonic() >= deadline:
                raise CallTimedOut(f"servo_power_on: the drives are not running (servo {self.servo_state.name})")
            time.sleep(_SERVO_POLL_S)

    def power_off(self) -> None:
        """Deadman off."""
        self._wait(self._lib.servo_power_off, "servo_power_off")

    def clear_servo_error(self) -> None:
        self._command(self._lib.clear_servo_error, "clear_servo_error")

    @property
    def mode(self) -> Mode:
        """The operation mode (asks the controller)."""
        return Mode(self._wait(self._lib.get_current_mode, "get_current_mode"))

    @mode.setter
    def mode(self, mode: Mode) -> None:
        self._command(lambda: self._lib.set_current_mode(int(mode)), "set_current_mode")

    @property
    def coord(self) -> Coord:
        """The coordinate system (asks the controller)."""
        return Coord(self._wait(self._lib.get_current_coord, "get_current_coord"))

    @coord.setter
    def coord(self, coord: Coord) -> None:
        self._command(lambda: self._lib.set_current_coord(int(coord)), "set_current_coord")

    @property
    def jog_speed(self) -> int:
        """The jog speed in percent (asks the controller)."""
        return int(self._wait(self._lib.get_jogging_speed, "get_jogging_speed"))

    @jog_speed.setter
    def jog_speed(self, percent: int) -> None:
        self._command(lambda: self._lib.set_jogging_speed(int(percent)), "set_jogging_speed")

    @property
    def running_state(self) -> int:
        """The running state (2: a job runs)."""
        return int(self._wait(self._lib.get_robot_running_state, "get_robot_running_state"))

    @property
    def job_running(self) -> bool:
        return self.running_state == 2

    def start_jogging(self, axis: int, positive: bool = True) -> None:
        """Jogs axis until :meth:`stop_jogging`; raises Refused when the
        controller refuses, or when the drives do not run (the library then
        sends no jog step)."""
        if self.servo_state is not ServoState.RUNNING:
            raise Refused("start_jogging: not sent, the servo is not running", _JOG_STEP, 0, "start_jogging")
        self._command(lambda: self._lib.start_jogging(axis, positive), "start_jogging")

    def stop_jogging(self, axis: int) -> None:
        self._command(lambda: self._lib.stop_jogging(axis), "stop_jogging")
