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

/* The records of the continuous-motion queue. */
#include "qrx_host_records.h"

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

#ifdef __cplusplus
} /* extern "C" */

/* The last error, warning or information text of the controller (UTF-8),
 * "error" without a link. C++ callers only. */
extern "C" QRX_HOST_API std::string QRX_HOST_CALL show_log();
#endif

#include "qrx_host_handles.h"

#endif /* QRX_HOST_H */
