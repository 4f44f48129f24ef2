"""How a Robot's calls reach the controller: a waiting call, a command the
controller confirms, a refusal raised by the call that caused it, and a wait
in the main thread that Ctrl-C interrupts."""
from __future__ import annotations

import ctypes
import threading
from typing import Any, Callable, List, Optional, Sequence, Tuple, TypeVar

from . import _library
from .types import CallTimedOut, NotConnected, Refused

T = TypeVar("T")
Floats = Tuple[float, ...]

# A waiting call in the main thread runs in a worker and is joined in
# slices this long, so that Ctrl-C interrupts the wait.
_SLICE_S = 0.1
# Room for the controller's text of a refusal (longer texts are shortened).
_REFUSAL_TEXT = 4096


def doubles(n: int) -> "ctypes.Array[ctypes.c_double]":
    return (ctypes.c_double * n)()


def text(name: str) -> bytes:
    return name.encode("latin-1")


class Calls:
    """The calling plumbing of :class:`~qrx_host.Robot` (a mixin; the Robot
    provides the library, the connection flag and the bound)."""

    _lib: _library.Bound
    _open: bool
    _timeout_s: Optional[float]  # the bound of waiting calls (seconds), None: none

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
        buffer = ctypes.create_string_buffer(_REFUSAL_TEXT)
        command = self._lib.qrx_last_refusal(buffer, len(buffer))
        if command:
            raise Refused(buffer.value.decode("utf-8", "replace"), command, self._lib.qrx_last_refusal_type(), name)

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
            out = doubles(n)
            function(*before, out, *after)
            return tuple(out)

        return self._wait(call, name)
