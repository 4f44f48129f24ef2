#!/usr/bin/env python3
"""Drive a robot controller (or qrx-sim) from Python with the qrx_host package.

Connects with a bound on every call, powers the servo, moves the robot with a
joint move and waits until it arrives, sets and reads digital IO and a global
variable, reads the state and disconnects. No Qt is needed on the Python side:
the library runs its own.

Usage: demo.py [--lib path/to/libqrx_host.so] [controller-address]
Exit status 0 when every step did what it should, 1 otherwise.
"""
import argparse
import os
import sys
import time
from pathlib import Path


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
    parser.add_argument("--lib", help="the qrx_host library (default: QRX_HOST_LIBRARY, a build folder, "
                                      "or where cmake --install put it)")
    args = parser.parse_args()
    if args.lib:
        os.environ["QRX_HOST_LIBRARY"] = args.lib
    os.environ.setdefault("QT_LOGGING_RULES", "qrx.*.debug=false")
    try:
        import qrx_host
    except ImportError:  # not installed: the package beside this example
        sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "python"))
        import qrx_host
    from qrx_host import Coord, Mode, ServoState

    print(f"demo.py: driving the controller at {args.address}")
    qrx_host.Robot.on_link_event(lambda event, reason: print(f"link {event.name} ({reason.name})"))
    try:
        with qrx_host.Robot(args.address, timeout=2.0) as robot:
            print("connected")
            robot.mode = Mode.TEACH
            robot.power_on()
            if not wait_until(lambda: robot.servo_state is ServoState.RUNNING, 5):
                print("    FAILED: the drives did not come up")
                return 1
            print(f"servo state {robot.servo_state.name}: drives running")

            target = (20.0, 10.0, -5.0, 0.0, 30.0, 45.0)
            robot.movj(target, vel=50, coord=Coord.JOINT)
            robot.wait_move_done(target, tolerance=1e-3, timeout=20)
            print("position " + " ".join(f"{v:8.3f}" for v in robot.position()))

            robot.set_dout(2, True)
            outputs = robot.dout()
            print("digital outputs " + " ".join("1" if on else "0" for on in outputs))
            if not outputs[1]:
                print("    FAILED: digital output 2 not set")
                return 1

            robot.set_global_variable("GI007", 42)
            value = robot.global_variable("GI007")
            print(f"GI007 reads {value}")
            if value != 42.0:
                print("    FAILED: the variable does not read back")
                return 1

            print(f"running state {robot.running_state}, mode {robot.mode.name}")
            robot.power_off()
    except qrx_host.ConnectionRefused as error:
        print(f"    FAILED: {error}")
        return 1
    except qrx_host.CallTimedOut as error:
        print(f"    FAILED: {error}")
        return 1
    finally:
        qrx_host.Robot.on_link_event(None)
    print("demo.py: all steps done")
    return 0


if __name__ == "__main__":
    sys.exit(main())
