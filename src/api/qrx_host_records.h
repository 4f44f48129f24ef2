/*
 * qrx_host: the records of the continuous-motion queue
 * (send_continuous_motion_queue). Hosts include qrx_host.h, which includes
 * this header.
 */
#ifndef QRX_HOST_RECORDS_H
#define QRX_HOST_RECORDS_H

/* Text fields of a queue record, NUL included. */
#define QRX_NAME_LEN 32
#define QRX_TEXT_LEN 64
/* Conditions of one IF, ELSEIF, WHILE or WAIT record. */
#define QRX_MAX_CONDITIONS 8
#define QRX_MAX_CONDITION_GROUPS 4
/* Coordinates of a queued position. */
#define QRX_POSITION_SIZE 21

/* ------------------------------------------------------------------------
 * Continuous-motion queue records (send_continuous_motion_queue)
 *
 * One fixed-size record per instruction: the type code selects the member
 * of `u` that is read; every field there is one parameter of that
 * instruction. Zero-fill a record before filling it.
 * ------------------------------------------------------------------------ */

/* A numeric parameter: a constant or a variable.
 * varName empty (or varType "CONST"): the constant `value`.
 * Otherwise the variable of that name, classified by varType:
 *   "INT" local integer, "GINT" global integer, "BOOL" local boolean,
 *   "GBOOL" global boolean, "AUTO" or empty: by the name's prefix,
 *   "GI" global integer, "GD" global real, "GB" global boolean,
 *   "I" local integer, "D" local real.
 * A variable's name ends in its three-digit index ("GI012"). */
typedef struct qrx_param {
    double value;
    char varType[8];
    char varName[QRX_NAME_LEN];
} qrx_param;

/* A position carried with the instruction (not from a job file). */
typedef struct qrx_position {
    char name[QRX_NAME_LEN];            /* "key" */
    int ctype;                          /* coordinate type */
    double data[QRX_POSITION_SIZE];
} qrx_position;

/* Types 1 MOVJ, 2 MOVL, 3 MOVC, 4 MOVCA, 5 IMOV, 6 MOVS, 28 CIL. */
typedef struct qrx_move_params {
    qrx_param velocity;                 /* 1..100 in unit 2 (%), else > 0 */
    int vUnit;                          /* 0 cm/s, 1 mm/s, 2 % */
    qrx_param acc;                      /* 1..100 */
    qrx_param dec;                      /* 1..100 */
    qrx_param pl;                       /* blending 0..5 */
    qrx_param time;                     /* >= 0 */
    qrx_param spin;                     /* MOVCA */
    qrx_param sync;
    int posidtype;                      /* 0 the position `positionId`, 1 the variable `posidname` */
    char positionId[QRX_NAME_LEN];
    char posidname[QRX_NAME_LEN];
    int para;                           /* CIL: ID */
    double radius, side, length, width, margin;
    char imovecoord[QRX_NAME_LEN];      /* IMOV: coordinate system */
    int polish, polishID;
    double polishAngle;
    int ctype;
    qrx_position pos;                   /* the target */
} qrx_move_params;

/* One comparison "(left op right)" of a condition. The type fields travel
 * unchanged: desType 2 names the right operand by paramName, 3 by
 * soueceName, any other value by desValue. */
typedef struct qrx_condition {
    int group;                          /* 0..QRX_MAX_CONDITION_GROUPS-1: 0 first, then equal or one more */
    int logic;                          /* joins it to the previous one of its group: 0 AND, 1 OR, 2 NOT */
    int keyType;
    char key[QRX_NAME_LEN];             /* left operand */
    int inNumLeft, inNumRight;
    int logicType;                      /* 0 ==, 1 <>, 2 >, 3 >=, 4 <, 5 <= */
    int desType;
    char desValue[QRX_NAME_LEN];
    int paramType;
    char paramName[QRX_NAME_LEN];
    int soueceType;
    char soueceName[QRX_NAME_LEN];
} qrx_condition;

typedef struct qrx_condition_list {
    int count;                          /* 0..QRX_MAX_CONDITIONS */
    qrx_condition conditions[QRX_MAX_CONDITIONS];
    int groupLogic[QRX_MAX_CONDITION_GROUPS]; /* [i] joins group i and i+1 */
} qrx_condition_list;

/* Types 9 IF, 10 ELSE, 11 ELSEIF, 12 ENDIF, 13 WHILE, 14 ENDWHILE. */
typedef struct qrx_block_params {
    qrx_condition_list condition;
} qrx_block_params;

/* Type 7 TIMER, and the waiting time of type 8 WAIT. */
typedef struct qrx_timer_params {
    qrx_param duration;                 /* >= 0 */
} qrx_timer_params;

/* Type 8 WAIT: until the condition holds, at most the duration. */
typedef struct qrx_wait_params {
    qrx_param duration;                 /* >= 0 */
    qrx_condition_list condition;
    int now;                            /* 1: test once, now */
    double filterTime;                  /* >= 0 */
} qrx_wait_params;

/* Type 15 CALL. */
typedef struct qrx_call_params {
    int lineNoToCall;
    char jobName[QRX_NAME_LEN];
} qrx_call_params;

/* Types 16 DOUT, 17 DIN, 20 AIN, 21 AOUT, 22 PULSEOUT. With valueVar.varName
 * set the value is that variable (classified like a qrx_param's). */
typedef struct qrx_io_params {
    int group;                          /* 1: portId is a group of ports */
    int groupValue;
    int groupType;
    int portId;                         /* 1..16 */
    int portValue;                      /* 0 or 1 */
    qrx_param valueVar;                 /* varType/varName only */
    double rate;                        /* PULSEOUT */
    int sum;                            /* PULSEOUT */
    double time;                        /* PULSEOUT, >= 0 */
    int errorHanding;
} qrx_io_params;

/* Types 18 AITOON, 19 AITOOFF. */
typedef struct qrx_aito_params {
    int ain, aout;                      /* 1..16 */
    double para1, para2, para3;
} qrx_aito_params;

/* Types 23-27: arc welding (ARCON, ARCOFF, ARCSET, WVON/WVOFF, REFP ...). */
typedef struct qrx_arc_params {
    double voltage, current;
    int arcsetRamp, arcsetTime_ms;
    double arcsetDistance;
    int arcParameterId;
    double feedtime;
    char positionId[QRX_NAME_LEN];
    int refpPointNum;
    int autoCorrection;
    double correctionSpeed;
    double generatingOfArcCurrent, generatingOfArcVoltage, generatingOfArcTime;
    double weldCurrent, weldVoltage;
    int anamorphismFlag, startUpAgainFlag, generatingOfArcAgainFlag;
    double quenchingOfArcCurrent, quenchingOfArcVoltage, quenchingOfArcTime;
    int quenchingAnamorphismFlag, preventStickingWireFlag;
    int useTemp;
    int hasPosition;                    /* 1: `pos` is sent */
    qrx_position pos;
} qrx_arc_params;

typedef struct qrx_motion_record {
    int type;                           /* instruction type 1..29 (29: skipped) */
    int logout;                         /* 1: disabled */
    int userParamInt;
    char userParamString[QRX_TEXT_LEN];
    union {
        qrx_move_params move;           /* 1-6, 28 */
        qrx_timer_params timer;         /* 7 */
        qrx_wait_params wait;           /* 8 */
        qrx_block_params block;         /* 9-14 */
        qrx_call_params call;           /* 15 */
        qrx_io_params io;               /* 16, 17, 20-22 */
        qrx_aito_params aito;           /* 18, 19 */
        qrx_arc_params arc;             /* 23-27 */
    } u;
} qrx_motion_record;

#endif /* QRX_HOST_RECORDS_H */
