/*
 * qrx-queue: streams a continuous-motion queue to a robot controller (or
 * qrx-sim) and prints the robot following it, through the C API of qrx_host
 * only:
 *
 *   connect, power the servo, open continuous motion, send the first half of
 *   a path, start it, send the second half while the robot moves, print the
 *   instruction being executed and the position as they change, check that
 *   the robot ends at the last point, close continuous motion, servo off.
 *
 * Usage: qrx-queue [controller-address]   (default 127.0.0.1)
 * Exit status 0 when the robot followed the whole queue, 1 otherwise.
 */
#include "qrx_host.h"

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#ifdef _WIN32
#include <windows.h>
static void sleep_ms(int ms) { Sleep((DWORD)ms); }
static void quiet_library(void) { _putenv("QT_LOGGING_RULES=qrx.*.debug=false"); }
#else
#include <time.h>
static void quiet_library(void) { setenv("QT_LOGGING_RULES", "qrx.*.debug=false", 0); }
static void sleep_ms(int ms)
{
    struct timespec t;
    t.tv_sec = ms / 1000;
    t.tv_nsec = (long)(ms % 1000) * 1000000L;
    nanosleep(&t, NULL);
}
#endif

#define POINTS 8

/* A square in axes 1 and 2, twice round, lifting axis 3 a little each time. */
static const double g_path[POINTS][6] = {
    {20, 0, 0, 0, 0, 0},   {20, 20, 2, 0, 0, 0},   {0, 20, 4, 0, 0, 0},   {0, 0, 6, 0, 0, 0},
    {20, 0, 8, 0, 0, 45},  {20, 20, 10, 0, 0, 45}, {0, 20, 12, 0, 0, 45}, {0, 0, 14, 0, 0, 0},
};

static void on_message(const char *text)
{
    printf("  controller says: %s\n", text);
    fflush(stdout);
}

static int fail(const char *why)
{
    printf("FAILED: %s\n", why);
    disconnect_robot();
    return 1;
}

/* Linear moves to path points first..last-1, 40 % speed. */
static void send_points(int first, int last)
{
    qrx_motion_record records[POINTS];
    int n = 0, p, i;
    memset(records, 0, sizeof records);
    for (p = first; p < last; ++p, ++n) {
        qrx_move_params *m = &records[n].u.move;
        records[n].type = 2; /* MOVL */
        m->velocity.value = 40;
        m->vUnit = 2; /* percent */
        m->acc.value = 50;
        m->dec.value = 50;
        snprintf(m->positionId, sizeof m->positionId, "P%04d", p + 1);
        snprintf(m->pos.name, sizeof m->pos.name, "P%04d", p + 1);
        for (i = 0; i < 6; ++i)
            m->pos.data[i] = g_path[p][i];
    }
    send_continuous_motion_queue(records, n);
    printf("sent points %d to %d\n", first + 1, last);
}

static int wait_servo(int state)
{
    int i;
    for (i = 0; i < 100; ++i) {
        if (get_servo_state() == state)
            return 1;
        sleep_ms(50);
    }
    return 0;
}

int main(int argc, char **argv)
{
    const char *address = argc > 1 ? argv[1] : "127.0.0.1";
    double pos[6];
    int state = 0, line = -1, polls, i, second_half_sent = 0;
    double off = 0.0;

    if (!getenv("QT_LOGGING_RULES"))
        quiet_library();
    setErrorHandle(on_message);
    printf("qrx-queue: streaming a queue to the controller at %s\n", address);
    if (connect_robot(address) != 1)
        return fail("no controller answers at that address (is qrx-sim running?)");
    if (servo_power_on() != 1 || !wait_servo(3))
        return fail("the drives did not come up");

    continuous_motion_mode(1);
    send_points(0, POINTS / 2);
    continuous_motion_start();

    /* Poll the controller: running state, instruction, position. */
    for (polls = 0; polls < 1200; ++polls) {
        const int now_line = get_job_running_lines();
        state = get_robot_running_state();
        get_current_position(pos, 0);
        if (now_line != line) {
            line = now_line;
            printf("instruction %d   position %7.2f %7.2f %7.2f %7.2f %7.2f %7.2f\n", line, pos[0], pos[1], pos[2],
                   pos[3], pos[4], pos[5]);
            fflush(stdout);
        }
        /* Stream the rest while the first half runs. */
        if (!second_half_sent && state == 2 && line >= 2) {
            send_points(POINTS / 2, POINTS);
            second_half_sent = 1;
        }
        if (state == 0 && second_half_sent && line == POINTS)
            break;
        sleep_ms(25);
    }
    if (!second_half_sent)
        return fail("the queue never ran");
    if (state != 0)
        return fail("the queue did not end");

    get_current_position(pos, 0);
    for (i = 0; i < 6; ++i)
        off = fmax(off, fabs(pos[i] - g_path[POINTS - 1][i]));
    printf("done at      position %7.2f %7.2f %7.2f %7.2f %7.2f %7.2f\n", pos[0], pos[1], pos[2], pos[3], pos[4],
           pos[5]);
    if (off > 1e-3)
        return fail("the robot did not end at the last point");

    continuous_motion_mode(0);
    servo_power_off();
    disconnect_robot();
    printf("qrx-queue: the robot followed all %d points\n", POINTS);
    return 0;
}
