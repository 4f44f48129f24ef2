"""Values, errors and queue instructions of the qrx_host Python API."""
from __future__ import annotations

import enum
from dataclasses import dataclass, field
from typing import Sequence, Union


class ServoState(enum.IntEnum):
    """Servo state as the controller reports it."""

    STOP = 0
    READY = 1
    ALARM = 2
    RUNNING = 3


class Mode(enum.IntEnum):
    """Operation mode."""

    TEACH = 0
    REMOTE = 1
    RUN = 2


class Coord(enum.IntEnum):
    """Coordinate system."""

    JOINT = 0
    CARTESIAN = 1
    TOOL = 2
    USER = 3


class LinkEvent(enum.IntEnum):
    """A change of the link to the controller."""

    UP = 1
    DROPPED = 2
    BACK = 3


class LinkReason(enum.IntEnum):
    """Why the link went down (NONE for UP and BACK)."""

    NONE = 0
    CLOSED_BY_HOST = 1
    CONNECTION_LOST = 2
    CONTROLLER_SILENT = 3


class QrxError(Exception):
    """Base of the errors raised by qrx_host."""


class ConnectionRefused(QrxError, ConnectionRefusedError):
    """No controller answered at the address and port."""


class CallTimedOut(QrxError, TimeoutError):
    """A waiting call ran out of its bound before the controller answered."""


class Refused(QrxError):
    """The controller refused a command: its error message answered it.
    ``str()`` is the controller's text; ``command`` is the code of the
    command it answered, ``code`` the controller's error code ("type", 0 if
    none) and ``call`` the Robot call that sent the command."""

    def __init__(self, text: str, command: int = 0, code: int = 0, call: str = "") -> None:
        super().__init__(text)
        self.text = text
        self.command = command
        self.code = code
        self.call = call


class NotConnected(QrxError):
    """The Robot is closed."""


class TransferFailed(QrxError):
    """A file transfer ended with failures; the message is the library's
    last failure text (the controller's refusal, a broken connection, ...)."""

    def __init__(self, message: str, failures: int = 1) -> None:
        super().__init__(message)
        self.failures = failures


class SpeedUnit(enum.IntEnum):
    """Unit of a queued move's velocity."""

    CM_PER_S = 0
    MM_PER_S = 1
    PERCENT = 2


class MoveKind(enum.IntEnum):
    """Instruction type of a queued move."""

    MOVJ = 1
    MOVL = 2


@dataclass
class Move:
    """A joint (MOVJ) or linear (MOVL) move to target, carried with the queue."""

    target: Sequence[float]
    kind: MoveKind = MoveKind.MOVJ
    velocity: float = 50.0
    unit: SpeedUnit = SpeedUnit.PERCENT
    acc: float = 50.0
    dec: float = 50.0
    blending: float = 0.0
    coord: Coord = Coord.JOINT
    name: str = "P001"


@dataclass
class Wait:
    """A pause of the queue (TIMER), in seconds."""

    seconds: float


@dataclass
class DigitalOut:
    """Sets digital output port (1..16) on or off (DOUT)."""

    port: int
    on: bool = True


Instruction = Union[Move, Wait, DigitalOut]


@dataclass(frozen=True)
class MotorFigures:
    """Motor rows: two rows of 7 robot axes and two of 5 external axes."""

    robot: Sequence[Sequence[float]] = field(default_factory=tuple)
    external: Sequence[Sequence[float]] = field(default_factory=tuple)
