"""The package as installed: it finds the library, is typed, and every public
name is documented."""
from __future__ import annotations

import inspect
import os
import subprocess
import sys
from pathlib import Path

import pytest

import qrx_host
from qrx_host import _library


def test_typed_marker_is_installed() -> None:
    assert (Path(qrx_host.__file__).parent / "py.typed").is_file()


def test_library_from_environment_first(monkeypatch: pytest.MonkeyPatch, tmp_path: Path) -> None:
    monkeypatch.setenv("QRX_HOST_LIBRARY", str(tmp_path / "libqrx_host.so"))
    assert _library.candidates()[0] == tmp_path / "libqrx_host.so"
    monkeypatch.delenv("QRX_HOST_LIBRARY")
    monkeypatch.setenv("QRX_BUILD_DIR", str(tmp_path))
    assert _library.candidates()[0] == tmp_path / "src" / "libqrx_host.so"


def test_missing_library_is_a_clear_error(tmp_path: Path) -> None:
    with pytest.raises(OSError, match="not found"):
        _library.load(str(tmp_path / "nothing.so"))


def test_library_defaults_are_the_plain_behaviour() -> None:
    # A fresh process that sets nothing: no bound, any reply ends a wait.
    script = ("from qrx_host import _library; lib = _library.load(); "
              "print(lib.qrx_wait_timeout(), lib.qrx_matched_replies(), lib.qrx_last_call_timed_out(), "
              "lib.qrx_robot_type(None, 0))")
    out = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, check=True,
                         env=os.environ).stdout
    assert out.split() == ["0", "0", "0", "-1"]  # no robot model before a connection


@pytest.mark.parametrize("name", [n for n in qrx_host.__all__
                                  if inspect.isclass(getattr(qrx_host, n)) or inspect.isfunction(getattr(qrx_host, n))])
def test_public_names_are_documented(name: str) -> None:
    assert inspect.getdoc(getattr(qrx_host, name))
