"""The Wireshark dissector read by tshark: a capture written here (both
ports, both directions, a frame split over two segments, two frames in one
segment, a wrong CRC, garbage before a head, a file-connection chunk larger
than a segment) is checked field by field in tshark's output.

Usage: test_dissector.py DISSECTOR.lua   (tshark on the PATH)
"""

import os
import subprocess
import sys
import tempfile
import unittest
import zlib

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from pcap_writer import PcapWriter, frame  # noqa: E402

DISSECTOR = None
FIELDS = ["frame.number", "qrx.code", "qrx.name", "qrx.direction", "qrx.link", "qrx.length",
          "qrx.crc.ok", "qrx.crc", "qrx.json", "qrx.member", "qrx.garbage", "qrx.payload"]

CHUNK = bytes((i * 7 + 3) & 0xFF for i in range(2048))  # file data, not text
SPLIT = frame(0x2603, b'{"robot":1,"speed":40}\n')
BAD = frame(0x2103, b'{"mode":1}\n', bad_crc=True)

# The file exchange's codes, one frame each from packet 20 on: (connection,
# sender, code, name). None of them may show as "unknown".
EXCHANGE = [
    ("file", "host", 0x5504, "RequestFile"),
    ("file", "controller", 0x5505, "FileHeader"),
    ("file", "host", 0x5512, "UploadEnd"),
    ("file", "controller", 0x5513, "UploadFinished"),
    ("file", "controller", 0x5521, "FileBegins"),
    ("file", "controller", 0x5522, "FileData"),
    ("file", "host", 0x5523, "FileStored"),
    ("file", "host", 0x5524, "FileReady"),
    ("file", "host", 0x5525, "AbortTransfer"),
    ("file", "host", 0x5544, "ExportFinished"),
    ("main", "host", 0x5061, "UploadStoredNotice"),
    ("main", "host", 0x5532, "StartJobSync"),
    ("main", "controller", 0x5533, "recvJobSumlist"),
    ("main", "controller", 0x5535, "recvJobFileInfoFinish"),
    ("main", "host", 0x5542, "RequestFileList"),
    ("main", "controller", 0x5543, "recvControlLoglist"),
    ("main", "controller", 0x5546, "recvControlENIlist"),
]
FIRST_EXCHANGE_PACKET = 20


def write_capture(path):
    """Packets in order; the expected rows below name them by number."""
    w = PcapWriter(path)
    main = w.conversation("10.0.0.1", 40000, "10.0.0.2", 6001)  # packets 1-3: handshake
    main.send("host", frame(0x2F07, b'{"coord":0,"robot":1}\n'))                             # 4
    main.send("controller", frame(0x2F08, b'{"coord":0,"pos":[1.50,-2.0],"robot":1}\n')
              + frame(0x2003, b'{"mode":0,"robot":1,"status":3}\n'))                          # 5
    main.send("controller", SPLIT[:9])                                                        # 6
    main.send("controller", SPLIT[9:])                                                        # 7
    main.send("controller", BAD)                                                              # 8
    main.send("host", frame(0x2701, b"\x05"))                                                 # 9
    main.send("host", frame(0x7266, b'{"time":1700000000}\n'))                                # 10
    main.send("controller", b"xy" + frame(0x2B03, b'{"data":"\xe9\x94\x99"}\n'))             # 11
    files = w.conversation("10.0.0.1", 40001, "10.0.0.2", 5000)  # 12-14: handshake
    files.send("host", frame(0x5501, b'{"name":"job/R1/A.JBR","size":2048}\n'))              # 15
    files.send("controller", frame(0x5502, b'{"answer":"yes"}\n'))                           # 16
    chunk = frame(0x5511, CHUNK)
    files.send("host", chunk[:1400])                                                          # 17
    files.send("host", chunk[1400:])                                                          # 18
    main.send("controller", frame(0x0102, b""))  # a code the library does not know          # 19
    for connection, sender, code, _ in EXCHANGE:                                              # 20-
        (files if connection == "file" else main).send(sender, frame(code, b"{}\n"))
    w.close()


def tshark_rows(pcap):
    command = ["tshark", "-r", pcap, "-X", "lua_script:" + DISSECTOR, "-o", "qrx.main_port:6001",
               "-o", "qrx.file_port:5000", "-o", "tcp.desegment_tcp_streams:TRUE", "-T", "fields",
               "-E", "separator=\t", "-E", "occurrence=a", "-E", "aggregator=\x1f"]
    for field in FIELDS:
        command += ["-e", field]
    result = subprocess.run(command, capture_output=True, text=True, timeout=120,
                            env=dict(os.environ, LC_ALL="C.UTF-8"))
    if result.returncode != 0 or "Lua: Error" in result.stderr:
        raise AssertionError("tshark failed: " + result.stderr)
    rows = {}
    for line in result.stdout.splitlines():
        cells = line.split("\t")
        cells += [""] * (len(FIELDS) - len(cells))
        rows[int(cells[0])] = {f: cells[i].split("\x1f") if cells[i] else [] for i, f in enumerate(FIELDS)}
    return rows


class DissectorTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tmp = tempfile.TemporaryDirectory()
        pcap = os.path.join(cls.tmp.name, "session.pcap")
        write_capture(pcap)
        cls.rows = tshark_rows(pcap)

    @classmethod
    def tearDownClass(cls):
        cls.tmp.cleanup()

    def test_frames_field_by_field(self):
        # packet: code, name, direction, connection, length, CRC correct
        expected = {
            4: [("0x2f07", "GetCurrentPosition", "host to controller", "main", "22", "1")],
            5: [("0x2f08", "recriveMoreRobotCurPosition", "controller to host", "main", "40", "1"),
                ("0x2003", "receivedServoStatus", "controller to host", "main", "32", "1")],
            7: [("0x2603", "receivedSpeedInfo", "controller to host", "main", "23", "1")],
            8: [("0x2103", "receivedOperationMode", "controller to host", "main", "11", "0")],
            9: [("0x2701", "SetTestMode", "host to controller", "main", "1", "1")],
            10: [("0x7266", "Heartbeat", "host to controller", "main", "20", "1")],
            11: [("0x2b03", "receivedError", "controller to host", "main", "15", "1")],
            15: [("0x5501", "AnnounceUpload", "host to controller", "file", "36", "1")],
            16: [("0x5502", "UploadAnswer", "controller to host", "file", "17", "1")],
            18: [("0x5511", "UploadChunk", "host to controller", "file", "2048", "1")],
            19: [("0x0102", "unknown", "controller to host", "main", "0", "1")],
        }
        for i, (connection, sender, code, name) in enumerate(EXCHANGE):
            direction = "host to controller" if sender == "host" else "controller to host"
            expected[FIRST_EXCHANGE_PACKET + i] = [("0x%04x" % code, name, direction, connection, "3", "1")]
        for packet, frames in expected.items():
            with self.subTest(packet=packet):
                row = self.rows[packet]
                got = list(zip(row["qrx.code"], row["qrx.name"], row["qrx.direction"], row["qrx.link"],
                               row["qrx.length"], row["qrx.crc.ok"]))
                self.assertEqual(got, frames)
                self.assertEqual(len(row["qrx.code"]), len(frames))

    def test_json_text_and_tree(self):
        cases = {
            4: ('{"coord":0,"robot":1}', ["coord=0", "robot=1"]),
            7: ('{"robot":1,"speed":40}', ["robot=1", "speed=40"]),
            11: ('{"data":"\u9519"}', ["data=\u9519"]),
            15: ('{"name":"job/R1/A.JBR","size":2048}', ["name=job/R1/A.JBR", "size=2048"]),
        }
        for packet, (text, members) in cases.items():
            with self.subTest(packet=packet):
                self.assertEqual(self.rows[packet]["qrx.json"], [text])
                self.assertEqual(self.rows[packet]["qrx.member"], members)
        # Nested arrays keep the wire's number text and their index.
        self.assertEqual(self.rows[5]["qrx.member"][:4], ["coord=0", "pos=[...]", "pos[0]=1.50", "pos[1]=-2.0"])

    def test_not_json_payloads_have_no_json(self):
        for packet in (9, 18):
            with self.subTest(packet=packet):
                self.assertEqual(self.rows[packet]["qrx.json"], [])
                self.assertEqual(self.rows[packet]["qrx.member"], [])
        self.assertEqual(self.rows[9]["qrx.payload"], ["05"])

    def test_split_frame_is_reassembled_once(self):
        self.assertEqual(self.rows[6]["qrx.code"], [])
        self.assertEqual(self.rows[7]["qrx.code"], ["0x2603"])
        self.assertEqual(self.rows[17]["qrx.code"], [])
        self.assertEqual(self.rows[18]["qrx.payload"], [CHUNK.hex()])

    def test_wrong_crc_is_flagged_with_the_received_value(self):
        received = int.from_bytes(BAD[-4:], "big")
        self.assertEqual(self.rows[8]["qrx.crc"], ["0x%08x" % received])
        good = zlib.crc32(BAD[2:-4]) & 0xFFFFFFFF
        self.assertNotEqual(received, good)
        self.assertEqual(self.rows[7]["qrx.crc"], ["0x%08x" % int.from_bytes(SPLIT[-4:], "big")])

    def test_bytes_before_a_head_are_shown_and_skipped(self):
        self.assertEqual(self.rows[11]["qrx.garbage"], ["7879"])
        self.assertEqual(self.rows[11]["qrx.code"], ["0x2b03"])


if __name__ == "__main__":
    DISSECTOR = sys.argv.pop(1)
    unittest.main()
