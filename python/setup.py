"""Builds qrx_host (described in pyproject.toml) in a scratch folder, not in
the source tree: `pip install ./python` leaves no build/ and no .egg-info
beside this file (and no stale copy of a removed module that a later build
would pick up)."""
import atexit
import shutil
import tempfile

from setuptools import setup

_scratch = tempfile.mkdtemp(prefix="qrx_host-build-")
atexit.register(shutil.rmtree, _scratch, ignore_errors=True)

setup(options={"build": {"build_base": _scratch}, "egg_info": {"egg_base": _scratch}})
