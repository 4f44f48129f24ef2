#!/usr/bin/env python3
"""A host without Qt (Python through ctypes) moves a job file to qrx-sim and
back into a fresh folder: the bytes match, the failure count is 0, and a
file the controller does not have is not invented.

    host_files.py <qrx-sim> <libqrx_host.so> <address>
"""
import ctypes
import os
import subprocess
import sys
import tempfile


def main():
    sim_path, lib_path, address = sys.argv[1:4]
    with tempfile.TemporaryDirectory() as tmp:
        controller = os.path.join(tmp, "controller")
        sim = subprocess.Popen([sim_path, "--address", address, "--job-dir", controller],
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        try:
            for line in sim.stdout:  # qrx-sim prints one line once it listens
                if "listening" in line:
                    break
            else:
                return fail("qrx-sim did not start")
            return run(ctypes.CDLL(lib_path), address.encode(), tmp)
        finally:
            sim.terminate()
            sim.wait(timeout=30)


def fail(text):
    print("FAIL:", text)
    return 1


def run(lib, address, tmp):
    job = b"NOP\nMOVJ VJ=20.0 PL=0\nEND\n"
    host = os.path.join(tmp, "host")
    fresh = os.path.join(tmp, "fresh")
    os.makedirs(os.path.join(host, "robotJob", "R2"))
    with open(os.path.join(host, "robotJob", "R2", "DEMO.JBR"), "wb") as f:
        f.write(job)
    if lib.connect_robot(address) != 1:
        return fail("no link")
    lib.qrx_set_job_root(host.encode())
    lib.upload_job()
    if lib.qrx_last_transfer_failed() != 0:
        return fail("upload failed")
    lib.qrx_set_job_root(fresh.encode())
    lib.download_job()
    if lib.qrx_last_transfer_failed() != 0:
        return fail("download failed")
    with open(os.path.join(fresh, "robotJob", "R2", "DEMO.JBR"), "rb") as f:
        got = f.read()
    lib.disconnect_robot()
    if got != job:
        return fail("downloaded bytes differ: %r" % got)
    listed = sorted(os.listdir(os.path.join(fresh, "robotJob")))
    if listed != ["R2"]:
        return fail("unexpected folders %r" % listed)
    print("PASS: job file round trip from a host without Qt")
    return 0


if __name__ == "__main__":
    sys.exit(main())
