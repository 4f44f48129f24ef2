"""Finding and loading the qrx_host shared library, with the C signatures."""
from __future__ import annotations

import ctypes
import ctypes.util
import os
from pathlib import Path
from typing import Any, Callable, Dict, List, Optional, Sequence, Tuple

from ._records import MotionRecord

_DOUBLE_P = ctypes.POINTER(ctypes.c_double)
_ERROR_HANDLER = ctypes.CFUNCTYPE(None, ctypes.c_char_p)
_LINK_EVENT_HANDLER = ctypes.CFUNCTYPE(None, ctypes.c_int, ctypes.c_int, ctypes.c_void_p)
_TRANSFER_PROGRESS = ctypes.CFUNCTYPE(None, ctypes.c_char_p, ctypes.c_longlong, ctypes.c_longlong)

_NAMES = ("libqrx_host.so", "libqrx_host.so.0", "libqrx_host.dylib", "qrx_host.dll")

# name: (argument types, result type)
_SIGNATURES: Dict[str, Tuple[List[object], object]] = {
    "connect_robot": ([ctypes.c_char_p], ctypes.c_int),
    "disconnect_robot": ([], None),
    "connection_status": ([], ctypes.c_int),
    "setErrorHandle": ([_ERROR_HANDLER], None),
    "servo_power_on": ([], ctypes.c_int),
    "servo_power_off": ([], None),
    "set_servo_state": ([ctypes.c_int], None),
    "get_servo_state": ([], ctypes.c_int),
    "clear_servo_error": ([], None),
    "set_current_mode": ([ctypes.c_int], None),
    "get_current_mode": ([], ctypes.c_int),
    "set_current_coord": ([ctypes.c_int], None),
    "get_current_coord": ([], ctypes.c_int),
    "set_jogging_speed": ([ctypes.c_int], None),
    "get_jogging_speed": ([], ctypes.c_int),
    "start_jogging": ([ctypes.c_int, ctypes.c_bool], None),
    "stop_jogging": ([ctypes.c_int], None),
    "get_robot_running_state": ([], ctypes.c_int),
    "robot_movj": ([_DOUBLE_P] + [ctypes.c_int] * 4, None),
    "robot_movl": ([_DOUBLE_P] + [ctypes.c_int] * 4, None),
    "set_dout": ([ctypes.c_int, ctypes.c_int], None),
    "set_aout": ([ctypes.c_int, ctypes.c_double], None),
    "get_dout": ([_DOUBLE_P], None),
    "get_din": ([_DOUBLE_P], None),
    "get_aout": ([_DOUBLE_P], None),
    "get_ain": ([_DOUBLE_P], None),
    "get_current_position": ([_DOUBLE_P, ctypes.c_int], None),
    "get_current_sync_position": ([_DOUBLE_P], None),
    "get_GPosition": ([ctypes.c_char_p, _DOUBLE_P], None),
    "get_global_variant": ([ctypes.c_char_p], ctypes.c_double),
    "set_global_variant": ([ctypes.c_char_p, ctypes.c_double], None),
    "get_motor_torque": ([_DOUBLE_P] * 4, None),
    "get_motor_vel": ([_DOUBLE_P] * 4, None),
    "get_motor_overload": ([_DOUBLE_P] * 2, None),
    "open_job": ([ctypes.c_char_p], None),
    "run_job": ([ctypes.c_char_p], None),
    "step_job": ([ctypes.c_char_p, ctypes.c_int], None),
    "pause_job": ([], None),
    "stop_job": ([], None),
    "continue_job": ([], ctypes.c_int),
    "set_runs": ([ctypes.c_int], None),
    "get_job_running_lines": ([], ctypes.c_int),
    "get_single_cycle": ([_DOUBLE_P], None),
    "continuous_motion_mode": ([ctypes.c_int], None),
    "continuous_motion_start": ([], None),
    "continuous_motion_suspend": ([], None),
    "continuous_motion_stop": ([], None),
    "send_continuous_motion_queue": ([ctypes.POINTER(MotionRecord), ctypes.c_int], None),
    "switch_tool_hand": ([ctypes.c_int], None),
    "get_current_tool_hand": ([], ctypes.c_int),
    "set_tool_hand_param": ([ctypes.c_int, _DOUBLE_P], None),
    "query_tool_hand_param": ([ctypes.c_int, _DOUBLE_P], None),
    # extensions
    "qrx_set_wait_timeout": ([ctypes.c_int], None),
    "qrx_wait_timeout": ([], ctypes.c_int),
    "qrx_last_call_timed_out": ([], ctypes.c_int),
    "qrx_set_matched_replies": ([ctypes.c_int], None),
    "qrx_matched_replies": ([], ctypes.c_int),
    "qrx_set_link_event_handler": ([_LINK_EVENT_HANDLER, ctypes.c_void_p], None),
    "qrx_connect_robot_port": ([ctypes.c_char_p, ctypes.c_int], ctypes.c_int),
    "qrx_connect_robot_within": ([ctypes.c_char_p, ctypes.c_int, ctypes.c_int], ctypes.c_int),
    "qrx_last_refusal": ([ctypes.c_char_p, ctypes.c_int], ctypes.c_int),
    "qrx_last_refusal_type": ([], ctypes.c_int),
    "qrx_clear_refusal": ([], None),
    "qrx_confirm": ([], ctypes.c_int),
    "qrx_last_message": ([ctypes.c_char_p, ctypes.c_int], ctypes.c_int),
    "qrx_wait_move_done": ([_DOUBLE_P, ctypes.c_int, ctypes.c_double, ctypes.c_int], ctypes.c_int),
    "qrx_robot_type": ([ctypes.c_char_p, ctypes.c_int], ctypes.c_int),
    "qrx_record": ([ctypes.c_char_p], ctypes.c_int),
    "qrx_code_name": ([ctypes.c_int, ctypes.c_int, ctypes.c_int], ctypes.c_char_p),
    # file transfer
    "upload_job": ([], None),
    "download_job": ([], None),
    "qrx_set_job_root": ([ctypes.c_char_p], None),
    "qrx_set_transfer_progress": ([_TRANSFER_PROGRESS], None),
    "qrx_last_transfer_failed": ([], ctypes.c_int),
    "qrx_last_transfer_refused": ([], ctypes.c_int),
    "qrx_last_transfer_error": ([ctypes.c_char_p, ctypes.c_int], ctypes.c_int),
    "qrx_export_logs": ([ctypes.c_char_p], ctypes.c_int),
    "qrx_export_eni": ([ctypes.c_char_p], ctypes.c_int),
    "qrx_export_config": ([ctypes.c_char_p], ctypes.c_int),
    "qrx_import_config": ([ctypes.c_char_p], ctypes.c_int),
}


# The functions that concern no single controller: no handle twin.
_PROCESS_WIDE = ("connect_robot", "disconnect_robot", "qrx_connect_robot_port", "qrx_connect_robot_within",
                 "qrx_last_call_timed_out", "qrx_record", "qrx_code_name")


def twin(name: str) -> str:
    """The handle API's name of a function: get_servo_state -> qrxc_get_servo_state,
    qrx_wait_timeout -> qrxc_wait_timeout."""
    return "qrxc_" + (name[4:] if name.startswith("qrx_") else name)


_HANDLE = ctypes.c_void_p
# The handle API: each function of one controller with the handle first,
# and the handle's own calls.
_HANDLE_SIGNATURES: Dict[str, Tuple[List[object], object]] = {
    twin(name): ([_HANDLE] + args, result) for name, (args, result) in _SIGNATURES.items()
    if name not in _PROCESS_WIDE
}
_HANDLE_SIGNATURES.update({
    "qrxc_new": ([ctypes.c_char_p, ctypes.c_int], _HANDLE),
    "qrxc_connect": ([_HANDLE], ctypes.c_int),
    "qrxc_close": ([_HANDLE], None),
    "qrxc_link_up": ([_HANDLE], ctypes.c_int),
    "qrxc_record": ([_HANDLE, ctypes.c_char_p], ctypes.c_int),
})


class Bound:
    """The library's functions acting on one controller: ``bound.get_servo_state()``
    is ``qrxc_get_servo_state(handle)``, ``bound.qrx_wait_timeout()`` is
    ``qrxc_wait_timeout(handle)``; the calling thread's own
    ``qrx_last_call_timed_out`` is the library's. A handle of None (NULL)
    gives each function's result without a link."""

    def __init__(self, library: ctypes.CDLL, handle: Optional[int]) -> None:
        self.library = library
        self.handle = handle

    def __getattr__(self, name: str) -> Callable[..., Any]:
        if name in _PROCESS_WIDE:
            function: Callable[..., Any] = getattr(self.library, name)
            return function
        twin_function: Callable[..., Any] = getattr(self.library, twin(name))
        handle = self.handle

        def call(*args: object) -> Any:
            return twin_function(handle, *args)

        return call


def candidates() -> List[Path]:
    """Where the library is looked for, in order.

    QRX_HOST_LIBRARY (a file), then QRX_BUILD_DIR/src and the source tree's
    build/src (a build folder), then the places ``cmake --install`` uses.
    """
    found: List[Path] = []
    env = os.environ.get("QRX_HOST_LIBRARY")
    if env:
        found.append(Path(env))
    folders: List[Path] = []
    build = os.environ.get("QRX_BUILD_DIR")
    if build:
        folders.append(Path(build) / "src")
    folders.append(Path(__file__).resolve().parents[2] / "build" / "src")
    for prefix in ("/usr/local", "/usr"):
        folders += [Path(prefix) / "lib", Path(prefix) / "lib64", Path(prefix) / "lib" / "x86_64-linux-gnu"]
    found += [folder / name for folder in folders for name in _NAMES]
    return found


def load(path: Optional[str] = None) -> ctypes.CDLL:
    """Loads the library (from path when given) and declares its functions."""
    tried: Sequence[Path] = [Path(path)] if path else candidates()
    library = None
    for candidate in tried:
        if candidate.is_file():
            library = ctypes.CDLL(str(candidate))
            break
    if library is None and not path:
        name = ctypes.util.find_library("qrx_host")
        if name:
            library = ctypes.CDLL(name)
    if library is None:
        raise OSError("libqrx_host not found; set QRX_HOST_LIBRARY to its path (looked in: "
                      + ", ".join(str(p) for p in tried[:4]) + ", ...)")
    for name, (args, result) in list(_SIGNATURES.items()) + list(_HANDLE_SIGNATURES.items()):
        function = getattr(library, name)
        function.argtypes = args
        function.restype = result
    return library


_library: Optional[ctypes.CDLL] = None


def library() -> ctypes.CDLL:
    """The library of this process, loaded on first use."""
    global _library
    if _library is None:
        _library = load()
    return _library


def loaded() -> Optional[ctypes.CDLL]:
    """The library if this process has loaded it, without loading it."""
    return _library


ERROR_HANDLER = _ERROR_HANDLER
LINK_EVENT_HANDLER = _LINK_EVENT_HANDLER
TRANSFER_PROGRESS = _TRANSFER_PROGRESS
