/*
 * qrx_host: many controllers in one process, the handle API (qrxc_). Hosts
 * include qrx_host.h, which includes this header; it declares the functions
 * of qrx_host.h again with a handle first.
 */
#ifndef QRX_HOST_HANDLES_H
#define QRX_HOST_HANDLES_H

#include "qrx_host.h"

#ifdef __cplusplus
#include <string>
extern "C" {
#endif

/* ------------------------------------------------------------------------
 * Extension: many controllers in one process (handles, qrxc_ prefix)
 *
 * The functions of qrx_host.h act on the default controller, the one
 * connect_robot() links to. A handle is a controller of its own, with its
 * own link, state, waits, jog repetition, settings and transfer outcomes;
 * opening, using and closing handles changes nothing the functions of qrx_host.h
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

/* Every function of qrx_host.h that concerns one controller, with the handle first:
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
 * function's own declaration, so the two forms cannot drift:
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

/* show_log() of a handle's controller (C++ callers only). */
extern "C" QRX_HOST_API std::string QRX_HOST_CALL qrxc_show_log(qrx_controller *c);
#endif

#endif /* QRX_HOST_HANDLES_H */
