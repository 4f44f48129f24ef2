"""qrx-sim for the Python package's tests: one simulator process per test on
an address of its own (127.6.x.y, see next_address), its frames traced to a log the tests
read, and helpers to stop, freeze and restart it."""
from __future__ import annotations

import itertools
import os
import re
import signal
import subprocess
import tempfile
import time
from pathlib import Path
from typing import Callable, Iterator, List, Optional, Sequence

import pytest

import qrx_host

SIM = os.environ.get("QRX_SIM", "qrx-sim")
_addresses = itertools.count(1)


def wait_for(check: Callable[[], object], seconds: float = 20.0) -> bool:
    """True once check() holds; False when seconds pass first."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        if check():
            return True
        time.sleep(0.02)
    return bool(check())


class Sim:
    """A qrx-sim process on one loopback address."""

    def __init__(self, address: str, port: int = 6001, options: Sequence[str] = ()) -> None:
        self.address = address
        self.port = port
        self.options = list(options)  # further qrx-sim options (--job-dir DIR, ...)
        self.log = Path(tempfile.mkstemp(prefix="qrx-sim-", suffix=".log")[1])
        self.process: Optional[subprocess.Popen] = None

    def start(self) -> None:
        self.log.write_text("")
        with self.log.open("a") as out:
            self.process = subprocess.Popen(
                [SIM, "--address", self.address, "--port", str(self.port), "--verbose"] + self.options,
                stdout=out, stderr=subprocess.STDOUT)
        assert wait_for(lambda: "listening" in self.log.read_text(), 10), self.log.read_text()

    def stop(self) -> None:
        if self.process and self.process.poll() is None:
            self.process.send_signal(signal.SIGCONT)
            self.process.terminate()
            self.process.wait(10)
        self.process = None

    def freeze(self) -> None:
        """Stops the process: the connection stays, nothing is answered."""
        assert self.process
        self.process.send_signal(signal.SIGSTOP)

    def thaw(self) -> None:
        assert self.process
        self.process.send_signal(signal.SIGCONT)

    def received(self, code: int) -> List[str]:
        """The payload texts of the frames with that code the simulator got."""
        pattern = re.compile(r"<- 0x%04x ?(.*)$" % code)
        return [m.group(1) for m in map(pattern.search, self.log.read_text().splitlines()) if m]


def next_address() -> str:
    """A loopback address no other test of this run uses: 127.6.B.n, where B
    is the suite's own block (QRX_ADDRESS_BLOCK, given by the test runner to
    each suite) or, run by hand, one picked from the process id."""
    block = int(os.environ.get("QRX_ADDRESS_BLOCK", 100 + os.getpid() % 150))
    return f"127.6.{block % 250}.{next(_addresses) % 250 + 1}"


@pytest.fixture
def sim() -> Iterator[Sim]:
    simulator = Sim(next_address())
    simulator.start()
    yield simulator
    simulator.stop()
    simulator.log.unlink()


@pytest.fixture
def robot(sim: Sim) -> Iterator[qrx_host.Robot]:
    with qrx_host.Robot(sim.address, timeout=5.0) as connected:
        yield connected
    qrx_host.Robot.on_message(None)
    qrx_host.Robot.on_link_event(None)
