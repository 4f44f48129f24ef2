/*
 * qrx_host: drive a robot controller from a host program.
 *
 * Call connect_robot() with the controller's IP address, then any of the
 * functions below, and disconnect_robot() at the end. Every function returns
 * at once when no connect_robot() was ever called ("no link").
 *
 * Two calling patterns:
 *  - send: the function builds the command and hands it to the link; it
 *    never waits for an acknowledgement.
 *  - wait: the function sends a query and blocks the calling thread, without
 *    a time-out, until the controller's next status reply of any kind
 *    arrives; it then returns the value the library holds at that moment
 *    (possibly one from an earlier reply). A host that needs a bound calls
 *    these from a thread of its own.
 *
 * Arrays are caller-owned buffers of at least the length given in brackets;
 * they are not tested for null. Names are NUL-terminated text; a null name is
 * taken as the empty name. "robot" in a payload is the robot currently
 * addressed (1 unless the controller selected another one).
 *
 * The library needs no Qt application of the host: if there is none, it runs
 * one of its own on a thread it owns. A host that is a Qt program keeps its
 * own application.
 */
#ifndef QRX_HOST_H
#define QRX_HOST_H

#ifndef __cplusplus
#include <stdbool.h>
#endif

#if defined(_WIN32)
#  if defined(QRX_HOST_BUILDING)
#    define QRX_HOST_API __declspec(dllexport)
#  else
#    define QRX_HOST_API __declspec(dllimport)
#  endif
#  define QRX_HOST_CALL __cdecl
#else
#  define QRX_HOST_API __attribute__((visibility("default")))
#  define QRX_HOST_CALL
#endif

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

#ifdef __cplusplus
#include <string>
extern "C" {
#endif

/* ------------------------------------------------------------------------
 * Connection
 * ------------------------------------------------------------------------ */

/* Connects to the controller at ip (ASCII dotted address; null gives the empty
 * address), port 6001. Returns 0 at once, sending nothing, while a link is
 * already running or connecting. Otherwise starts the link and checks the
 * connection five times, 1000 ms apart, keeping the calling thread's Qt events
 * running; on success sends 0x5052 (empty) and returns 1, else closes the link
 * and returns 0 after about five seconds. */
QRX_HOST_API int QRX_HOST_CALL connect_robot(const char *ip);

/* Sends the farewell 0x7277 (empty) unless the link is already closed, then
 * closes the link. Does not wait. Nothing without a link. */
QRX_HOST_API void QRX_HOST_CALL disconnect_robot(void);

/* 1 while connected to the controller, 0 otherwise (0 without a link). */
QRX_HOST_API int QRX_HOST_CALL connection_status(void);

/* Registers the function that receives every error, warning and information
 * text of the controller as NUL-terminated UTF-8 ("错误： ...", "警告： ...",
 * "消息： ..."). It is called on the library's link thread; the text is valid
 * during the call only. Null switches delivery off. When this function
 * returns, a call of the previous handler that was under way has ended and
 * the previous handler is not called again. */
QRX_HOST_API void QRX_HOST_CALL setErrorHandle(void (*handler)(const char *text));

/* ------------------------------------------------------------------------
 * Servo, mode, coordinate system, speed, jogging
 * ------------------------------------------------------------------------ */

/* Sends 0x2001 {"robot","status":1} and 0x2301 {"deadman":1}, waits.
 * Returns 1 when the servo state is then 1, else 0. */
QRX_HOST_API int QRX_HOST_CALL servo_power_on(void);
/* Sends 0x2301 {"deadman":0}, waits. */
QRX_HOST_API void QRX_HOST_CALL servo_power_off(void);
/* Sends 0x2001 {"robot","status":state}: state as a signed byte, "robot" the
 * override robot number as it stands. Does not wait. */
QRX_HOST_API void QRX_HOST_CALL set_servo_state(int state);
/* The servo state last reported (3: drives running). Sends nothing. */
QRX_HOST_API int QRX_HOST_CALL get_servo_state(void);
/* Sends 0x3201 {"robot"}. */
QRX_HOST_API void QRX_HOST_CALL clear_servo_error(void);
/* Sends 0x2101 {"mode":mode} (0 teach, 1 remote, 2 run). */
QRX_HOST_API void QRX_HOST_CALL set_current_mode(int mode);
/* Sends 0x2102 (empty), waits, returns the operation mode. */
QRX_HOST_API int QRX_HOST_CALL get_current_mode(void);
/* Sends 0x2201 {"robot","coord":coord} (0 joint, 1 Cartesian, 2 tool, 3 user). */
QRX_HOST_API void QRX_HOST_CALL set_current_coord(int coord);
/* Sends 0x2202 {"robot"}, waits, returns the coordinate system. */
QRX_HOST_API int QRX_HOST_CALL get_current_coord(void);
/* Sends 0x2601 {"robot","speed"}, speed clamped to 0..103 (101-103: jog steps). */
QRX_HOST_API void QRX_HOST_CALL set_jogging_speed(int speed);
/* Sends 0x2602 {"robot"}, waits, returns the jog speed. */
QRX_HOST_API int QRX_HOST_CALL get_jogging_speed(void);
/* Axis 1..7: sends 0x2901 {"axis","direction":+1/-1} now and every 200 ms
 * until stop_jogging(); outside teach mode the repetition stops after the
 * next step. Nothing unless the servo state is 3 (then the line
 * "伺服不在运行状态,无法执行点动操作!" is logged); any other axis sends
 * nothing. With the Robot's external-axis jog selection, axes 1..5 go out as
 * 8..12 and other axes send nothing. */
QRX_HOST_API void QRX_HOST_CALL start_jogging(int axis, bool direction);
/* Stops the jog timer, sends 0x2902 {"axis"} with the axis as given. */
QRX_HOST_API void QRX_HOST_CALL stop_jogging(int axis);
/* Sends 0x3d02 {"robot"}, waits, returns the running state (2: job running). */
QRX_HOST_API int QRX_HOST_CALL get_robot_running_state(void);

/* ------------------------------------------------------------------------
 * Motion (send only; vel, coord, acc, dec passed through unchecked)
 * ------------------------------------------------------------------------ */

/* 0x4501 {"robot","vel","coord","acc","dec","pos"[6]}. */
QRX_HOST_API void QRX_HOST_CALL robot_movj(double *pos, int vel, int coord, int acc, int dec);
/* 0x4502, as robot_movj. */
QRX_HOST_API void QRX_HOST_CALL robot_movl(double *pos, int vel, int coord, int acc, int dec);
/* 0x4503 {..., "posOne"[6], "posTwo"[6], "posThree"[6], "isFull":false}. */
QRX_HOST_API void QRX_HOST_CALL robot_movc(double *posOne, double *posTwo, double *posThree,
                                           int vel, int coord, int acc, int dec);
/* 0x4503, as robot_movc with "isFull":true (full circle). */
QRX_HOST_API void QRX_HOST_CALL robot_movca(double *posOne, double *posTwo, double *posThree,
                                            int vel, int coord, int acc, int dec);
/* 0x4504 {..., "pos": count arrays of 6}; "pos" left out when count <= 0. */
QRX_HOST_API void QRX_HOST_CALL robot_movs(int count, double **pos, int vel, int coord, int acc, int dec);
/* 0x4507, as robot_movj with pos[12] (robot and external axes). */
QRX_HOST_API void QRX_HOST_CALL robot_extra_movj(double *pos, int vel, int coord, int acc, int dec);
/* 0x4508 {"robot","vel","coord","pos"[12]}: no acc, no dec. */
QRX_HOST_API void QRX_HOST_CALL robot_extra_movl(double *pos, int vel, int coord);
/* 0x4509, as robot_movc with three positions [12] and no "isFull". */
QRX_HOST_API void QRX_HOST_CALL robot_extra_movc(double *posOne, double *posTwo, double *posThree,
                                                 int vel, int coord, int acc, int dec);

/* ------------------------------------------------------------------------
 * IO, positions, variables, motor figures
 * ------------------------------------------------------------------------ */

/* 0x3601 {"port","status"}. */
QRX_HOST_API void QRX_HOST_CALL set_dout(int port, int status);
/* 0x3607 {"port","value"}. */
QRX_HOST_API void QRX_HOST_CALL set_aout(int port, double value);
/* 0x3602 (empty), waits, copies the digital outputs to out[16]. */
QRX_HOST_API void QRX_HOST_CALL get_dout(double *out);
/* 0x3605 (empty), waits, copies the digital inputs to out[16]. */
QRX_HOST_API void QRX_HOST_CALL get_din(double *out);
/* 0x3608 (empty), waits, copies the analog outputs to out[16]. */
QRX_HOST_API void QRX_HOST_CALL get_aout(double *out);
/* 0x360a (empty), waits, copies the analog inputs to out[16]. */
QRX_HOST_API void QRX_HOST_CALL get_ain(double *out);
/* 0x2f07 {"robot","coord"}, waits, copies the current position to pos[6]. */
QRX_HOST_API void QRX_HOST_CALL get_current_position(double *pos, int coord);
/* 0x7012 {"robot","coord":0}, waits, copies the external-axis position to pos[5]. */
QRX_HOST_API void QRX_HOST_CALL get_current_sync_position(double *pos);
/* 0x5605 {"robot","posName"}, waits, copies the global position to out[14]. */
QRX_HOST_API void QRX_HOST_CALL get_GPosition(const char *name, double *out);
/* 0x5604 {"posName","coord","robot","pos"[14]}: robotAxes[7] then syncAxes[7];
 * "robot" is the override robot number as it stands. */
QRX_HOST_API void QRX_HOST_CALL set_GPosition(const char *posName, int coord, double *robotAxes, double *syncAxes);
/* 0x560b {"varType","varName"}, waits, returns the cached value of the named
 * global variable ("GI001", "GD002", "GB003"; others give 0.0). */
QRX_HOST_API double QRX_HOST_CALL get_global_variant(const char *name);
/* 0x5607 {"varType","varName","varValue"}; varType GB 1, GI 2, GD 3, other 0. */
QRX_HOST_API void QRX_HOST_CALL set_global_variant(const char *name, double value);
/* 0x560b {"varType","varName"}, waits, returns the value of the last global
 * variable reply, whatever variable it named. */
QRX_HOST_API double QRX_HOST_CALL get_global_var(const char *name);
/* 0x2a06 {"robot"}, waits, copies the torque rows: robot [7], [7], external [5], [5]. */
QRX_HOST_API void QRX_HOST_CALL get_motor_torque(double *robotOne, double *robotTwo, double *syncOne, double *syncTwo);
/* 0x2a04 {"robot"}, waits, copies the speed rows: robot [7], [7], external [5], [5]. */
QRX_HOST_API void QRX_HOST_CALL get_motor_vel(double *robotOne, double *robotTwo, double *syncOne, double *syncTwo);
/* 0x2a0a {"robot"}, waits, copies the overload rows: robot [7], external [5]. */
QRX_HOST_API void QRX_HOST_CALL get_motor_overload(double *robot, double *sync);

/* ------------------------------------------------------------------------
 * Jobs (names without the ".JBR" extension)
 * ------------------------------------------------------------------------ */

/* 0x3114 {"robot":1,"jobName","suffixname":".JBR"}; nothing while a job runs. */
QRX_HOST_API void QRX_HOST_CALL open_job(const char *name);
/* 0x2501 {"jobname","robot","line":1,"continueRun":0,"startOver":true};
 * nothing while a job runs or with the servo off. */
QRX_HOST_API void QRX_HOST_CALL run_job(const char *name);
/* 0x2501 {"jobname","robot","line"}; preconditions as run_job. */
QRX_HOST_API void QRX_HOST_CALL step_job(const char *name, int line);
/* 0x2401 {"type":1,"robot"} ("robot": the override robot number). */
QRX_HOST_API void QRX_HOST_CALL pause_job(void);
/* 0x2503 {"robot"} ("robot": the override robot number). */
QRX_HOST_API void QRX_HOST_CALL stop_job(void);
/* Queries the mode (0x2102, waits); returns 1 when not in run mode, 2 when the
 * servo state is not 1, else sends 0x2501 {"robot","continueRun":1,"line":1,
 * "startOver":false} and returns 0. */
QRX_HOST_API int QRX_HOST_CALL continue_job(void);
/* 0x2501 {"index":1,"robot","callerName":"moveToPos","continueRun":true,
 * "onFileRun":true,"startOver":false}. */
QRX_HOST_API void QRX_HOST_CALL continue_run(void);
/* 0x3111 {"robot","jobfilename","suffixname":".JBR"}. */
QRX_HOST_API void QRX_HOST_CALL delete_job(const char *name);
/* 0x5011 {"robot","index":count} ("robot": the override robot number). */
QRX_HOST_API void QRX_HOST_CALL set_runs(int count);
/* Sends 0x3503 {"robot"} and returns at once the running line held before
 * this query's answer. */
QRX_HOST_API int QRX_HOST_CALL get_job_running_lines(void);
/* 0x3309 {"robot"}, waits, copies the cycle figures to out[7], writing each
 * to the debug log as it goes. */
QRX_HOST_API void QRX_HOST_CALL get_single_cycle(double *out);

/* ------------------------------------------------------------------------
 * Continuous motion
 * ------------------------------------------------------------------------ */

/* Sends 0x50b1 {"open":true/false}; when closing also 0x2101 {"mode":0}. */
QRX_HOST_API void QRX_HOST_CALL continuous_motion_mode(int open);
/* Sends 0x50b8 (empty). */
QRX_HOST_API void QRX_HOST_CALL continuous_motion_start(void);
/* Sends 0x50b7 (empty). */
QRX_HOST_API void QRX_HOST_CALL continuous_motion_suspend(void);
/* Sends 0x50b9 (empty). */
QRX_HOST_API void QRX_HOST_CALL continuous_motion_stop(void);
/* Turns count records into instructions and sends them with 0x50b4
 * {"data":[instruction objects...],"robot"}, in record order. Records of
 * type 29 or outside 1..29 make no instruction and are skipped. A constant
 * outside its range, or a variable that cannot be classified, is logged as
 * "参数值超限" and the whole queue is refused (nothing is sent): a path
 * with a hole is never moved. Nothing is sent either when no instruction is
 * left. Does not wait. */
QRX_HOST_API void QRX_HOST_CALL send_continuous_motion_queue(const qrx_motion_record *records, int count);

/* ------------------------------------------------------------------------
 * Tools, user frames, calibration
 * ------------------------------------------------------------------------ */

/* 0x380a {"curToolNum","robot"}. */
QRX_HOST_API void QRX_HOST_CALL switch_tool_hand(int toolNum);
/* 0x380b {"robot"}, waits, returns the current tool (0: none). */
QRX_HOST_API int QRX_HOST_CALL get_current_tool_hand(void);
/* 0x3805 {"robot","toolNum","tool":{"x","y","z","A","B","C"}} from tool[6]. */
QRX_HOST_API void QRX_HOST_CALL set_tool_hand_param(int toolNum, double *tool);
/* 0x3806 {"toolNum"}, waits, copies x, y, z, A, B, C of that tool to out[6]
 * (tools 0..31; out is left alone for any other number). */
QRX_HOST_API void QRX_HOST_CALL query_tool_hand_param(int toolNum, double *out);
/* 0x3c08 {"robot","userNum"}, then 0x3c0a {"userNum","inquire":"Calibration"}. */
QRX_HOST_API void QRX_HOST_CALL set_user_coord_number(int userNum);
/* 0x7207 (empty), waits, copies the four-point data to out[9].
 * Call it only after connect_robot(). */
QRX_HOST_API void QRX_HOST_CALL ask_four_point(double *out);
/* 0x7202 {"pointNum","status"}. */
QRX_HOST_API void QRX_HOST_CALL four_point_mark(int pointNum, int status);
/* 0x7201 {"ParamOf4Points":[first,second]}, waits, copies the result to out[5]. */
QRX_HOST_API void QRX_HOST_CALL four_point_calculation(double first, double second, double *out);
/* 0x7205 (empty), waits, returns the DH calculation result. */
QRX_HOST_API bool QRX_HOST_CALL result_for_DH(void);
/* 0x3301 {"axis","clearEncoder":false}, waits, returns whether the zero
 * calibration succeeded. False at once (nothing sent) while the servo state is
 * 2 or 3; true without a link. */
QRX_HOST_API bool QRX_HOST_CALL set_axis_zero_position(int axis);
/* 0x3307 {"axis","robot","value"[7]} with value at index axis-1; nothing when
 * axis is not 1..6 or value is outside -360..360. */
QRX_HOST_API void QRX_HOST_CALL set_zero_pos_shift(int axis, double value);


/* ------------------------------------------------------------------------
 * Embedded dialogs and language (Linux)
 * ------------------------------------------------------------------------
 * The handle is the native window the dialog is shown in: on X11 a window
 * id (the dialog becomes a child window of it), 0 for a window of its own.
 * Each call returns 1 when the dialog is shown, 0 otherwise; the reason is
 * written to the qrx.api log (no display, the host's own Qt application is
 * not a widgets application, the platform cannot host in a foreign window).
 * Dialogs need a display; every other function works without one. When the
 * host runs no Qt application of its own, the library's application thread
 * owns the dialogs and the call returns once the dialog is on screen. */

/* The about dialog; its menu buttons open the two dialogs below. */
QRX_HOST_API int QRX_HOST_CALL showDialog(unsigned long handle);
/* Extension: the jog panel (hold a +/- button to jog the axis). */
QRX_HOST_API int QRX_HOST_CALL qrx_show_jog_panel(unsigned long handle);
/* Extension: the user-frame calibration dialog (four points). */
QRX_HOST_API int QRX_HOST_CALL qrx_show_calibration(unsigned long handle);
/* Extension: the language of log lines, callback texts and dialogs: "zh"
 * (the default) or "en". Returns 1 when applied, 0 for an unknown code. The
 * environment variable QRX_LANG=en chooses English at start. */
QRX_HOST_API int QRX_HOST_CALL qrx_set_language(const char *code);

/* ---- File transfer ---------------------------------------------------------
 * Job files of robot N live in "<job root>/robotJob/RN". The job root is the
 * application folder, or the folder named by the environment variable
 * QRX_JOB_ROOT, or the one set with qrx_set_job_root() (which wins).
 * Files move over a second connection to the controller, port 5000; each
 * call blocks until its files have moved. A download is written beside its
 * target and renamed into place when complete: a broken transfer leaves the
 * old file (a local job file whose MD5 differs is kept until its replacement
 * is complete), never half a file. */

/* Uploads every file of the four local job folders (oldest first). */
QRX_HOST_API void QRX_HOST_CALL upload_job(void);
/* Fetches the controller's job files whose MD5 differs from the local copy. */
QRX_HOST_API void QRX_HOST_CALL download_job(void);

/* Extensions (not part of the controller's original host interface). */

/* Overrides the job root (UTF-8 path); NULL or "" goes back to the default. */
QRX_HOST_API void QRX_HOST_CALL qrx_set_job_root(const char *path);
/* Called in the transferring thread as bytes move: file name (UTF-8, valid
 * during the call; a job file as "R<n>/<name>", up or down), bytes done,
 * bytes of the file. NULL switches it off. */
typedef void (QRX_HOST_CALL *qrx_transfer_progress)(const char *file, long long done, long long total);
QRX_HOST_API void QRX_HOST_CALL qrx_set_transfer_progress(qrx_transfer_progress callback);
/* Outcome of the last transfer call: how many failures ended it (0: all
 * files moved), and its last failure text (UTF-8, copied into text[size],
 * NUL-terminated; the result is the full length, 0 when none). */
QRX_HOST_API int QRX_HOST_CALL qrx_last_transfer_failed(void);
/* 1 when the controller itself refused the last transfer call (it answered
 * a file request or an upload with anything but "yes"), 0 otherwise. */
QRX_HOST_API int QRX_HOST_CALL qrx_last_transfer_refused(void);
QRX_HOST_API int QRX_HOST_CALL qrx_last_transfer_error(char *text, int size);
/* Exports the controller's log files, ENI files or configuration files into
 * folder (created if missing); imports one configuration file (a local
 * path). The result is the number of files moved, -1 on failure or without
 * a link (see qrx_last_transfer_error). An empty log or ENI list is a
 * failure with its own text, and no file connection is opened. */
QRX_HOST_API int QRX_HOST_CALL qrx_export_logs(const char *folder);
QRX_HOST_API int QRX_HOST_CALL qrx_export_eni(const char *folder);
QRX_HOST_API int QRX_HOST_CALL qrx_export_config(const char *folder);
QRX_HOST_API int QRX_HOST_CALL qrx_import_config(const char *path);
/* The pause between two files of an upload, in ms (1000 by default, as the
 * controller expects it; values below 0 read as 0). It gives the controller
 * time to store one file before the next is announced. A controller that
 * stores files as they come needs none; one that needs it and does not get it
 * refuses or misses the next announcement (0x5502 "no", or no answer): the
 * upload then ends with that failure (qrx_last_transfer_error), the files
 * before it stay stored, and the upload is repeated with the default pause.
 * A host that never calls this sees the described pause. */
QRX_HOST_API void QRX_HOST_CALL qrx_set_transfer_pause(int ms);

/* ---- Extension: connect poll interval ---------------------------------------
 * connect_robot() checks the connection up to five times, pausing ms between
 * checks (1000 by default; values below 1 read as 1). Test hosts that connect
 * and disconnect many times set a short pause; a host that never calls this
 * sees the default. */
QRX_HOST_API void QRX_HOST_CALL qrx_set_connect_poll_interval(int ms);

/* ------------------------------------------------------------------------
 * Extensions for host programs (qrx_ prefix)
 *
 * None of these changes a frame on the wire or a result of the functions
 * above until the host calls it: without them every waiting function waits
 * for ever and ends on any waking reply, as described above.
 * ------------------------------------------------------------------------ */

/* Bounds every waiting function ("waits" above) to ms milliseconds; 0 (the
 * default) or less waits without a bound. For the default controller (a
 * handle has its own: qrxc_set_wait_timeout). A call that runs out
 * returns what the library holds, like a call ended by a reply: buffers are
 * filled from the cache, results are the cached values. connect_robot() is
 * not affected. */
QRX_HOST_API void QRX_HOST_CALL qrx_set_wait_timeout(int ms);
/* The bound set by qrx_set_wait_timeout() (0: none). */
QRX_HOST_API int QRX_HOST_CALL qrx_wait_timeout(void);
/* 1 when the calling thread's last waiting call (or qrx_wait_move_done())
 * ended because its bound ran out, 0 when a reply (or the target) ended it.
 * Per thread; 0 before the thread's first waiting call. */
QRX_HOST_API int QRX_HOST_CALL qrx_last_call_timed_out(void);

/* Matched replies, off (0) by default. With them on, a waiting function's
 * wait ends only on the reply the controller sends for its own query (0x2F07
 * is answered by 0x2F08, 0x2102 by 0x2103, ...), not on whatever reply comes
 * first; other replies still update what the library holds. For the default
 * controller (a handle has its own); affects calls that start after it. */
QRX_HOST_API void QRX_HOST_CALL qrx_set_matched_replies(int on);
QRX_HOST_API int QRX_HOST_CALL qrx_matched_replies(void);

/* Connection events. */
#define QRX_LINK_UP 1      /* the link came up after connect_robot() */
#define QRX_LINK_DROPPED 2 /* the link went down */
#define QRX_LINK_BACK 3    /* the link came back by itself after a drop */
/* Why the link went down (QRX_LINK_DROPPED); QRX_LINK_REASON_NONE otherwise. */
#define QRX_LINK_REASON_NONE 0
#define QRX_LINK_REASON_CLOSED_BY_HOST 1    /* disconnect_robot() */
#define QRX_LINK_REASON_CONNECTION_LOST 2   /* the connection closed or failed */
#define QRX_LINK_REASON_CONTROLLER_SILENT 3 /* nothing heard for 7 s: the link closed it */
typedef void (*qrx_link_event_handler)(int event, int reason, void *user);
/* Registers the function called with each connection event and the user
 * pointer given here; null switches the events off. Each change of the link
 * is reported once (the link repeats its status; repeats are not events).
 * The function is called on the thread that runs the library's events: the
 * library's own thread when the host runs no Qt application, the
 * application's thread otherwise. It must not block that thread (no waiting
 * function from inside it). When this function returns, a call of the
 * previous handler that was under way has ended and the previous handler is
 * not called again: the host may free what it used. */
QRX_HOST_API void QRX_HOST_CALL qrx_set_link_event_handler(qrx_link_event_handler handler, void *user);

/* connect_robot() to another port than 6001 (simulators, port forwarding):
 * the same steps and result. 0 at once for a port outside 1..65535. */
QRX_HOST_API int QRX_HOST_CALL qrx_connect_robot_port(const char *ip, int port);
/* connect_robot() to ip:port that returns as soon as the link is up: the
 * same steps, with the connection checked every 5 ms for at most timeout_ms
 * (instead of five checks a second apart); then the link is closed and the
 * result is 0, as from connect_robot(). 0 at once for a port outside
 * 1..65535 or a timeout_ms below 1. */
QRX_HOST_API int QRX_HOST_CALL qrx_connect_robot_within(const char *ip, int port, int timeout_ms);

/* Copies the last error, warning or information text of the controller
 * (UTF-8; "error" without a link, like show_log()) into buffer, at most
 * size-1 bytes, never cutting a character, and a NUL. Returns the length of
 * the whole text in bytes (more than size-1: it was shortened). A null buffer
 * or size 0 copies nothing. */
QRX_HOST_API int QRX_HOST_CALL qrx_last_message(char *buffer, int size);

/* Refusals. The controller refuses a command with an error message (0x2B03
 * {"data": text, "type": code}) and carries nothing of it out; the error
 * callback hears it like any error. An error of type 0x6010 (a robot's servo
 * alarm) answers no command. A query (a request answered by a reply of its
 * own: 0x2F07 by 0x2F08, 0x3D02 by 0x3D03, ...) is never refused; every other
 * request the host sends (through the functions above, jog steps included;
 * not what the library sends by itself) is a command. The controller takes frames in order, so an error
 * answers the last command the host sent before it arrived; an error before
 * the link's first command answers nothing. The library keeps the first
 * refusal after connect_robot() or qrx_clear_refusal(), until the next of
 * them. Process-wide, like the link. */

/* The code of the command the kept refusal answered (0x4501, 0x2501, ...),
 * 0 when none is kept. Copies its "data" text (UTF-8) into text like
 * qrx_last_message() copies ("" when none); null or size 0 copies nothing. */
QRX_HOST_API int QRX_HOST_CALL qrx_last_refusal(char *text, int size);
/* The "type" of the kept refusal (the controller's error code), 0 when none
 * is kept or the message had none. */
QRX_HOST_API int QRX_HOST_CALL qrx_last_refusal_type(void);
/* Forgets the kept refusal: the next one is kept. */
QRX_HOST_API void QRX_HOST_CALL qrx_clear_refusal(void);
/* Waits until the controller has taken everything sent before: sends the
 * running-state query (0x3D02) and waits for its own reply (0x3D03), within
 * the bound of qrx_set_wait_timeout(). Returns what qrx_last_refusal()
 * returns then (0: nothing refused), or -1 when the bound ran out, the link
 * is down or there is none (qrx_last_call_timed_out() is then 1, except
 * without a link). */
QRX_HOST_API int QRX_HOST_CALL qrx_confirm(void);

/* Move completion: queries the position in coord (0x2F07) every 50 ms until
 * every axis of target[6] is within tolerance, or, with a null target,
 * queries the running state (0x3D02) until it is not 2 (nothing running).
 * timeout_ms bounds the whole wait (0: none). Returns 1 when reached, 0 when
 * the bound ran out (qrx_last_call_timed_out() is then 1), -1 without a link. */
QRX_HOST_API int QRX_HOST_CALL qrx_wait_move_done(const double *target, int coord, double tolerance, int timeout_ms);

/* The robot model the controller reported (it does so when the link comes
 * up): the library's type code, 1..20, or 0 before a report and for a model
 * the library does not know. Its name ("R_GENERAL_6S", "R_SCARA", ...,
 * "R_NULL" for 0) is copied into name like qrx_last_message() copies; null
 * or size 0 copies nothing. Sends nothing; -1 before connect_robot(). */
QRX_HOST_API int QRX_HOST_CALL qrx_robot_type(char *name, int size);

/* Session recording: from this call on, every frame of the link and of the
 * file connections, both directions, is written with its time to the pcap
 * file path (created or truncated; Wireshark and tshark show it with the qrx
 * dissector). A recording in progress ends first, its frames written; a null
 * or empty path only ends it. The environment variable QRX_RECORD=PATH
 * starts the same recording in any host without this call. Frames are
 * written by a thread of the library every few milliseconds; a file that
 * cannot be opened (-1) or written (a full disk) ends the recording with one
 * warning in the category "qrx.record", and the link goes on untouched.
 * Returns 0 when recording (or stopped), -1 when path cannot be opened. */
QRX_HOST_API int QRX_HOST_CALL qrx_record(const char *path);
/* The name of a command code as readers of a recording show it
 * ("recriveMoreRobotCurPosition" for 0x2F08 from the controller,
 * "GetCurrentPosition" for 0x2F07 to it), from the library's own catalogue;
 * file_connection selects the codes of the file connection (port 5000).
 * A static string, or null for a code the library does not know. */
QRX_HOST_API const char *QRX_HOST_CALL qrx_code_name(int code, int from_controller, int file_connection);

/* The operation mode the controller last reported (0 teach, 1 remote, 2
 * run): it reports it when the link comes up, on each change and in answer
 * to get_current_mode(). Sends nothing, so it does not wait for the mode
 * reply's pause; -1 before connect_robot(). */
QRX_HOST_API int QRX_HOST_CALL qrx_reported_mode(void);

/* ------------------------------------------------------------------------
 * Extension: many controllers in one process (handles, qrxc_ prefix)
 *
 * The functions above act on the default controller, the one
 * connect_robot() links to. A handle is a controller of its own, with its
 * own link, state, waits, jog repetition, settings and transfer outcomes;
 * opening, using and closing handles changes nothing the functions above
 * do. Handle links are served by the library's own threads.
 * ------------------------------------------------------------------------ */
typedef struct qrx_controller qrx_controller;

/* Opens a link to the controller at ip:port (port 6001 when port <= 0) and
 * sends 0x5052 (empty) once it is up, like connect_robot(). Returns the
 * handle as soon as the link is up; NULL when it is not up within the wait
 * bound (3000 ms; qrxc_open_within: timeout_ms, which also becomes the
 * handle's wait bound) or for a port above 65535. Never waits for a link of
 * another controller. */
QRX_HOST_API qrx_controller *QRX_HOST_CALL qrxc_open(const char *ip, int port);
QRX_HOST_API qrx_controller *QRX_HOST_CALL qrxc_open_within(const char *ip, int port, int timeout_ms);
/* qrxc_open in two steps, so that handlers set in between see the link
 * come up: qrxc_new gives the handle of a controller at ip:port whose link
 * is not started (NULL for a port above 65535); qrxc_connect starts it and
 * returns 1 once it is up, 0 when it is not within the handle's wait bound
 * (the link is then closed; close the handle) or for a NULL, closed or
 * default handle. A second qrxc_connect says whether the link is up. */
QRX_HOST_API qrx_controller *QRX_HOST_CALL qrxc_new(const char *ip, int port);
QRX_HOST_API int QRX_HOST_CALL qrxc_connect(qrx_controller *c);
/* Sends the farewell 0x7277 while the link is up, closes the link and
 * forgets the handle; calls of other threads on the handle end (waits end
 * at once). NULL or an already closed handle: nothing happens. */
QRX_HOST_API void QRX_HOST_CALL qrxc_close(qrx_controller *c);
/* 1 while the handle's link is up, 0 otherwise (also NULL or closed). */
QRX_HOST_API int QRX_HOST_CALL qrxc_link_up(qrx_controller *c);
/* The handle of the default controller: qrxc_<name>(qrxc_default(), ...)
 * is <name>(...). It is never closed (qrxc_close does nothing with it); its
 * link is the one of connect_robot() and disconnect_robot(). */
QRX_HOST_API qrx_controller *QRX_HOST_CALL qrxc_default(void);

/* Messages without waiting: each error, warning or information text of the
 * controller, level 0 error, 1 warning, 2 information, text UTF-8 with its
 * prefix in the library's language (valid during the call), called on a
 * library thread. NULL switches them off; when this returns, a call of the
 * previous handler has ended. */
typedef void (*qrxc_message_handler)(qrx_controller *c, int level, const char *text, void *user);
QRX_HOST_API void QRX_HOST_CALL qrxc_set_message_handler(qrx_controller *c, qrxc_message_handler handler, void *user);

/* The state at a glance: what the controller last reported. joints and
 * cartesian are the last position reports in coordinates 0 and 1. */
typedef struct qrx_state {
    int link;            /* 1 up, 0 down */
    int servo, mode, coord, speed, running, line, tool, type;
    double joints[6], cartesian[6];
} qrx_state;
/* Copies the cached state into out (no query, no wait); 1, or 0 for NULL,
 * a closed handle or a null out. */
QRX_HOST_API int QRX_HOST_CALL qrxc_get_state(qrx_controller *c, qrx_state *out);
/* Called on a library thread, without the controller's lock held, once
 * after each incoming report that changed what qrxc_get_state() gives, and
 * on each change of the link. NULL switches it off; when this returns, a
 * call of the previous handler has ended. */
typedef void (*qrxc_state_handler)(qrx_controller *c, void *user);
QRX_HOST_API void QRX_HOST_CALL qrxc_set_state_handler(qrx_controller *c, qrxc_state_handler handler, void *user);

/* Session recording of one controller: like qrx_record(), into the pcap
 * file path, but only the frames of c's link and of its file connections
 * (port 5000 at c's address), both directions. Each handle records on its
 * own and at the same time as qrx_record() and QRX_RECORD, which take every
 * link (a frame goes to every recording that takes it). A recording of c in
 * progress ends first, its frames written; a null or empty path only ends
 * it, and so does qrxc_close(c). The address and port are those of c's
 * link when the recording starts (the default controller's: of its
 * current connect_robot()). Returns 0 when recording (or stopped); -1 when
 * path cannot be opened (one warning in "qrx.record"), for a NULL or closed
 * handle and for the default controller before connect_robot(). A full
 * disk ends the recording with one warning; the link goes on untouched. */
QRX_HOST_API int QRX_HOST_CALL qrxc_record(qrx_controller *c, const char *path);

/* Every function above that concerns one controller, with the handle first:
 * qrxc_<name>(c, ...) for a described function <name>, qrxc_<name>(c, ...)
 * for an extension qrx_<name>; same arguments, same results, acting on the
 * handle's controller. A NULL or closed handle gives the function's result
 * without a link (nothing sent, buffers left alone). Settings are the
 * handle's own: qrxc_set_wait_timeout(c, ms) bounds c's waits only (a
 * handle starts with its open bound, 3000 ms), qrxc_setErrorHandle(c, f)
 * receives c's messages only. Not here: connect_robot and disconnect_robot
 * (qrxc_open, qrxc_close), the dialogs and the language (they belong to
 * the default controller and the process), qrx_set_connect_poll_interval
 * qrx_connect_robot_port and qrx_connect_robot_within (connect_robot only) and
 * qrx_last_call_timed_out (it is the calling thread's, whatever the
 * controller), qrx_record and qrx_code_name (recording takes every link of
 * the process; qrxc_record, declared above, records one controller). The
 * table below declares them; the library checks each row against the
 * declaration above it, so the two forms cannot drift:
 *   QRXC_DESCRIBED(result, name, (parameters), (arguments)) for <name>,
 *   QRXC_EXTENSION(...) for qrx_<name>, ...0 for functions without
 *   parameters. */
#define QRXC_FUNCTIONS(QRXC_DESCRIBED, QRXC_DESCRIBED0, QRXC_EXTENSION, QRXC_EXTENSION0) \
    QRXC_DESCRIBED0(int, connection_status) \
    QRXC_DESCRIBED(void, setErrorHandle, (void (*handler)(const char *text)), (handler)) \
    QRXC_DESCRIBED0(int, servo_power_on) \
    QRXC_DESCRIBED0(void, servo_power_off) \
    QRXC_DESCRIBED(void, set_servo_state, (int state), (state)) \
    QRXC_DESCRIBED0(int, get_servo_state) \
    QRXC_DESCRIBED0(void, clear_servo_error) \
    QRXC_DESCRIBED(void, set_current_mode, (int mode), (mode)) \
    QRXC_DESCRIBED0(int, get_current_mode) \
    QRXC_DESCRIBED(void, set_current_coord, (int coord), (coord)) \
    QRXC_DESCRIBED0(int, get_current_coord) \
    QRXC_DESCRIBED(void, set_jogging_speed, (int speed), (speed)) \
    QRXC_DESCRIBED0(int, get_jogging_speed) \
    QRXC_DESCRIBED(void, start_jogging, (int axis, bool direction), (axis, direction)) \
    QRXC_DESCRIBED(void, stop_jogging, (int axis), (axis)) \
    QRXC_DESCRIBED0(int, get_robot_running_state) \
    QRXC_DESCRIBED(void, robot_movj, (double *pos, int vel, int coord, int acc, int dec), (pos, vel, coord, acc, dec)) \
    QRXC_DESCRIBED(void, robot_movl, (double *pos, int vel, int coord, int acc, int dec), (pos, vel, coord, acc, dec)) \
    QRXC_DESCRIBED(void, robot_movc, (double *posOne, double *posTwo, double *posThree, int vel, int coord, int acc, int dec), (posOne, posTwo, posThree, vel, coord, acc, dec)) \
    QRXC_DESCRIBED(void, robot_movca, (double *posOne, double *posTwo, double *posThree, int vel, int coord, int acc, int dec), (posOne, posTwo, posThree, vel, coord, acc, dec)) \
    QRXC_DESCRIBED(void, robot_movs, (int count, double **pos, int vel, int coord, int acc, int dec), (count, pos, vel, coord, acc, dec)) \
    QRXC_DESCRIBED(void, robot_extra_movj, (double *pos, int vel, int coord, int acc, int dec), (pos, vel, coord, acc, dec)) \
    QRXC_DESCRIBED(void, robot_extra_movl, (double *pos, int vel, int coord), (pos, vel, coord)) \
    QRXC_DESCRIBED(void, robot_extra_movc, (double *posOne, double *posTwo, double *posThree, int vel, int coord, int acc, int dec), (posOne, posTwo, posThree, vel, coord, acc, dec)) \
    QRXC_DESCRIBED(void, set_dout, (int port, int status), (port, status)) \
    QRXC_DESCRIBED(void, set_aout, (int port, double value), (port, value)) \
    QRXC_DESCRIBED(void, get_dout, (double *out), (out)) \
    QRXC_DESCRIBED(void, get_din, (double *out), (out)) \
    QRXC_DESCRIBED(void, get_aout, (double *out), (out)) \
    QRXC_DESCRIBED(void, get_ain, (double *out), (out)) \
    QRXC_DESCRIBED(void, get_current_position, (double *pos, int coord), (pos, coord)) \
    QRXC_DESCRIBED(void, get_current_sync_position, (double *pos), (pos)) \
    QRXC_DESCRIBED(void, get_GPosition, (const char *name, double *out), (name, out)) \
    QRXC_DESCRIBED(void, set_GPosition, (const char *posName, int coord, double *robotAxes, double *syncAxes), (posName, coord, robotAxes, syncAxes)) \
    QRXC_DESCRIBED(double, get_global_variant, (const char *name), (name)) \
    QRXC_DESCRIBED(void, set_global_variant, (const char *name, double value), (name, value)) \
    QRXC_DESCRIBED(double, get_global_var, (const char *name), (name)) \
    QRXC_DESCRIBED(void, get_motor_torque, (double *robotOne, double *robotTwo, double *syncOne, double *syncTwo), (robotOne, robotTwo, syncOne, syncTwo)) \
    QRXC_DESCRIBED(void, get_motor_vel, (double *robotOne, double *robotTwo, double *syncOne, double *syncTwo), (robotOne, robotTwo, syncOne, syncTwo)) \
    QRXC_DESCRIBED(void, get_motor_overload, (double *robot, double *sync), (robot, sync)) \
    QRXC_DESCRIBED(void, open_job, (const char *name), (name)) \
    QRXC_DESCRIBED(void, run_job, (const char *name), (name)) \
    QRXC_DESCRIBED(void, step_job, (const char *name, int line), (name, line)) \
    QRXC_DESCRIBED0(void, pause_job) \
    QRXC_DESCRIBED0(void, stop_job) \
    QRXC_DESCRIBED0(int, continue_job) \
    QRXC_DESCRIBED0(void, continue_run) \
    QRXC_DESCRIBED(void, delete_job, (const char *name), (name)) \
    QRXC_DESCRIBED(void, set_runs, (int count), (count)) \
    QRXC_DESCRIBED0(int, get_job_running_lines) \
    QRXC_DESCRIBED(void, get_single_cycle, (double *out), (out)) \
    QRXC_DESCRIBED(void, continuous_motion_mode, (int open), (open)) \
    QRXC_DESCRIBED0(void, continuous_motion_start) \
    QRXC_DESCRIBED0(void, continuous_motion_suspend) \
    QRXC_DESCRIBED0(void, continuous_motion_stop) \
    QRXC_DESCRIBED(void, send_continuous_motion_queue, (const qrx_motion_record *records, int count), (records, count)) \
    QRXC_DESCRIBED(void, switch_tool_hand, (int toolNum), (toolNum)) \
    QRXC_DESCRIBED0(int, get_current_tool_hand) \
    QRXC_DESCRIBED(void, set_tool_hand_param, (int toolNum, double *tool), (toolNum, tool)) \
    QRXC_DESCRIBED(void, query_tool_hand_param, (int toolNum, double *out), (toolNum, out)) \
    QRXC_DESCRIBED(void, set_user_coord_number, (int userNum), (userNum)) \
    QRXC_DESCRIBED(void, ask_four_point, (double *out), (out)) \
    QRXC_DESCRIBED(void, four_point_mark, (int pointNum, int status), (pointNum, status)) \
    QRXC_DESCRIBED(void, four_point_calculation, (double first, double second, double *out), (first, second, out)) \
    QRXC_DESCRIBED0(bool, result_for_DH) \
    QRXC_DESCRIBED(bool, set_axis_zero_position, (int axis), (axis)) \
    QRXC_DESCRIBED(void, set_zero_pos_shift, (int axis, double value), (axis, value)) \
    QRXC_DESCRIBED0(void, upload_job) \
    QRXC_DESCRIBED0(void, download_job) \
    QRXC_EXTENSION(void, set_job_root, (const char *path), (path)) \
    QRXC_EXTENSION(void, set_transfer_pause, (int ms), (ms)) \
    QRXC_EXTENSION(void, set_transfer_progress, (qrx_transfer_progress callback), (callback)) \
    QRXC_EXTENSION0(int, last_transfer_failed) \
    QRXC_EXTENSION0(int, last_transfer_refused) \
    QRXC_EXTENSION(int, last_transfer_error, (char *text, int size), (text, size)) \
    QRXC_EXTENSION(int, export_logs, (const char *folder), (folder)) \
    QRXC_EXTENSION(int, export_eni, (const char *folder), (folder)) \
    QRXC_EXTENSION(int, export_config, (const char *folder), (folder)) \
    QRXC_EXTENSION(int, import_config, (const char *path), (path)) \
    QRXC_EXTENSION(void, set_wait_timeout, (int ms), (ms)) \
    QRXC_EXTENSION0(int, wait_timeout) \
    QRXC_EXTENSION(void, set_matched_replies, (int on), (on)) \
    QRXC_EXTENSION0(int, matched_replies) \
    QRXC_EXTENSION(void, set_link_event_handler, (qrx_link_event_handler handler, void *user), (handler, user)) \
    QRXC_EXTENSION(int, last_message, (char *buffer, int size), (buffer, size)) \
    QRXC_EXTENSION(int, wait_move_done, (const double *target, int coord, double tolerance, int timeout_ms), (target, coord, tolerance, timeout_ms)) \
    QRXC_EXTENSION(int, robot_type, (char *name, int size), (name, size)) \
    QRXC_EXTENSION0(int, reported_mode) \
    QRXC_EXTENSION(int, last_refusal, (char *text, int size), (text, size)) \
    QRXC_EXTENSION0(int, last_refusal_type) \
    QRXC_EXTENSION0(void, clear_refusal) \
    QRXC_EXTENSION0(int, confirm)

#define QRXC_UNPAREN_(...) __VA_ARGS__
#define QRXC_DECLARE_(result, name, params, args) \
    QRX_HOST_API result QRX_HOST_CALL qrxc_##name(qrx_controller *c, QRXC_UNPAREN_ params);
#define QRXC_DECLARE0_(result, name) QRX_HOST_API result QRX_HOST_CALL qrxc_##name(qrx_controller *c);
QRXC_FUNCTIONS(QRXC_DECLARE_, QRXC_DECLARE0_, QRXC_DECLARE_, QRXC_DECLARE0_)

#ifdef __cplusplus
} /* extern "C" */

/* The last error, warning or information text of the controller (UTF-8),
 * "error" without a link. C++ callers only; qrxc_show_log for a handle. */
extern "C" QRX_HOST_API std::string QRX_HOST_CALL show_log();
extern "C" QRX_HOST_API std::string QRX_HOST_CALL qrxc_show_log(qrx_controller *c);
#endif

#endif /* QRX_HOST_H */
