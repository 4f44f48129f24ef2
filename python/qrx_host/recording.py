"""Reading a recorded session (QRX_RECORD=PATH or qrx_record()): every frame
of the controller link and of the file connection, both directions, with its
time.

    from qrx_host import recording
    for frame in recording.read("session.pcap"):
        print(frame.time, frame.direction, hex(frame.code), frame.name, frame.json)

The file is pcap with synthetic IPv4/TCP segments (Wireshark shows it with
the qrx dissector). The names of the codes come from the library's own
catalogue (qrx_code_name), so they match the dissector and the library.
"""
from __future__ import annotations

import functools
import json
import struct
import zlib
from typing import Any, Dict, List, NamedTuple, Optional, Tuple

from . import _library

TO_CONTROLLER = "to controller"
FROM_CONTROLLER = "from controller"
FILE_PORT = 5000
_CONTROLLER_PORTS = (6001, FILE_PORT)
_LINK_TYPES = {1: 14, 101: 0, 113: 16, 228: 0}  # link type: bytes before the IP header
_MAX_PACKET = 256 * 1024


class Frame(NamedTuple):
    """One frame: time (seconds since the epoch), direction (TO_CONTROLLER or
    FROM_CONTROLLER), code, name ("unknown" when the library does not know
    the code), json (the payload parsed, None when it is not JSON), payload
    (the bytes) and file_connection (True on the file connection, port 5000)."""
    time: float
    direction: str
    code: int
    name: str
    json: Any
    payload: bytes
    file_connection: bool


class RecordingError(ValueError):
    """The file is not a recording, or is damaged from some point on; frames
    holds every frame read before the fault."""

    def __init__(self, message: str, frames: List[Frame]) -> None:
        super().__init__(message)
        self.frames = frames


@functools.lru_cache(maxsize=None)
def code_name(code: int, from_controller: bool, file_connection: bool = False) -> str:
    """The library's name of a code ("unknown" when it has none)."""
    name: Optional[bytes] = _library.library().qrx_code_name(code, int(from_controller), int(file_connection))
    return name.decode() if name else "unknown"


def _parse_json(payload: bytes) -> Any:
    try:
        return json.loads(payload.decode("utf-8"))
    except (UnicodeDecodeError, ValueError):
        return None


class _Stream:
    def __init__(self, host: Tuple[int, int], controller: Tuple[int, int]) -> None:
        self.host = host
        self.controller = controller
        self.next_seq: Dict[bool, Optional[int]] = {True: None, False: None}  # key: from host
        self.bytes: Dict[bool, bytes] = {True: b"", False: b""}


class _Reader:
    def __init__(self, data: bytes) -> None:
        self.data = data
        self.frames: List[Frame] = []
        self.streams: Dict[Tuple[Tuple[int, int], Tuple[int, int]], _Stream] = {}
        self.packet = 0
        self.time = 0.0

    def fail(self, message: str) -> None:
        raise RecordingError(message, self.frames)

    def run(self) -> List[Frame]:
        data = self.data
        if len(data) < 24:
            self.fail("not a pcap file: %d bytes, shorter than the 24-byte file header" % len(data))
        magic = struct.unpack("<I", data[:4])[0]
        kinds = {0xA1B2C3D4: ("<", 1e-6), 0xA1B23C4D: ("<", 1e-9), 0xD4C3B2A1: (">", 1e-6), 0x4D3CB2A1: (">", 1e-9)}
        if magic not in kinds:
            self.fail("not a pcap file: magic number 0x%08x" % magic)
        order, unit = kinds[magic]
        link_type = struct.unpack(order + "I", data[20:24])[0]
        if link_type not in _LINK_TYPES:
            self.fail("unsupported pcap link type %d" % link_type)
        at = 24
        while at < len(data):
            self.packet += 1
            if len(data) - at < 16:
                self.fail("packet %d: the file ends inside its record header" % self.packet)
            seconds, fraction, captured, original = struct.unpack(order + "IIII", data[at:at + 16])
            if captured > _MAX_PACKET:
                self.fail("packet %d: its record claims %d bytes" % (self.packet, captured))
            if len(data) - at - 16 < captured:
                self.fail("packet %d is truncated: %d of its %d bytes are in the file"
                          % (self.packet, len(data) - at - 16, captured))
            if captured < original:
                self.fail("packet %d was captured short: %d of %d bytes" % (self.packet, captured, original))
            self.time = seconds + fraction * unit
            self.link(data[at + 16:at + 16 + captured], link_type)
            at += 16 + captured
        for stream in self.streams.values():
            for from_host, rest in stream.bytes.items():
                if rest:
                    self.fail("the recording ends inside a frame from the %s (%d bytes of it)"
                              % ("host" if from_host else "controller", len(rest)))
        return self.frames

    def link(self, packet: bytes, link_type: int) -> None:
        skip = _LINK_TYPES[link_type]
        if skip:
            if len(packet) < skip:
                self.fail("packet %d: shorter than its link header" % self.packet)
            if packet[skip - 2:skip] != b"\x08\x00":
                return  # not IPv4
        self.ip(packet[skip:])

    def ip(self, packet: bytes) -> None:
        if len(packet) < 20 or packet[0] >> 4 != 4:
            self.fail("packet %d is not an IPv4 packet" % self.packet)
        header = (packet[0] & 0x0F) * 4
        total = struct.unpack(">H", packet[2:4])[0]
        if header < 20 or total < header or total > len(packet):
            self.fail("packet %d: damaged IPv4 header" % self.packet)
        if packet[9] != 6:
            return  # not TCP
        source, target = struct.unpack(">II", packet[12:20])
        self.tcp(packet[header:total], source, target)

    def tcp(self, segment: bytes, source_ip: int, target_ip: int) -> None:
        if len(segment) < 20:
            self.fail("packet %d: damaged TCP header" % self.packet)
        sport, dport, seq = struct.unpack(">HHI", segment[:8])
        header = (segment[12] >> 4) * 4
        flags = segment[13]
        if header < 20 or header > len(segment):
            self.fail("packet %d: damaged TCP header" % self.packet)
        source, target = (source_ip, sport), (target_ip, dport)
        syn, ack = bool(flags & 0x02), bool(flags & 0x10)
        stream = self.stream(source, target, syn and not ack)
        from_host = source == stream.host
        if syn:
            stream.next_seq[from_host] = (seq + 1) & 0xFFFFFFFF
            return
        data = segment[header:]
        if not data:
            return
        expected = stream.next_seq[from_host]
        if expected is None:
            expected = seq
        ahead = (seq - expected) & 0xFFFFFFFF
        if ahead >= 0x80000000:
            ahead -= 0x100000000
        sender = "host" if from_host else "controller"
        if ahead > 0:
            self.fail("packet %d: %d bytes from the %s are missing before it" % (self.packet, ahead, sender))
        if -ahead >= len(data):
            return  # a retransmission
        data = data[-ahead:]
        stream.next_seq[from_host] = (expected + len(data)) & 0xFFFFFFFF
        stream.bytes[from_host] = self.cut(stream, from_host, stream.bytes[from_host] + data)

    def stream(self, source: Tuple[int, int], target: Tuple[int, int], opening: bool) -> _Stream:
        key = (min(source, target), max(source, target))
        if key not in self.streams or opening:
            source_is_host = opening or target[1] in _CONTROLLER_PORTS
            if not opening and target[1] not in _CONTROLLER_PORTS and source[1] not in _CONTROLLER_PORTS:
                source_is_host = target[1] < source[1]
            self.streams[key] = _Stream(source, target) if source_is_host else _Stream(target, source)
        return self.streams[key]

    def cut(self, stream: _Stream, from_host: bool, data: bytes) -> bytes:
        at = 0
        sender = "host" if from_host else "controller"
        while len(data) - at >= 10:
            if data[at:at + 2] != b"Nf":
                self.fail('packet %d: no frame head "Nf" where a frame from the %s should start'
                          % (self.packet, sender))
            length, code = struct.unpack(">HH", data[at + 2:at + 6])
            if len(data) - at < length + 10:
                break
            crc = struct.unpack(">I", data[at + 6 + length:at + 10 + length])[0]
            if zlib.crc32(data[at + 2:at + 6 + length]) & 0xFFFFFFFF != crc:
                self.fail("packet %d: CRC mismatch in frame 0x%04x from the %s" % (self.packet, code, sender))
            payload = data[at + 6:at + 6 + length]
            on_file = stream.controller[1] == FILE_PORT
            self.frames.append(Frame(self.time, TO_CONTROLLER if from_host else FROM_CONTROLLER, code,
                                     code_name(code, not from_host, on_file), _parse_json(payload), payload, on_file))
            at += length + 10
        return data[at:]


def read(path: str) -> List[Frame]:
    """Every frame of the recording at path, in order. Raises RecordingError
    (with the frames before the fault) for a file that is not a recording or
    is truncated or damaged, OSError when it cannot be read."""
    with open(path, "rb") as f:
        data = f.read()
    return _Reader(data).run()
