"""File transfer through the package against qrx-sim's file service: job
files up and down byte for byte with progress, the controller's files out,
a configuration file in, and every failure as an exception."""
from __future__ import annotations

from pathlib import Path
from typing import Any, Callable, Dict, Iterator, List, Tuple

import pytest

import qrx_host
from conftest import Sim, next_address

# The controller's folders and the qrx-sim option that names each.
FOLDERS = {"jobs": "--job-dir", "logs": "--log-dir", "eni": "--eni-dir", "config": "--config-dir"}


def content(size: int, seed: int) -> bytes:
    return bytes((i * 31 + seed) & 0xFF for i in range(size))


@pytest.fixture
def controller(tmp_path: Path) -> Dict[str, Path]:
    """The simulated controller's folders (empty)."""
    folders = {name: tmp_path / "controller" / name for name in FOLDERS}
    for folder in folders.values():
        folder.mkdir(parents=True)
    return folders


def start_sim(options: List[str]) -> Sim:
    simulator = Sim(next_address(), options=options)
    simulator.start()
    return simulator


@pytest.fixture
def file_robot(controller: Dict[str, Path]) -> Iterator[qrx_host.Robot]:
    options = [f"{FOLDERS[name]}={path}" for name, path in controller.items()]
    simulator = start_sim(options)
    try:
        with qrx_host.Robot(simulator.address, timeout=5.0) as robot:
            yield robot
            robot.job_root = None
    finally:
        simulator.stop()
        simulator.log.unlink()


class Progress:
    """Records progress(file, done, total) calls."""

    def __init__(self) -> None:
        self.calls: List[Tuple[str, int, int]] = []

    def __call__(self, name: str, done: int, total: int) -> None:
        self.calls.append((name, done, total))

    def of(self, file: str) -> List[Tuple[int, int]]:
        return [(done, total) for name, done, total in self.calls if name.endswith(file)]


@pytest.mark.parametrize("robot_folder, size, as_path", [
    pytest.param(1, 100, False, id="R1, one chunk, str root"),
    pytest.param(2, 2048, True, id="R2, exactly one chunk, Path root"),
    pytest.param(4, 5000, True, id="R4, three chunks, Path root"),
])
def test_job_files_round_trip(file_robot: qrx_host.Robot, controller: Dict[str, Path], tmp_path: Path,
                              robot_folder: int, size: int, as_path: bool) -> None:
    data = content(size, robot_folder)
    host = tmp_path / "host"
    job = host / "robotJob" / f"R{robot_folder}" / "DEMO.JBR"
    job.parent.mkdir(parents=True)
    job.write_bytes(data)

    sent = Progress()
    file_robot.upload_jobs(root=host if as_path else str(host), progress=sent)
    assert (controller["jobs"] / f"R{robot_folder}" / "DEMO.JBR").read_bytes() == data
    steps = sent.of("DEMO.JBR")
    assert steps and steps[-1] == (size, size)
    assert [done for done, _ in steps] == sorted(done for done, _ in steps)
    assert file_robot.job_root is None  # a root for one call is not kept

    fresh = tmp_path / "fresh"
    file_robot.job_root = fresh
    received = Progress()
    file_robot.download_jobs(progress=received)
    assert (fresh / "robotJob" / f"R{robot_folder}" / "DEMO.JBR").read_bytes() == data
    assert received.of("DEMO.JBR")[-1] == (size, size)
    assert sorted(p.name for p in (fresh / "robotJob").iterdir()) == [f"R{robot_folder}"]


@pytest.mark.parametrize("kind", ["logs", "eni"])
def test_export_copies_the_controllers_files(file_robot: qrx_host.Robot, controller: Dict[str, Path],
                                             tmp_path: Path, kind: str) -> None:
    files = {"one.txt": content(3000, 1), "two.txt": content(10, 2)}
    for name, data in files.items():
        (controller[kind] / name).write_bytes(data)
    target = tmp_path / "export" / kind  # created by the call
    export = file_robot.export_logs if kind == "logs" else file_robot.export_eni
    assert export(target) == len(files)
    assert {p.name: p.read_bytes() for p in target.iterdir()} == files


def test_import_config_sends_one_file(file_robot: qrx_host.Robot, controller: Dict[str, Path],
                                      tmp_path: Path) -> None:
    source = tmp_path / "mine" / "global.json"
    source.parent.mkdir()
    source.write_bytes(b'{"speed":20}\n')
    assert file_robot.import_config(source) == 1
    assert (controller["config"] / "global.json").read_bytes() == b'{"speed":20}\n'


def _upload_one(robot: qrx_host.Robot, tmp_path: Path) -> None:
    job = tmp_path / "host" / "robotJob" / "R1" / "A.JBR"
    job.parent.mkdir(parents=True)
    job.write_bytes(b"NOP\nEND\n")
    robot.upload_jobs(root=tmp_path / "host")


@pytest.mark.parametrize("without, call, text", [
    pytest.param("jobs", _upload_one, "控制器拒绝上传程序：R1/A.JBR", id="upload refused"),
    pytest.param(None, lambda r, t: r.export_logs(t / "out"), "控制器发送的日志列表为空", id="no log files"),
    pytest.param(None, lambda r, t: r.export_eni(t / "out"), "控制器发送的ENI列表为空", id="no ENI files"),
    pytest.param(None, lambda r, t: r.export_config(t / "out"), "控制器拒绝下载配置文件", id="config files missing"),
    pytest.param(None, lambda r, t: r.import_config(t / "nowhere" / "controller.json"), "无法读取上传程序：",
                 id="unreadable local file"),
    pytest.param(None, lambda r, t: r.upload_jobs(root=t / "nowhere"), "no job folder at", id="missing upload root"),
])
def test_failures_raise(tmp_path: Path, without: Any, call: Callable[[qrx_host.Robot, Path], Any],
                        text: str) -> None:
    # A controller without that folder (or with empty folders).
    options = []
    for name, option in FOLDERS.items():
        if name != without:
            (tmp_path / name).mkdir()
            options.append(f"{option}={tmp_path / name}")
    simulator = start_sim(options)
    try:
        with qrx_host.Robot(simulator.address, timeout=5.0) as robot:
            with pytest.raises(qrx_host.TransferFailed) as raised:
                call(robot, tmp_path)
    finally:
        simulator.stop()
        simulator.log.unlink()
    assert text in str(raised.value)
    assert raised.value.failures >= 1
    assert isinstance(raised.value, qrx_host.QrxError)


@pytest.mark.parametrize("call", [
    pytest.param(lambda r, t: r.upload_jobs(root=t), id="upload"),
    pytest.param(lambda r, t: r.download_jobs(root=t), id="download"),
    pytest.param(lambda r, t: r.export_logs(t), id="logs"),
    pytest.param(lambda r, t: r.export_eni(t), id="eni"),
    pytest.param(lambda r, t: r.export_config(t), id="config out"),
    pytest.param(lambda r, t: r.import_config(t / "a.json"), id="config in"),
])
def test_closed_robot_raises_not_connected(tmp_path: Path, call: Callable[[qrx_host.Robot, Path], Any]) -> None:
    robot = qrx_host.Robot(next_address(), connect=False)
    with pytest.raises(qrx_host.NotConnected):
        call(robot, tmp_path)
    assert list(tmp_path.iterdir()) == []


def test_failing_progress_callback_is_raised_after_the_transfer(file_robot: qrx_host.Robot,
                                                                controller: Dict[str, Path],
                                                                tmp_path: Path) -> None:
    (controller["logs"] / "big.txt").write_bytes(content(9000, 5))

    def progress(name: str, done: int, total: int) -> None:
        raise ValueError(f"no room for {name}")

    with pytest.raises(ValueError, match="no room for"):
        file_robot.export_logs(tmp_path / "out", progress=progress)
    # The transfer itself ran to its end.
    assert (tmp_path / "out" / "big.txt").read_bytes() == content(9000, 5)
    # and the next transfer has no progress left over from it
    assert file_robot.export_logs(tmp_path / "again") == 1
