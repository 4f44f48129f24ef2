"""Files over the controller's file connection (port 5000): job files up and
down, the controller's logs, ENI and configuration files out, a
configuration file in. Every call blocks until its files have moved and
raises :class:`TransferFailed` when any of them did not."""
from __future__ import annotations

import ctypes
import os
import threading
import traceback
from pathlib import Path
from typing import Callable, List, Optional, TypeVar, Union

from . import _library
from ._calls import Calls
from .types import NotConnected, TransferFailed

T = TypeVar("T")
PathLike = Union[str, "os.PathLike[str]"]
ProgressCallback = Callable[[str, int, int], None]
"""progress(file, bytes_done, bytes_total), called as the bytes of a file move."""

# The progress callback of the running transfer is this module's: transfers
# of this process run one at a time.
_transfer_lock = threading.Lock()
_progress: Optional[ProgressCallback] = None
_progress_errors: List[BaseException] = []


def _on_progress(name: bytes, done: int, total: int) -> None:
    callback = _progress
    if callback is None:
        return
    try:
        callback(name.decode("utf-8", "replace"), int(done), int(total))
    except BaseException as error:  # raised by the transfer call once the library returns
        _progress_errors.append(error)


_PROGRESS_POINTER = _library.TRANSFER_PROGRESS(_on_progress)  # what the library calls
_NO_PROGRESS = _library.TRANSFER_PROGRESS(0)  # a null function pointer


def _utf8(path: PathLike) -> bytes:
    return os.fspath(path).encode("utf-8")


class Transfers(Calls):
    """The transfer calls of :class:`~qrx_host.Robot` (a mixin; the Robot
    provides the library and the connection flag)."""

    _job_root: Optional[Path] = None

    # ---- job files -------------------------------------------------------
    @property
    def job_root(self) -> Optional[Path]:
        """The folder whose ``robotJob/R1`` .. ``robotJob/R4`` hold the job
        files; None: the library's default (QRX_JOB_ROOT, else the program's
        folder). The Robot's own, like the library's setting of its controller."""
        return self._job_root

    @job_root.setter
    def job_root(self, folder: Optional[PathLike]) -> None:
        self._job_root = Path(folder) if folder is not None else None
        self._lib.qrx_set_job_root(_utf8(folder) if folder is not None else None)

    def upload_jobs(self, root: Optional[PathLike] = None, progress: Optional[ProgressCallback] = None) -> None:
        """Uploads every file of the local job folders (under ``root`` when
        given, else :attr:`job_root`), oldest first. A root that is not a
        folder is a TransferFailed."""
        folder = root if root is not None else self._job_root
        if self._open and folder is not None and not Path(folder).is_dir():
            raise TransferFailed(f"upload_job: no job folder at {os.fspath(folder)}")
        self._transfer("upload_job", self._lib.upload_job, root, progress)

    def download_jobs(self, root: Optional[PathLike] = None, progress: Optional[ProgressCallback] = None) -> None:
        """Fetches the controller's job files that differ from the local
        copies (under ``root`` when given, else :attr:`job_root`). A file is
        replaced only once its new content is complete."""
        self._transfer("download_job", self._lib.download_job, root, progress)

    # ---- the controller's other files ---------------------------------------
    def export_logs(self, folder: PathLike, progress: Optional[ProgressCallback] = None) -> int:
        """Copies the controller's log files into folder (created if
        missing); returns how many. No log files is a TransferFailed."""
        return self._counted("qrx_export_logs", folder, progress)

    def export_eni(self, folder: PathLike, progress: Optional[ProgressCallback] = None) -> int:
        """Copies the controller's ENI files into folder; returns how many."""
        return self._counted("qrx_export_eni", folder, progress)

    def export_config(self, folder: PathLike, progress: Optional[ProgressCallback] = None) -> int:
        """Copies the controller's configuration files into folder; returns
        how many."""
        return self._counted("qrx_export_config", folder, progress)

    def import_config(self, path: PathLike, progress: Optional[ProgressCallback] = None) -> int:
        """Sends one configuration file (a local path) to the controller."""
        return self._counted("qrx_import_config", path, progress)

    # ---- the one way every transfer runs --------------------------------------
    def _counted(self, function: str, path: PathLike, progress: Optional[ProgressCallback]) -> int:
        argument = _utf8(path)
        return self._transfer(function, lambda: int(getattr(self._lib, function)(argument)), None, progress)

    def _transfer(self, name: str, call: Callable[[], T], root: Optional[PathLike],
                  progress: Optional[ProgressCallback] = None) -> T:
        if not self._open:
            raise NotConnected(f"{name}: the robot is not connected")
        outcome: List[object] = []

        def locked() -> T:
            global _progress
            with _transfer_lock:
                _progress = progress
                del _progress_errors[:]
                self._lib.qrx_set_transfer_progress(_PROGRESS_POINTER if progress else _NO_PROGRESS)
                if root is not None:
                    self._lib.qrx_set_job_root(_utf8(root))
                try:
                    result = call()
                    outcome.extend([self._lib.qrx_last_transfer_failed(), _last_error(self._lib),
                                    list(_progress_errors), self._lib.qrx_last_transfer_refused() == 1])
                finally:
                    self._lib.qrx_set_transfer_progress(_NO_PROGRESS)
                    _progress = None
                    if root is not None:
                        self._lib.qrx_set_job_root(_utf8(self._job_root) if self._job_root is not None else None)
                return result

        result = self._interruptible(locked, name)
        failures, text, errors, refused = outcome
        if errors:
            for extra in errors[1:]:  # type: ignore[index]
                traceback.print_exception(type(extra), extra, extra.__traceback__)
            raise errors[0]  # type: ignore[index]
        failed = failures if isinstance(failures, int) else 0
        if failed or (isinstance(result, int) and result < 0):
            raise TransferFailed(f"{name}: {text or 'the transfer failed'}", max(1, failed), bool(refused))
        return result


def _last_error(lib: _library.Bound) -> str:
    size = lib.qrx_last_transfer_error(None, 0) + 1
    buffer = ctypes.create_string_buffer(size)
    lib.qrx_last_transfer_error(buffer, size)
    return buffer.value.decode("utf-8", "replace")
