#!/usr/bin/env python3
"""Drive a robot controller (or qrx-sim) from Python through ctypes.

Loads libqrx_host.so, connects, powers the servo, moves the robot with a
joint move while watching the position, sets and reads digital IO and a
global variable, reads the state and disconnects. No Qt is needed on the
Python side: the library runs its own.

Usage: demo.py [--lib path/to/libqrx_host.so] [controller-address]
Exit status 0 when every step did what it should, 1 otherwise.
"""
import argparse
import ctypes
import os
import sys
import time

DOUBLE6 = ctypes.c_double * 6
DOUBLE16 = ctypes.c_double * 16


def load(path):
    lib = ctypes.CDLL(path)
    signatures = {
        "connect_robot": ([ctypes.c_char_p], ctypes.c_int),
        "disconnect_robot": ([], None),
        "connection_status": ([], ctypes.c_int),
        "servo_power_on": ([], ctypes.c_int),
        "servo_power_off": ([], None),
        "get_servo_state": ([], ctypes.c_int),
        "set_current_mode": ([ctypes.c_int], None),
        "get_current_mode": ([], ctypes.c_int),
        "robot_movj": ([ctypes.POINTER(ctypes.c_double)] + [ctypes.c_int] * 4, None),
        "get_current_position": ([ctypes.POINTER(ctypes.c_double), ctypes.c_int], None),
        "set_dout": ([ctypes.c_int, ctypes.c_int], None),
        "get_dout": ([ctypes.POINTER(ctypes.c_double)], None),
        "set_global_variant": ([ctypes.c_char_p, ctypes.c_double], None),
        "get_global_variant": ([ctypes.c_char_p], ctypes.c_double),
        "get_robot_running_state": ([], ctypes.c_int),
    }
    for name, (args, result) in signatures.items():
        function = getattr(lib, name)
        function.argtypes = args
        function.restype = result
    return lib


def wait_until(check, seconds):
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        if check():
            return True
        time.sleep(0.05)
    return False


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("address", nargs="?", default="127.0.0.1")
    here = os.path.dirname(os.path.abspath(__file__))
    parser.add_argument("--lib", default=os.environ.get(
        "QRX_HOST_LIB", os.path.join(here, "..", "build", "src", "libqrx_host.so")))
    args = parser.parse_args()
    os.environ.setdefault("QT_LOGGING_RULES", "qrx.*.debug=false")

    qrx = load(args.lib)
    print(f"demo.py: driving the controller at {args.address}")

    def fail(why):
        print(f"    FAILED: {why}")
        qrx.disconnect_robot()
        return 1

    if qrx.connect_robot(args.address.encode("ascii")) != 1:
        return fail("no controller answers at that address")
    print("connected")

    if qrx.servo_power_on() != 1 or not wait_until(lambda: qrx.get_servo_state() == 3, 5):
        return fail("the drives did not come up")
    print(f"servo state {qrx.get_servo_state()}: drives running")

    target = DOUBLE6(20.0, 10.0, -5.0, 0.0, 30.0, 45.0)
    qrx.robot_movj(target, 50, 0, 50, 50)
    position = DOUBLE6()

    def arrived():
        qrx.get_current_position(position, 0)
        print("position " + " ".join(f"{v:8.3f}" for v in position))
        return all(abs(position[i] - target[i]) < 1e-3 for i in range(6))

    if not wait_until(arrived, 20):
        return fail("the joint move did not arrive")

    # A getter returns at the controller's next reply of any kind, so values
    # are read back until the answer to this query is in.
    qrx.set_dout(2, 1)
    outputs = DOUBLE16()

    def output_set():
        qrx.get_dout(outputs)
        return outputs[1] == 1.0

    ok = wait_until(output_set, 3)
    print("digital outputs " + " ".join(f"{v:.0f}" for v in outputs))
    if not ok:
        return fail("digital output 2 not set")

    qrx.set_global_variant(b"GI007", 42)
    ok = wait_until(lambda: qrx.get_global_variant(b"GI007") == 42.0, 3)
    print(f"GI007 reads {qrx.get_global_variant(b'GI007')}")
    if not ok:
        return fail("the variable does not read back")

    print(f"running state {qrx.get_robot_running_state()}, mode {qrx.get_current_mode()}")
    qrx.servo_power_off()
    qrx.disconnect_robot()
    print("demo.py: all steps done")
    return 0


if __name__ == "__main__":
    sys.exit(main())
