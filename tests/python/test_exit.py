"""A Python host that ends while the library still has something to tell it:
the interpreter exits right after a disconnect (or with the link still up)
while link events and controller messages may still be on their way to its
callbacks. The process must end with status 0 every time, and print no
complaint of an exception caught by the library's event loop."""
from __future__ import annotations

import os
import subprocess
import sys

import pytest

# Each host runs this many times: the crash it guards against was seen in
# about one run in twelve.
RUNS = 24

# The connection is polled every 20 ms instead of every second: the runs are
# about the exit, not the wait for the first connect.
HOST = """
import sys, qrx_host
qrx_host._library.library().qrx_set_connect_poll_interval(20)
qrx_host.Robot.on_link_event(lambda event, reason: None)
qrx_host.Robot.on_message(lambda text: None)
robot = qrx_host.Robot(sys.argv[1], timeout=5.0)
robot.position()
{ending}
print("host done")
"""

ENDINGS = {
    "disconnect, handlers left set": "robot.close()",
    "handlers switched off, then disconnect":
        "qrx_host.Robot.on_link_event(None); qrx_host.Robot.on_message(None); robot.close()",
    "exit with the link still up": "pass",
}


@pytest.mark.parametrize("ending", list(ENDINGS), ids=list(ENDINGS))
def test_host_exits_cleanly(sim, ending):
    script = HOST.format(ending=ENDINGS[ending])
    for run in range(RUNS):
        result = subprocess.run([sys.executable, "-c", script, sim.address], capture_output=True, text=True,
                                timeout=60, env=dict(os.environ))
        output = result.stdout + result.stderr
        assert result.returncode == 0, f"run {run + 1}: status {result.returncode}\n{output}"
        assert "host done" in result.stdout, f"run {run + 1}:\n{output}"
        assert "exception" not in output.lower(), f"run {run + 1}:\n{output}"
