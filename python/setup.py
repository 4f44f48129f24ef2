"""qrx_host: drive a robot controller from Python (over the qrx_host library)."""
import atexit
import shutil
import tempfile

from setuptools import setup

# Build in a scratch folder, not in the source tree: `pip install ./python`
# leaves no build/ and no .egg-info beside this file (and no stale copy of a
# removed module that a later build would pick up).
_scratch = tempfile.mkdtemp(prefix="qrx_host-build-")
atexit.register(shutil.rmtree, _scratch, ignore_errors=True)

setup(
    name="qrx_host",
    version="0.1.0",
    description="Drive a robot controller (or qrx-sim) from Python through the qrx_host library",
    packages=["qrx_host"],
    package_data={"qrx_host": ["py.typed"]},
    python_requires=">=3.9",
    zip_safe=False,
    options={"build": {"build_base": _scratch}, "egg_info": {"egg_base": _scratch}},
)
