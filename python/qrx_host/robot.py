"""The Robot: one connection to the controller, with Pythonic calls."""
from __future__ import annotations

import atexit
import ctypes
import os
import queue
import threading
import time
import traceback
import weakref
from typing import Any, Callable, Iterable, List, Optional, Sequence, Tuple, TypeVar

from . import _library
from ._records import MotionRecord
from .transfer import PathLike, Transfers
from .types import (CallTimedOut, ConnectionRefused, Coord, DigitalOut, Instruction, LinkEvent, LinkReason,
                    Mode, MotorFigures, Move, NotConnected, Refused, ServoState, Wait)

T = TypeVar("T")
Floats = Tuple[float, ...]
MessageCallback = Callable[[str], None]
LinkCallback = Callable[[LinkEvent, LinkReason], None]

# A waiting call in the main thread runs in a worker and is joined in
# slices this long, so that Ctrl-C interrupts the wait.
_SLICE_S = 0.1
# How long a connect without a bound tries (the library's own connect tries
# about as long).
_CONNECT_S = 5.0
# Room for the controller's text of a refusal (longer texts are shortened).
_REFUSAL_TEXT = 4096
# The command codes of a job run (run_job, step_job) and of a jog step.
_RUN_JOB = 0x2501
_JOG_STEP = 0x2901
# Pause between two looks at the servo state while the drives come up.
_SERVO_POLL_S = 0.02
# wait_move_done(timeout=ROBOT_TIMEOUT): the Robot's timeout.
ROBOT_TIMEOUT = -1.0


class _Dispatcher:
    """Hands the library's callbacks (on its own threads) to Python callbacks
    on one thread of ours, so a slow or failing callback never holds the
    library's thread and never takes the library down."""

    def __init__(self) -> None:
        self._queue: "queue.Queue[Tuple[Callable[..., None], Tuple[object, ...]]]" = queue.Queue()
        self._thread = threading.Thread(target=self._run, name="qrx_host callbacks", daemon=True)
        self._thread.start()

    def post(self, callback: Callable[..., None], *args: object) -> None:
        self._queue.put((callback, args))

    def _run(self) -> None:
        while True:
            callback, args = self._queue.get()
            try:
                callback(*args)
            except Exception:  # a host callback's error is reported, not raised into the library
                traceback.print_exc()


_dispatcher: Optional[_Dispatcher] = None
_callbacks_lock = threading.Lock()
_message_callback: Optional[MessageCallback] = None
_link_callback: Optional[LinkCallback] = None


def _dispatch() -> _Dispatcher:
    global _dispatcher
    with _callbacks_lock:
        if _dispatcher is None:
            _dispatcher = _Dispatcher()
        return _dispatcher


def _on_message(text: bytes) -> None:
    callback = _message_callback
    if callback is not None:
        _dispatch().post(callback, text.decode("utf-8", "replace"))


def _on_link_event(event: int, reason: int, _user: object) -> None:
    callback = _link_callback
    if callback is not None:
        _dispatch().post(callback, LinkEvent(event), LinkReason(reason))


# What the library calls: kept alive here for the life of the process.
_MESSAGE_POINTER = _library.ERROR_HANDLER(_on_message)
_LINK_EVENT_POINTER = _library.LINK_EVENT_HANDLER(_on_link_event)

# Every Robot with a controller of its own in the library (a handle).
_robots: "weakref.WeakSet[Robot]" = weakref.WeakSet()
_robots_lock = threading.Lock()


@atexit.register
def _release_handlers() -> None:
    """At interpreter exit, before Python stops its threads: the library's
    threads must not enter Python any more (a callback entering a finalising
    interpreter ends that thread inside the library and takes the process
    down). The library's setters return only after a call under way has
    ended, so nothing of ours runs on its threads after this."""
    global _message_callback, _link_callback
    _message_callback = _link_callback = None
    with _robots_lock:
        robots = list(_robots)
    for robot in robots:
        robot._release_handlers()


def _doubles(n: int) -> "ctypes.Array[ctypes.c_double]":
    return (ctypes.c_double * n)()


def _text(name: str) -> bytes:
    return name.encode("latin-1")


class Robot(Transfers):
    """A connection to the controller at ``address``.

    >>> with Robot("192.168.1.13", timeout=2.0) as robot:
    ...     robot.mode = Mode.TEACH
    ...     print(robot.position())

    ``timeout`` (seconds) bounds the connect and every call that waits for
    the controller; a call that runs out raises :class:`CallTimedOut`.
    ``None`` waits for ever (a connect then tries for about five seconds).
    A command the controller refuses raises :class:`Refused` with the
    controller's text: each command waits until the controller has taken it
    (one round trip), so a refusal is raised by the call that caused it.
    ``matched_replies`` makes each call wait for the controller's answer to
    its own query (on by default here; the C library's default is off).
    Each Robot is a controller of its own in the library (a handle of the
    qrxc_ API): a process holds as many as it likes, each usable from
    several threads at once.
    Files move with :meth:`upload_jobs`, :meth:`download_jobs`, the
    ``export_*`` calls and :meth:`import_config` (see :mod:`qrx_host.transfer`).
    """

    def __init__(self, address: str, timeout: Optional[float] = 2.0, *, port: int = 6001,
                 matched_replies: bool = True, connect: bool = True) -> None:
        self._raw = _library.library()
        self.address = address
        self.port = port
        self._open = False
        self._lib = _library.Bound(self._raw, None)
        self._timeout_s = timeout
        self._matched_replies = matched_replies
        if connect:
            self.connect()

    # ---- the connection --------------------------------------------------
    def connect(self) -> None:
        """Connects as soon as the controller answers, within ``timeout``
        (about five seconds without one); raises ConnectionRefused."""
        if self._open:
            return
        bound = self._timeout_s or _CONNECT_S
        handle = self._raw.qrxc_new(self.address.encode("ascii"), self.port)
        if not handle:
            raise ConnectionRefused(f"no controller at {self.address}:{self.port}")
        self._lib = _library.Bound(self._raw, handle)
        with _robots_lock:
            _robots.add(self)
        self._lib.setErrorHandle(_MESSAGE_POINTER)
        self._lib.qrx_set_link_event_handler(_LINK_EVENT_POINTER, None)
        self._lib.qrx_set_matched_replies(1 if self._matched_replies else 0)
        self._lib.qrx_set_wait_timeout(max(1, int(round(bound * 1000))))
        if self._job_root is not None:
            self._lib.qrx_set_job_root(os.fspath(self._job_root).encode("utf-8"))
        if self._raw.qrxc_connect(handle) != 1:
            self._forget()
            raise ConnectionRefused(f"no controller answered at {self.address}:{self.port} within {bound:g} s")
        self.timeout = self._timeout_s
        self._open = True

    def close(self) -> None:
        """Disconnects; the Robot can connect() again."""
        if self._open:
            self._open = False
            self._forget()

    def _forget(self) -> None:
        """Closes the handle: its link ends, its calls give no-link results."""
        handle = self._lib.handle
        self._lib = _library.Bound(self._raw, None)
        with _robots_lock:
            _robots.discard(self)
        self._raw.qrxc_close(handle)

    def _release_handlers(self) -> None:
        self._lib.setErrorHandle(_library.ERROR_HANDLER(0))
        self._lib.qrx_set_link_event_handler(_library.LINK_EVENT_HANDLER(0), None)

    def __enter__(self) -> "Robot":
        return self

    def __exit__(self, *exc: object) -> None:
        self.close()

    @property
    def connected(self) -> bool:
        """True while the link to the controller is up."""
        return self._open and self._lib.connection_status() == 1

    @property
    def timeout(self) -> Optional[float]:
        """The bound of every waiting call in seconds (None: no bound)."""
        return self._timeout_s

    @timeout.setter
    def timeout(self, seconds: Optional[float]) -> None:
        self._timeout_s = seconds
        self._lib.qrx_set_wait_timeout(0 if not seconds else max(1, int(round(seconds * 1000))))

    def record(self, path: Optional[PathLike]) -> None:
        """Records every frame of this Robot's link and of its file
        transfers, both directions, into the pcap file path (read it with
        :func:`qrx_host.recording.read`) until ``record(None)`` or close();
        other Robots are not recorded. Raises OSError when path cannot be
        opened or the Robot is closed."""
        if path is None:
            self._raw.qrxc_record(self._lib.handle, None)
            return
        if self._raw.qrxc_record(self._lib.handle, os.fsencode(path)) != 0:
            raise OSError(f"cannot record into {os.fspath(path)}" + ("" if self._open else ": the Robot is closed"))

    @property
    def robot_type(self) -> Tuple[int, str]:
        """The robot model the controller reported when the link came up:
        the library's type code (0: none or unknown) and its name
        ("R_GENERAL_6S", "R_SCARA", ..., "R_NULL"). Sends nothing."""
        name = ctypes.create_string_buffer(32)
        code = self._lib.qrx_robot_type(name, len(name))
        return code, name.value.decode("ascii", "replace")

    @property
    def last_message(self) -> str:
        """The controller's last error, warning or information text."""
        size = 256
        while True:
            buffer = ctypes.create_string_buffer(size)
            length = self._lib.qrx_last_message(buffer, size)
            if length < size:
                return buffer.value.decode("utf-8", "replace")
            size = length + 1

    @staticmethod
    def on_message(callback: Optional[MessageCallback]) -> None:
        """Calls callback(text) with each controller error, warning and
        information text ("错误： ...", "警告： ...", "消息： ...") of every
        Robot, on a thread of qrx_host's Python layer; None switches it off."""
        global _message_callback
        _message_callback = callback

    @staticmethod
    def on_link_event(callback: Optional[LinkCallback]) -> None:
        """Calls callback(event, reason) when the link of a Robot comes up,
        drops and comes back, on a thread of qrx_host's Python layer; None:
        off."""
        global _link_callback
        _link_callback = callback

    # ---- waiting calls and commands ----------------------------------------
    def _wait(self, call: Callable[[], T], name: str) -> T:
        """Runs a waiting C call; raises Refused when the controller refused
        it, CallTimedOut when its bound ran out."""

        def run() -> Tuple[T, int]:
            self._lib.qrx_clear_refusal()
            return call(), self._lib.qrx_last_call_timed_out()

        value, timed_out = self._interruptible(run, name)
        self._raise_refusal(name)
        if timed_out:
            raise CallTimedOut(f"{name}: no reply from the controller in time")
        return value

    def _command(self, call: Callable[[], Any], name: str) -> None:
        """Runs a C call that only sends, then waits until the controller
        has taken it (within the timeout): raises Refused when the
        controller refused it, CallTimedOut when it did not answer."""

        def run() -> int:
            self._lib.qrx_clear_refusal()
            call()
            return int(self._lib.qrx_confirm())

        if self._interruptible(run, name) < 0:
            self._raise_refusal(name)
            raise CallTimedOut(f"{name}: the controller did not confirm in time")
        self._raise_refusal(name)

    def _raise_refusal(self, name: str) -> None:
        """Raises Refused when the controller refused the call's command."""
        text = ctypes.create_string_buffer(_REFUSAL_TEXT)
        command = self._lib.qrx_last_refusal(text, len(text))
        if command:
            raise Refused(text.value.decode("utf-8", "replace"), command, self._lib.qrx_last_refusal_type(), name)

    def _interruptible(self, call: Callable[[], T], name: str) -> T:
        """Runs a blocking C call. In the main thread it runs in a worker
        joined in slices, so that Ctrl-C interrupts the wait (the call itself
        runs to its end in the worker)."""
        if not self._open:
            raise NotConnected(f"{name}: the robot is not connected")
        if threading.current_thread() is not threading.main_thread():
            return call()
        outcome: List[object] = []

        def work() -> None:
            try:
                outcome.extend([call(), None])
            except BaseException as error:  # handed to the caller's thread
                outcome.extend([None, error])

        worker = threading.Thread(target=work, name=f"qrx_host {name}", daemon=True)
        worker.start()
        while worker.is_alive():
            worker.join(_SLICE_S)
        value, error = outcome
        if error is not None:
            raise error  # type: ignore[misc]
        return value  # type: ignore[return-value]

    def _read(self, function: Callable[..., None], n: int, name: str, before: Sequence[object] = (),
              after: Sequence[object] = ()) -> Floats:
        """A waiting call that fills n doubles: function(*before, out, *after)."""

        def call() -> Floats:
            out = _doubles(n)
            function(*before, out, *after)
            return tuple(out)

        return self._wait(call, name)

    # ---- servo, mode, coordinate system, speed ----------------------------
    @property
    def servo_state(self) -> ServoState:
        """The servo state last reported (sends nothing)."""
        return ServoState(self._lib.get_servo_state())

    def power_on(self) -> bool:
        """Servo on and deadman; returns True once the drives run (servo
        state RUNNING). Raises Refused when the controller refuses, and
        CallTimedOut when the drives are not up within the timeout."""
        deadline = None if self.timeout is None else time.monotonic() + self.timeout
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
            timeout = self.timeout
        ms = 0 if not timeout else max(1, int(timeout * 1000))
        done = self._wait(lambda: int(self._lib.qrx_wait_move_done(goal, int(coord), tolerance, ms)), "wait_move_done")
        if done != 1:
            raise CallTimedOut("wait_move_done: the robot did not get there in time")

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
        return self._wait(lambda: float(self._lib.get_global_variant(_text(name))), "get_global_variant")

    def set_global_variable(self, name: str, value: float) -> None:
        self._command(lambda: self._lib.set_global_variant(_text(name), value), "set_global_variant")

    def global_position(self, name: str) -> Floats:
        """A global position: 7 robot axes then 7 synchronous axes."""
        return self._read(self._lib.get_GPosition, 14, "get_GPosition", before=(_text(name),))

    def motor_torque(self) -> MotorFigures:
        return self._motor(self._lib.get_motor_torque, "get_motor_torque")

    def motor_speed(self) -> MotorFigures:
        return self._motor(self._lib.get_motor_vel, "get_motor_vel")

    def _motor(self, function: Callable[..., None], name: str) -> MotorFigures:
        def call() -> MotorFigures:
            rows = [_doubles(7), _doubles(7), _doubles(5), _doubles(5)]
            function(*rows)
            return MotorFigures(robot=(tuple(rows[0]), tuple(rows[1])), external=(tuple(rows[2]), tuple(rows[3])))

        return self._wait(call, name)

    # ---- jobs ------------------------------------------------------------
    def open_job(self, name: str) -> None:
        self._command(lambda: self._lib.open_job(_text(name)), "open_job")

    def run_job(self, name: str) -> None:
        """Runs job name from its first line; raises Refused when the
        controller refuses (no such job, ...) or the library sends nothing
        (servo off, a job running)."""
        self._may_run("run_job")
        self._command(lambda: self._lib.run_job(_text(name)), "run_job")

    def step_job(self, name: str, line: int) -> None:
        """Runs one line of job name; refused like :meth:`run_job`."""
        self._may_run("step_job")
        self._command(lambda: self._lib.step_job(_text(name), line), "step_job")

    def _may_run(self, name: str) -> None:
        """The library sends no job run while the servo is off or a job runs
        (as the controller last reported them): say so."""
        if self.job_running:
            raise Refused(f"{name}: not sent, a job is running", _RUN_JOB, 0, name)
        if self.servo_state is ServoState.STOP:
            raise Refused(f"{name}: not sent, the servo is off", _RUN_JOB, 0, name)

    def pause_job(self) -> None:
        self._command(self._lib.pause_job, "pause_job")

    def stop_job(self) -> None:
        self._command(self._lib.stop_job, "stop_job")

    def continue_job(self) -> int:
        """0 when continued; 1 not in run mode; 2 servo not ready."""
        return int(self._wait(self._lib.continue_job, "continue_job"))

    def set_runs(self, count: int) -> None:
        self._command(lambda: self._lib.set_runs(count), "set_runs")

    def single_cycle(self) -> Floats:
        return self._read(self._lib.get_single_cycle, 7, "get_single_cycle")

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
