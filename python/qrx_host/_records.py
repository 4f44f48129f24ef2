"""ctypes mirrors of the continuous-motion queue records of qrx_host_records.h."""
from __future__ import annotations

import ctypes

NAME_LEN = 32
TEXT_LEN = 64
MAX_CONDITIONS = 8
MAX_CONDITION_GROUPS = 4
POSITION_SIZE = 21

_c = ctypes
_name = _c.c_char * NAME_LEN


class Param(_c.Structure):
    _fields_ = [("value", _c.c_double), ("varType", _c.c_char * 8), ("varName", _name)]


class Position(_c.Structure):
    _fields_ = [("name", _name), ("ctype", _c.c_int), ("data", _c.c_double * POSITION_SIZE)]


class MoveParams(_c.Structure):
    _fields_ = [
        ("velocity", Param), ("vUnit", _c.c_int), ("acc", Param), ("dec", Param), ("pl", Param),
        ("time", Param), ("spin", Param), ("sync", Param), ("posidtype", _c.c_int),
        ("positionId", _name), ("posidname", _name), ("para", _c.c_int),
        ("radius", _c.c_double), ("side", _c.c_double), ("length", _c.c_double),
        ("width", _c.c_double), ("margin", _c.c_double), ("imovecoord", _name),
        ("polish", _c.c_int), ("polishID", _c.c_int), ("polishAngle", _c.c_double),
        ("ctype", _c.c_int), ("pos", Position),
    ]


class Condition(_c.Structure):
    _fields_ = [
        ("group", _c.c_int), ("logic", _c.c_int), ("keyType", _c.c_int), ("key", _name),
        ("inNumLeft", _c.c_int), ("inNumRight", _c.c_int), ("logicType", _c.c_int),
        ("desType", _c.c_int), ("desValue", _name), ("paramType", _c.c_int), ("paramName", _name),
        ("soueceType", _c.c_int), ("soueceName", _name),
    ]


class ConditionList(_c.Structure):
    _fields_ = [("count", _c.c_int), ("conditions", Condition * MAX_CONDITIONS),
                ("groupLogic", _c.c_int * MAX_CONDITION_GROUPS)]


class BlockParams(_c.Structure):
    _fields_ = [("condition", ConditionList)]


class TimerParams(_c.Structure):
    _fields_ = [("duration", Param)]


class WaitParams(_c.Structure):
    _fields_ = [("duration", Param), ("condition", ConditionList), ("now", _c.c_int),
                ("filterTime", _c.c_double)]


class CallParams(_c.Structure):
    _fields_ = [("lineNoToCall", _c.c_int), ("jobName", _name)]


class IoParams(_c.Structure):
    _fields_ = [
        ("group", _c.c_int), ("groupValue", _c.c_int), ("groupType", _c.c_int), ("portId", _c.c_int),
        ("portValue", _c.c_int), ("valueVar", Param), ("rate", _c.c_double), ("sum", _c.c_int),
        ("time", _c.c_double), ("errorHanding", _c.c_int),
    ]


class AitoParams(_c.Structure):
    _fields_ = [("ain", _c.c_int), ("aout", _c.c_int), ("para1", _c.c_double), ("para2", _c.c_double),
                ("para3", _c.c_double)]


class ArcParams(_c.Structure):
    _fields_ = [
        ("voltage", _c.c_double), ("current", _c.c_double), ("arcsetRamp", _c.c_int),
        ("arcsetTime_ms", _c.c_int), ("arcsetDistance", _c.c_double), ("arcParameterId", _c.c_int),
        ("feedtime", _c.c_double), ("positionId", _name), ("refpPointNum", _c.c_int),
        ("autoCorrection", _c.c_int), ("correctionSpeed", _c.c_double),
        ("generatingOfArcCurrent", _c.c_double), ("generatingOfArcVoltage", _c.c_double),
        ("generatingOfArcTime", _c.c_double), ("weldCurrent", _c.c_double), ("weldVoltage", _c.c_double),
        ("anamorphismFlag", _c.c_int), ("startUpAgainFlag", _c.c_int), ("generatingOfArcAgainFlag", _c.c_int),
        ("quenchingOfArcCurrent", _c.c_double), ("quenchingOfArcVoltage", _c.c_double),
        ("quenchingOfArcTime", _c.c_double), ("quenchingAnamorphismFlag", _c.c_int),
        ("preventStickingWireFlag", _c.c_int), ("useTemp", _c.c_int), ("hasPosition", _c.c_int),
        ("pos", Position),
    ]


class RecordUnion(_c.Union):
    _fields_ = [("move", MoveParams), ("timer", TimerParams), ("wait", WaitParams), ("block", BlockParams),
                ("call", CallParams), ("io", IoParams), ("aito", AitoParams), ("arc", ArcParams)]


class MotionRecord(_c.Structure):
    _fields_ = [("type", _c.c_int), ("logout", _c.c_int), ("userParamInt", _c.c_int),
                ("userParamString", _c.c_char * TEXT_LEN), ("u", RecordUnion)]
