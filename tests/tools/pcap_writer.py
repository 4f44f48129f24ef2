"""Writes TCP conversations into a pcap file, for dissector tests.

Each conversation starts with a handshake; every segment carries the bytes
given to it, with sequence and acknowledgement numbers that follow the
stream, so that a reader reassembles it like a capture from the wire.
"""

import struct
import zlib

HEAD = b"Nf"


def frame(code, payload, bad_crc=False):
    """One frame: "Nf", length, code, payload, CRC-32 of length+code+payload."""
    body = struct.pack(">HH", len(payload) & 0xFFFF, code) + payload
    crc = zlib.crc32(body) & 0xFFFFFFFF
    if bad_crc:
        crc ^= 0x00000001
    return HEAD + body + struct.pack(">I", crc)


def _checksum(data):
    if len(data) % 2:
        data += b"\0"
    total = sum(struct.unpack(">%dH" % (len(data) // 2), data))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return ~total & 0xFFFF


def _ip(addr):
    return bytes(int(x) for x in addr.split("."))


class Conversation:
    """One TCP connection between a host and a controller port."""

    def __init__(self, writer, host, host_port, controller, controller_port):
        self.w = writer
        self.ends = {"host": (host, host_port), "controller": (controller, controller_port)}
        self.seq = {"host": 1000, "controller": 5000}
        self._segment("host", b"", flags=0x02)
        self.seq["host"] += 1
        self._segment("controller", b"", flags=0x12)
        self.seq["controller"] += 1
        self._segment("host", b"", flags=0x10)

    def send(self, side, data):
        """One TCP segment from side ("host" or "controller") carrying data."""
        self._segment(side, data, flags=0x18)
        self.seq[side] += len(data)

    def _segment(self, side, data, flags):
        other = "controller" if side == "host" else "host"
        (src, sport), (dst, dport) = self.ends[side], self.ends[other]
        ack = self.seq[other] if flags != 0x02 else 0
        tcp = struct.pack(">HHIIBBHHH", sport, dport, self.seq[side], ack, 5 << 4, flags, 65535, 0, 0)
        pseudo = _ip(src) + _ip(dst) + struct.pack(">BBH", 0, 6, len(tcp) + len(data))
        tcp = tcp[:16] + struct.pack(">H", _checksum(pseudo + tcp + data)) + tcp[18:]
        total = 20 + len(tcp) + len(data)
        ip = struct.pack(">BBHHHBBH4s4s", 0x45, 0, total, self.w.next_id(), 0x4000, 64, 6, 0, _ip(src), _ip(dst))
        ip = ip[:10] + struct.pack(">H", _checksum(ip)) + ip[12:]
        ether = b"\x02\x00\x00\x00\x00\x02" + b"\x02\x00\x00\x00\x00\x01" + b"\x08\x00"
        self.w.packet(ether + ip + tcp + data)


class PcapWriter:
    def __init__(self, path):
        self.file = open(path, "wb")
        self.file.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, 1))
        self.count = 0

    def next_id(self):
        return self.count & 0xFFFF

    def packet(self, data):
        self.count += 1
        self.file.write(struct.pack("<IIII", 1700000000 + self.count, 0, len(data), len(data)))
        self.file.write(data)

    def conversation(self, host, host_port, controller, controller_port):
        return Conversation(self, host, host_port, controller, controller_port)

    def close(self):
        self.file.close()
