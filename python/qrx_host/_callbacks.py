"""The library's message and link-event callbacks, handed to the host's
Python callbacks on one thread of ours, and their release at exit."""
from __future__ import annotations

import atexit
import queue
import threading
import traceback
import weakref
from typing import TYPE_CHECKING, Callable, Optional, Tuple

from . import _library
from .types import LinkEvent, LinkReason

if TYPE_CHECKING:
    from .robot import Robot

MessageCallback = Callable[[str], None]
LinkCallback = Callable[[LinkEvent, LinkReason], None]


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


def set_message_callback(callback: Optional[MessageCallback]) -> None:
    global _message_callback
    _message_callback = callback


def set_link_callback(callback: Optional[LinkCallback]) -> None:
    global _link_callback
    _link_callback = callback


# What the library calls: kept alive here for the life of the process.
MESSAGE_POINTER = _library.ERROR_HANDLER(_on_message)
LINK_EVENT_POINTER = _library.LINK_EVENT_HANDLER(_on_link_event)

# Every Robot with a controller of its own in the library (a handle).
_robots: "weakref.WeakSet[Robot]" = weakref.WeakSet()
_robots_lock = threading.Lock()


def hold(robot: "Robot") -> None:
    """Counts robot among those whose handlers are released at exit."""
    with _robots_lock:
        _robots.add(robot)


def forget(robot: "Robot") -> None:
    with _robots_lock:
        _robots.discard(robot)


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
