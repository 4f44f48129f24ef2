"""Recorded sessions: the C demo recorded with QRX_RECORD reads back frame for
frame as the simulated controller saw and sent them, tshark decodes the file
with the dissector, a damaged file gives a clear error with the frames before
the fault, qrx_record() starts, switches and stops a recording, a Robot's
record() takes its own controller's frames only, beside qrx_record(), a
killed host keeps all but its last milliseconds, and the plot shows what it
must."""
from __future__ import annotations

import os
import re
import shutil
import struct
import subprocess
import sys
from pathlib import Path
from typing import Iterator, List, Tuple

import pytest

import qrx_host
from qrx_host import _library, plot, recording

from conftest import Sim, next_address, wait_for

DEMO = os.environ.get("QRX_DEMO", "")
DISSECTOR = os.environ.get("QRX_DISSECTOR", "")
TRACED_CHARS = 240  # qrx-sim --verbose shortens longer payloads
TRACE = re.compile(r"^(<-|->) 0x([0-9a-f]{4}) ?(.*)$")


def traced(payload: bytes) -> str:
    """A payload as qrx-sim --verbose prints it."""
    text = payload.decode("utf-8", "replace").strip()
    return text[:TRACED_CHARS] + "..." if len(text) > TRACED_CHARS else text


def on_the_wire(sim: Sim) -> List[Tuple[str, int, str]]:
    """Every frame of the main link the simulator traced: (direction, code, payload text)."""
    wire: List[Tuple[str, int, str]] = []
    for line in sim.log.read_text().splitlines():
        m = TRACE.match(line)
        if m:
            wire.append((recording.TO_CONTROLLER if m.group(1) == "<-" else recording.FROM_CONTROLLER,
                         int(m.group(2), 16), m.group(3).strip()))
    return wire


def main_link(frames: List[recording.Frame]) -> List[Tuple[str, int, str]]:
    return [(f.direction, f.code, traced(f.payload)) for f in frames if not f.file_connection]


class Demo:
    def __init__(self, sim: Sim, jobs: Path, pcap: Path, result: subprocess.CompletedProcess) -> None:
        self.sim, self.jobs, self.pcap, self.result = sim, jobs, pcap, result
        self.frames = recording.read(str(pcap))


@pytest.fixture(scope="module")
def demo(tmp_path_factory: pytest.TempPathFactory) -> Iterator[Demo]:
    """The C demo with its job files, recorded, against a simulator that
    traces every frame of the main link."""
    if not DEMO:
        pytest.skip("QRX_DEMO (the qrx-demo program) is not set")
    folder = tmp_path_factory.mktemp("demo")
    jobs = folder / "jobs"
    jobs.mkdir()
    sim = Sim(next_address(), options=["--job-dir", str(jobs)])
    sim.start()
    try:
        pcap = folder / "demo.pcap"
        result = subprocess.run([DEMO, sim.address, "--job-files"], capture_output=True, text=True, timeout=120,
                                env=dict(os.environ, QRX_RECORD=str(pcap)))
        run = Demo(sim, jobs, pcap, result)
        sent = sum(1 for f in run.frames if f.direction == recording.TO_CONTROLLER and not f.file_connection)
        # The simulator traces what it reads; the host may have left before that.
        assert wait_for(lambda: sim.log.read_text().count("\n<- ") >= sent, 20)
        yield run
    finally:
        sim.stop()
    sim.log.unlink()


def test_demo_recording_reads_back_frame_for_frame(demo: Demo) -> None:
    assert demo.result.returncode == 0, demo.result.stdout + demo.result.stderr
    wire = on_the_wire(demo.sim)
    recorded = main_link(demo.frames)
    for direction in (recording.TO_CONTROLLER, recording.FROM_CONTROLLER):
        assert [r for r in recorded if r[0] == direction] == [w for w in wire if w[0] == direction], direction
    assert len(recorded) > 100
    # Every demo step left its frames: servo, mode, jog, moves, IO, variable, job, file sync.
    names = {f.name for f in demo.frames}
    for name in ("SetServoStatus", "SetDeadman", "SetOperationMode", "JogStep", "MoveJoint", "MoveLinear",
                 "GetCurrentPosition", "SetDout", "SetAout", "SetGlobalVariable", "OpenJob", "RunJob", "StartJobSync",
                 "AnnounceUpload", "UploadChunk", "RequestFile", "FileData"):
        assert name in names, name
    times = [f.time for f in demo.frames]
    assert times == sorted(times)


def test_file_connection_carries_the_uploaded_job(demo: Demo) -> None:
    files = [f for f in demo.frames if f.file_connection]
    announce = next(f for f in files if f.name == "AnnounceUpload")
    name = announce.json["name"]  # "job/R1/NAME"
    stored = (demo.jobs / name.split("/", 1)[1]).read_bytes()
    chunks = b"".join(f.payload for f in files if f.name == "UploadChunk")
    assert announce.json["size"] == len(stored) == len(chunks)
    assert chunks == stored
    assert {f.direction for f in files} == {recording.TO_CONTROLLER, recording.FROM_CONTROLLER}


@pytest.mark.skipif(not shutil.which("tshark") or not DISSECTOR, reason="tshark or the dissector is missing")
def test_tshark_decodes_every_recorded_frame(demo: Demo) -> None:
    command = ["tshark", "-r", str(demo.pcap), "-X", "lua_script:" + DISSECTOR, "-o", "qrx.main_port:6001",
               "-o", "qrx.file_port:5000", "-o", "tcp.desegment_tcp_streams:TRUE", "-T", "fields",
               "-E", "occurrence=a", "-E", "aggregator=,", "-e", "qrx.code", "-e", "qrx.crc.ok", "-e", "qrx.name"]
    result = subprocess.run(command, capture_output=True, text=True, timeout=120,
                            env=dict(os.environ, LC_ALL="C.UTF-8"))
    assert result.returncode == 0 and "Lua: Error" not in result.stderr, result.stderr
    codes, checks, names = [], [], []
    for line in result.stdout.splitlines():
        cells = (line.split("\t") + ["", "", ""])[:3]
        if cells[0]:
            codes += [int(c, 16) for c in cells[0].split(",")]
            checks += cells[1].split(",")
            names += cells[2].split(",")
    assert codes == [f.code for f in demo.frames]
    assert set(checks) == {"1"}
    assert names == [f.name for f in demo.frames]


def _damaged(data: bytes) -> List[Tuple[str, bytes, str]]:
    """(case, file, error pattern) from a good recording."""
    records = []
    at = 24
    while at < len(data):
        size = struct.unpack("<I", data[at + 8:at + 12])[0]
        records.append((at, size))
        at += 16 + size
    last_at, last_size = records[-1]
    middle_at = records[len(records) // 2][0]
    flipped = bytearray(data)
    payload_at = next(a for a, s in records if s > 40 + 12) + 16 + 40 + 7
    flipped[payload_at] ^= 0x40
    return [
        ("empty", b"", r"not a pcap file: 0 bytes"),
        ("text", b"hello world, not a capture at all", r"not a pcap file: magic number 0x"),
        ("cut in the last packet", data[:last_at + 16 + last_size - 2], r"packet \d+ is truncated"),
        ("cut in a record header", data[:middle_at + 7], r"packet \d+: the file ends inside its record header"),
        ("payload byte changed", bytes(flipped), r"packet \d+: (CRC mismatch in frame 0x[0-9a-f]{4}|no frame head)"),
    ]


@pytest.mark.parametrize("case", range(5))
def test_damaged_recording_gives_a_clear_error(demo: Demo, tmp_path: Path, case: int) -> None:
    name, data, pattern = _damaged(demo.pcap.read_bytes())[case]
    damaged = tmp_path / "damaged.pcap"
    damaged.write_bytes(data)
    with pytest.raises(recording.RecordingError, match=pattern) as error:
        recording.read(str(damaged))
    kept = error.value.frames
    assert kept == demo.frames[:len(kept)], name
    assert len(kept) < len(demo.frames)


def test_qrx_record_starts_switches_and_stops(sim: Sim, tmp_path: Path) -> None:
    lib = _library.library()
    first, second = tmp_path / "first.pcap", tmp_path / "second.pcap"
    assert lib.qrx_record(str(first).encode()) == 0
    with qrx_host.Robot(sim.address, timeout=5.0) as robot:
        # A query whose reply the controller does not also send unasked at
        # link-up (its mode report could answer a mode query before the
        # query itself is on the wire).
        robot.coord  # noqa: B018 (a query: 0x2202 -> 0x2203)
        assert lib.qrx_record(str(second).encode()) == 0
        robot.jog_speed = 42
        assert robot.jog_speed == 42  # the setting is on the wire before the answer
        assert lib.qrx_record(None) == 0
        robot.mode  # noqa: B018 (not recorded)
    one, two = recording.read(str(first)), recording.read(str(second))
    assert "GetCoordinationMode" in [f.name for f in one]
    assert [f.json for f in two if f.name == "SetSpeed"][0]["speed"] == 42
    assert "GetOperationMode" not in [f.name for f in one + two]
    assert lib.qrx_record(str(tmp_path / "no" / "such" / "folder.pcap").encode()) == -1


def _addresses(pcap: Path) -> set:
    """The IPv4 addresses of every packet in a recording (raw IP records)."""
    data, found, at = pcap.read_bytes(), set(), 24
    while at < len(data):
        size = struct.unpack("<I", data[at + 8:at + 12])[0]
        found |= {".".join(map(str, data[at + 16 + i:at + 20 + i])) for i in (12, 16)}
        at += 16 + size
    return found


def _within(part: List[Tuple[str, int, str]], whole: List[Tuple[str, int, str]]) -> bool:
    """Whether part is a run of whole's consecutive frames, each direction on its own."""
    for direction in (recording.TO_CONTROLLER, recording.FROM_CONTROLLER):
        mine = [f for f in part if f[0] == direction]
        all_ = [f for f in whole if f[0] == direction]
        if not any(all_[i:i + len(mine)] == mine for i in range(len(all_) - len(mine) + 1)):
            return False
    return True


def test_robot_record_takes_its_controller_only(tmp_path: Path, capfd: pytest.CaptureFixture) -> None:
    lib = _library.library()
    sims, jobs = [], []
    for name in ("one", "two"):
        jobs.append(tmp_path / name / "controller")
        jobs[-1].mkdir(parents=True)
        sims.append(Sim(next_address(), options=["--job-dir", str(jobs[-1])]))
        sims[-1].start()
    mine, everything = tmp_path / "mine.pcap", tmp_path / "all.pcap"
    try:
        with qrx_host.Robot(sims[0].address, timeout=5.0) as one, \
                qrx_host.Robot(sims[1].address, timeout=5.0) as two:
            one.jog_speed = 7  # before: not recorded
            assert lib.qrx_record(str(everything).encode()) == 0
            one.record(mine)
            for robot, speeds, name in ((one, range(40, 50), "one"), (two, range(10, 20), "two")):
                for speed in speeds:
                    robot.jog_speed = speed
                    assert robot.jog_speed == speed
                job = tmp_path / name / "host" / "robotJob" / "R1" / "A.JBR"
                job.parent.mkdir(parents=True)
                job.write_bytes(name.encode() * 1500)  # three chunks
                robot.upload_jobs(root=tmp_path / name / "host")
            one.record(None)
            one.jog_speed = 50  # after: not in mine
            assert one.jog_speed == 50
            capfd.readouterr()
            with pytest.raises(OSError, match="cannot record into"):
                one.record(tmp_path / "no" / "such" / "folder.pcap")
            assert capfd.readouterr().err.count("cannot record into") == 1
            assert lib.qrx_record(None) == 0
        closed = tmp_path / "closed.pcap"
        with pytest.raises(OSError, match="closed"):
            one.record(closed)
        assert lib.qrxc_record(None, str(closed).encode()) == -1
        assert not closed.exists()

        frames = recording.read(str(mine))
        assert sims[1].address not in _addresses(mine) and sims[0].address in _addresses(mine)
        speeds = [f.json["speed"] for f in frames if f.name == "SetSpeed"]
        assert speeds == list(range(40, 50))
        # Every frame of the main link between start and stop, both directions.
        assert wait_for(lambda: _within(main_link(frames), on_the_wire(sims[0])), 20), main_link(frames)
        assert {f.direction for f in frames if not f.file_connection} == {recording.TO_CONTROLLER,
                                                                          recording.FROM_CONTROLLER}
        # The file connection of the upload, both directions, every chunk.
        files = [f for f in frames if f.file_connection]
        assert b"".join(f.payload for f in files if f.name == "UploadChunk") == b"one" * 1500
        assert {f.direction for f in files} == {recording.TO_CONTROLLER, recording.FROM_CONTROLLER}
        # qrx_record at the same time took both controllers.
        both = recording.read(str(everything))
        assert {sims[0].address, sims[1].address} <= _addresses(everything)
        assert sorted(f.json["speed"] for f in both if f.name == "SetSpeed") == list(range(10, 20)) + list(range(40, 51))
        assert b"".join(f.payload for f in both if f.name == "UploadChunk") == b"one" * 1500 + b"two" * 1500
    finally:
        for sim in sims:
            sim.stop()
            sim.log.unlink()


def test_plot_shows_joints_states_and_the_error(sim: Sim, tmp_path: Path) -> None:
    pcap = tmp_path / "moves.pcap"
    lib = _library.library()
    assert lib.qrx_record(str(pcap).encode()) == 0
    with qrx_host.Robot(sim.address, timeout=5.0) as robot:
        with pytest.raises(qrx_host.Refused) as refused:
            robot.movj([10, 0, 0, 0, 0, 0])  # the servo is off
        refusal = str(refused.value)
        robot.power_on()
        assert wait_for(lambda: robot.servo_state is qrx_host.ServoState.RUNNING, 10)
        robot.movj([20, -10, 5, 0, 30, 45], vel=100)
        robot.wait_move_done([20, -10, 5, 0, 30, 45], tolerance=0.5, timeout=20)
    assert lib.qrx_record(None) == 0
    frames = recording.read(str(pcap))

    figure = plot.figure(frames, "moves")
    joints, bands = figure.axes
    assert joints.get_ylabel() == "joint position (deg)"
    assert bands.get_xlabel() == "time (s) from the first frame"
    lines = {line.get_label(): line for line in joints.get_lines() if not line.get_label().startswith("_")}
    assert sorted(lines) == ["J1", "J2", "J3", "J4", "J5", "J6"]
    for axis, target in zip(["J1", "J2", "J3", "J4", "J5", "J6"], [20, -10, 5, 0, 30, 45]):
        assert lines[axis].get_ydata()[-1] == pytest.approx(target, abs=0.5)
    errors = [line for line in joints.get_lines() if line.get_label() == "_error"]
    assert len(errors) == 1
    error_time = next(f.time for f in frames if f.code == 0x2B03) - frames[0].time
    assert errors[0].get_xdata()[0] == pytest.approx(error_time)
    assert ["error: " + refusal] == [t.get_text() for t in joints.texts]
    assert [t.get_text() for t in bands.get_yticklabels()] == ["servo", "mode", "running"]
    band_texts = {t.get_text().strip() for t in bands.texts}
    assert {"stop", "running", "teach"} <= band_texts

    out = tmp_path / "moves.png"
    result = subprocess.run([sys.executable, "-m", "qrx_host.plot", str(pcap), "-o", str(out)], capture_output=True,
                            text=True, timeout=120, env=os.environ)
    assert result.returncode == 0, result.stderr
    header = out.read_bytes()[:24]
    assert header[:8] == b"\x89PNG\r\n\x1a\n"
    assert struct.unpack(">II", header[16:24]) == (1100, 650)


def test_a_killed_host_keeps_all_but_its_last_milliseconds(sim: Sim, tmp_path: Path) -> None:
    pcap = tmp_path / "killed.pcap"
    # The host sets 20 speeds, each followed by a query that waits for an
    # answer (so the setting is on the wire), waits 200 ms (everything before
    # is that old at the kill), says so, and goes on until it is killed.
    script = ("import itertools, sys, time, qrx_host\n"
              "r = qrx_host.Robot(%r, timeout=5.0)\n"
              "for speed in range(1, 21):\n"
              "    r.jog_speed = speed\n"
              "    r.jog_speed\n"
              "time.sleep(0.2)\n"
              "print('ready', flush=True)\n"
              "for speed in itertools.cycle(range(30, 40)):\n"
              "    r.jog_speed = speed\n" % sim.address)
    host = subprocess.Popen([sys.executable, "-c", script], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                            text=True, env=dict(os.environ, QRX_RECORD=str(pcap)))
    try:
        assert host.stdout is not None and host.stdout.readline().strip() == "ready"
    finally:
        host.kill()
        host.wait(10)
    try:
        frames = recording.read(str(pcap))
    except recording.RecordingError as error:  # killed inside a write: the frames before it
        frames = error.frames
    speeds = [f.json["speed"] for f in frames if f.name == "SetSpeed"]
    assert speeds[:20] == list(range(1, 21))
    answers = [f for f in frames if f.name == "receivedSpeedInfo"]
    assert len(answers) >= 20
