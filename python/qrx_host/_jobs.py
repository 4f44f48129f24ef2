"""Job runs of :class:`~qrx_host.Robot`."""
from __future__ import annotations

from ._calls import Floats, text
from ._servo import ServoMode
from .types import Refused, ServoState

# The command code of a job run (run_job, step_job).
_RUN_JOB = 0x2501


class Jobs(ServoMode):
    # ---- jobs ------------------------------------------------------------
    def open_job(self, name: str) -> None:
        self._command(lambda: self._lib.open_job(text(name)), "open_job")

    def run_job(self, name: str) -> None:
        """Runs job name from its first line; raises Refused when the
        controller refuses (no such job, ...) or the library sends nothing
        (servo off, a job running)."""
        self._may_run("run_job")
        self._command(lambda: self._lib.run_job(text(name)), "run_job")

    def step_job(self, name: str, line: int) -> None:
        """Runs one line of job name; refused like :meth:`run_job`."""
        self._may_run("step_job")
        self._command(lambda: self._lib.step_job(text(name), line), "step_job")

    def _may_run(self, name: str) -> None:
        """The library sends no job run while the servo is off or a job runs
        (as the controller last reported them): say so."""
        if self.job_running:
            raise Refused(f"{name}: not sent, a job is running", _RUN_JOB, 0, name)
        if self.servo_state is ServoState.STOP:
            raise Refused(f"{name}: not sent, the servo is off", _RUN_JOB, 0, name)

    def pause_job(self) -> None:
        self._command(self._lib.pause_job, "pause_job")

    def stop_job(self) -> None:
        self._command(self._lib.stop_job, "stop_job")

    def continue_job(self) -> int:
        """0 when continued; 1 not in run mode; 2 servo not ready."""
        return int(self._wait(self._lib.continue_job, "continue_job"))

    def set_runs(self, count: int) -> None:
        self._command(lambda: self._lib.set_runs(count), "set_runs")

    def single_cycle(self) -> Floats:
        return self._read(self._lib.get_single_cycle, 7, "get_single_cycle")
