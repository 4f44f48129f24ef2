"""Drive a robot controller (or qrx-sim) from Python.

    import qrx_host
    with qrx_host.Robot("192.168.1.13", timeout=2.0) as robot:
        robot.mode = qrx_host.Mode.TEACH
        print(robot.position())

The shared library is found through QRX_HOST_LIBRARY, a build folder
(QRX_BUILD_DIR, or the source tree's build/), or where ``cmake --install``
put it.
"""
from ._library import load as load_library
from .robot import Robot
from .types import (CallTimedOut, ConnectionRefused, Coord, DigitalOut, Instruction, LinkEvent, LinkReason, Mode,
                    MotorFigures, Move, MoveKind, NotConnected, QrxError, Refused, ServoState, SpeedUnit,
                    TransferFailed, Wait)
from .transfer import ProgressCallback

__all__ = [
    "Robot", "load_library", "CallTimedOut", "ConnectionRefused", "Coord", "DigitalOut", "Instruction",
    "LinkEvent", "LinkReason", "Mode", "MotorFigures", "Move", "MoveKind", "NotConnected", "QrxError", "Refused",
    "ServoState", "SpeedUnit", "TransferFailed", "ProgressCallback", "Wait",
]
