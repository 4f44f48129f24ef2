"""The Robot: one connection to the controller, with Pythonic calls."""
from __future__ import annotations

import ctypes
import os
from typing import Optional, Tuple

from . import _callbacks, _library
from ._callbacks import LinkCallback, MessageCallback
from ._io import IoVariables
from ._jobs import Jobs
from ._motion import ROBOT_TIMEOUT, Motion
from .transfer import PathLike, Transfers
from .types import ConnectionRefused

__all__ = ["Robot", "ROBOT_TIMEOUT"]

# How long a connect without a bound tries (the library's own connect tries
# about as long).
_CONNECT_S = 5.0


class Robot(Jobs, Motion, IoVariables, Transfers):
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
        _callbacks.hold(self)
        self._lib.setErrorHandle(_callbacks.MESSAGE_POINTER)
        self._lib.qrx_set_link_event_handler(_callbacks.LINK_EVENT_POINTER, None)
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
        _callbacks.forget(self)
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
        _callbacks.set_message_callback(callback)

    @staticmethod
    def on_link_event(callback: Optional[LinkCallback]) -> None:
        """Calls callback(event, reason) when the link of a Robot comes up,
        drops and comes back, on a thread of qrx_host's Python layer; None:
        off."""
        _callbacks.set_link_callback(callback)
