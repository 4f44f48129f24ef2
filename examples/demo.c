/*
 * qrx-demo: drives a robot controller (or qrx-sim) end to end through the
 * C API of qrx_host, and nothing else:
 *
 *   connect, power the servo, teach mode, joint coordinates, jog speed,
 *   jog axis 1 for a moment, a joint move and a linear move while watching
 *   the position, digital and analog IO, a global variable, a job run,
 *   the controller's state, servo off, disconnect.
 *
 * Usage: qrx-demo [controller-address] [--verbose]   (default 127.0.0.1)
 * --verbose also shows the library's log lines (QT_LOGGING_RULES decides
 * when it is set).
 * Exit status 0 when every step did what it should, 1 otherwise.
 *
 * The getters wait for the controller's next reply of any kind, so a value
 * that a setter changed is read back once the controller has reported it;
 * states that take time (drives coming up, moves, jobs) are polled.
 */
#include "qrx_host.h"

#include <math.h>
#include <stdarg.h>
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

static int g_step = 0;

static void step(const char *what)
{
    printf("\n[%d] %s\n", ++g_step, what);
    fflush(stdout);
}

static void info(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    printf("    ");
    vprintf(format, args);
    printf("\n");
    va_end(args);
    fflush(stdout);
}

static int fail(const char *why)
{
    printf("    FAILED: %s\n", why);
    disconnect_robot();
    return 1;
}

/* Controller messages (errors, warnings, information) arrive here, on the
 * library's own thread. */
static void on_message(const char *text)
{
    printf("    controller says: %s\n", text);
    fflush(stdout);
}

static void print_values(const char *label, const double *values, int n)
{
    char line[512];
    int used = snprintf(line, sizeof line, "%-18s", label);
    int i;
    for (i = 0; i < n && used < (int)sizeof line - 12; ++i)
        used += snprintf(line + used, sizeof line - (size_t)used, " %8.3f", values[i]);
    info("%s", line);
}

static const char *mode_name(int mode)
{
    switch (mode) {
    case 0: return "teach";
    case 1: return "remote";
    case 2: return "run";
    default: return "unknown";
    }
}

/* Polls the position until it is within 0.001 of target or 20 s passed;
 * prints it as it changes. Returns 1 when reached. */
static int watch_move(const double *target)
{
    double pos[6];
    int polls;
    for (polls = 0; polls < 200; ++polls) {
        double off = 0.0;
        int i;
        get_current_position(pos, 0);
        for (i = 0; i < 6; ++i)
            off = fmax(off, fabs(pos[i] - target[i]));
        print_values("position", pos, 6);
        if (off < 1e-3)
            return 1;
        sleep_ms(100);
    }
    return 0;
}

/* Reads getter until it gives value (at most about 2 s): a reply that was
 * already on its way may end the first read before the new value is in. */
static int read_back(int (*getter)(void), int value)
{
    int i;
    for (i = 0; i < 40; ++i) {
        if (getter() == value)
            return 1;
        sleep_ms(50);
    }
    return 0;
}

/* Waits until get_servo_state() gives state (at most about 5 s). */
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
    const char *address = "127.0.0.1";
    int verbose = 0, a, tries;
    double pos[6], before[6], io[16];

    for (a = 1; a < argc; ++a) {
        if (strcmp(argv[a], "--verbose") == 0)
            verbose = 1;
        else
            address = argv[a];
    }
    if (!verbose && !getenv("QT_LOGGING_RULES"))
        quiet_library();

    printf("qrx-demo: driving the controller at %s\n", address);
    setErrorHandle(on_message);

    step("connect");
    if (connect_robot(address) != 1)
        return fail("no controller answers at that address (is qrx-sim running?)");
    info("connected, status %d", connection_status());

    step("servo power on");
    if (servo_power_on() != 1)
        return fail("the controller did not take the servo power-on command");
    if (!wait_servo(3))
        return fail("the drives did not come up");
    info("servo state %d: drives running", get_servo_state());

    step("teach mode, joint coordinates, jog speed 30 %");
    set_current_mode(0);
    set_current_coord(0);
    set_jogging_speed(30);
    if (!read_back(get_current_mode, 0) || !read_back(get_current_coord, 0) || !read_back(get_jogging_speed, 30))
        return fail("mode, coordinate system or speed not as set");
    info("mode %s, coordinate system %d, jog speed %d %%", mode_name(get_current_mode()), get_current_coord(),
         get_jogging_speed());

    step("jog axis 1 in the positive direction for 0.6 s");
    get_current_position(before, 0);
    start_jogging(1, true);
    sleep_ms(600);
    stop_jogging(1);
    /* The controller's position report may trail the stop: read again for a
     * few seconds until it shows the move. */
    get_current_position(pos, 0);
    for (int i = 0; i < 60 && !(pos[0] > before[0]); ++i) {
        sleep_ms(50);
        get_current_position(pos, 0);
    }
    info("axis 1 moved from %.3f to %.3f", before[0], pos[0]);
    if (!(pos[0] > before[0]))
        return fail("the axis did not move");

    step("joint move to (30, -20, 15, 0, 45, 90) at 40 %");
    {
        double target[6] = {30.0, -20.0, 15.0, 0.0, 45.0, 90.0};
        robot_movj(target, 40, 0, 50, 50);
        if (!watch_move(target))
            return fail("the joint move did not arrive");
    }

    step("linear move to (10, 5, 5, 0, 30, 60) at 60 %");
    {
        double target[6] = {10.0, 5.0, 5.0, 0.0, 30.0, 60.0};
        robot_movl(target, 60, 0, 50, 50);
        if (!watch_move(target))
            return fail("the linear move did not arrive");
    }

    step("digital output 1 and 4 on, analog output 2 at 3.3");
    set_dout(1, 1);
    set_dout(4, 1);
    set_aout(2, 3.3);
    for (tries = 0; tries < 20; ++tries) { /* a reply already on its way may come first */
        get_dout(io);
        if (io[0] == 1.0 && io[3] == 1.0 && io[1] == 0.0)
            break;
        sleep_ms(100);
    }
    print_values("digital outputs", io, 16);
    if (tries == 20)
        return fail("digital outputs not as set");
    get_din(io);
    print_values("digital inputs", io, 16);
    for (tries = 0; tries < 20; ++tries) {
        get_aout(io);
        if (fabs(io[1] - 3.3) < 1e-9)
            break;
        sleep_ms(100);
    }
    print_values("analog outputs", io, 4);
    if (tries == 20)
        return fail("analog output not as set");

    step("global variable GD001 = 12.5");
    set_global_variant("GD001", 12.5);
    {
        double value = 0.0;
        for (tries = 0; tries < 20 && value != 12.5; ++tries) {
            value = get_global_variant("GD001");
            if (value != 12.5)
                sleep_ms(100);
        }
        info("GD001 reads %.3f", value);
        if (value != 12.5)
            return fail("the variable does not read back");
    }

    step("run job DEMO twice");
    set_runs(2);
    open_job("DEMO");
    run_job("DEMO");
    {
        int state = 0, last_line = -1, polls;
        for (polls = 0; polls < 100 && state != 2; ++polls) {
            state = get_robot_running_state();
            if (state != 2)
                sleep_ms(50);
        }
        if (state != 2)
            return fail("the job did not start");
        info("running state %d: job running", state);
        for (polls = 0; polls < 400 && state == 2; ++polls) {
            const int line = get_job_running_lines();
            if (line != last_line)
                info("line %d", line);
            last_line = line;
            sleep_ms(50);
            state = get_robot_running_state();
        }
        if (state != 0)
            return fail("the job did not end");
        info("running state %d: job done", state);
    }
    {
        double cycle[7];
        get_single_cycle(cycle);
        info("last cycle %.2f s, cycles done %.0f", cycle[0], cycle[2]);
    }

    step("controller state");
    get_current_position(pos, 0);
    print_values("position", pos, 6);
    info("servo %d, mode %s, coordinate system %d, running state %d, tool %d", get_servo_state(),
         mode_name(get_current_mode()), get_current_coord(), get_robot_running_state(), get_current_tool_hand());

    step("servo power off, disconnect");
    servo_power_off();
    if (!wait_servo(1))
        return fail("the drives did not stop");
    info("servo state %d", get_servo_state());
    disconnect_robot();
    info("disconnected");

    printf("\nqrx-demo: all steps done\n");
    return 0;
}
