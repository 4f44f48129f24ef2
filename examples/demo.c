/*
 * qrx-demo: drives a robot controller (or qrx-sim) end to end through the
 * C API of qrx_host, and nothing else:
 *
 *   connect, power the servo, teach mode, joint coordinates, jog speed,
 *   jog axis 1 for a moment, a joint move and a linear move while watching
 *   the position, digital and analog IO, a global variable, a job run,
 *   the controller's state, servo off, disconnect.
 * With --job-files also: write a small job file, upload it, run it, download
 * the controller's jobs into a fresh folder and compare them.
 *
 * Usage: qrx-demo [controller-address] [--verbose] [--job-files]
 * (default 127.0.0.1). --verbose also shows the library's log lines
 * (QT_LOGGING_RULES decides when it is set). --job-files writes to the
 * controller's job folder: meant for qrx-sim (scripts/demo passes it).
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
#include <direct.h>
#include <windows.h>
static void sleep_ms(int ms) { Sleep((DWORD)ms); }
static int make_dir(const char *path) { return _mkdir(path) == 0; }
static void remove_dir(const char *path) { _rmdir(path); }
static int make_temp_dir(char *path, size_t size)
{
    char base[MAX_PATH];
    if (!GetTempPathA(sizeof base, base))
        return 0;
    snprintf(path, size, "%sqrx-demo-%lu-%lu", base, (unsigned long)GetCurrentProcessId(),
             (unsigned long)GetTickCount());
    return make_dir(path);
}
static void quiet_library(void) { _putenv("QT_LOGGING_RULES=qrx.*.debug=false"); }
#else
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>
static int make_dir(const char *path) { return mkdir(path, 0755) == 0; }
static void remove_dir(const char *path) { rmdir(path); }
static int make_temp_dir(char *path, size_t size)
{
    const char *base = getenv("TMPDIR");
    snprintf(path, size, "%s/qrx-demo-XXXXXX", base && *base ? base : "/tmp");
    return mkdtemp(path) != NULL;
}
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

/* Polls the running state until a job runs (2) or polls x 50 ms passed;
 * returns the last state read. */
static int wait_job_running(int polls)
{
    int state = get_robot_running_state();
    while (state != 2 && polls-- > 0) {
        sleep_ms(50);
        state = get_robot_running_state();
    }
    return state;
}

/* Prints the running line as it changes while the job runs, for at most
 * polls x 50 ms; returns the running state then. */
static int follow_job_lines(int polls)
{
    int state = 2, last_line = -1;
    for (; polls > 0 && state == 2; --polls) {
        const int line = get_job_running_lines();
        if (line != last_line)
            info("line %d", line);
        last_line = line;
        sleep_ms(50);
        state = get_robot_running_state();
    }
    return state;
}

/* A small job of three timed lines, in the controller's job language. */
static const char k_demo_job[] =
    "//DIR\n//JOB\n//NAME UPDEMO\n//POS\n///NPOS 1,0,0,0,0,0\n///POSTYPE PULSE\n///PULSE\n"
    "//INSTRUCTION\n///DATE 2026.11.23 10:00:00\nROBOTTYPE = [R6]\nDOUBLEROBOT = [NoCooperative]\n"
    "PROVERSION = [1.0.5]\nNOP\nTIMER T = 0.2\nTIMER T = 0.2\nTIMER T = 0.2\nEND\n";

/* root/robotJob/R1 below a new temporary folder; the folder in root. */
static int make_job_root(char *root, size_t size, char *r1, size_t r1size)
{
    if (!make_temp_dir(root, size))
        return 0;
    snprintf(r1, r1size, "%s/robotJob", root);
    if (!make_dir(r1))
        return 0;
    snprintf(r1, r1size, "%s/robotJob/R1", root);
    return 1;
}

/* Removes what make_job_root made, with UPDEMO.JBR in it. */
static void remove_job_root(const char *root)
{
    char path[700];
    snprintf(path, sizeof path, "%s/robotJob/R1/UPDEMO.JBR", root);
    remove(path);
    snprintf(path, sizeof path, "%s/robotJob/R1", root);
    remove_dir(path);
    snprintf(path, sizeof path, "%s/robotJob", root);
    remove_dir(path);
    remove_dir(root);
}

/* The whole file in a buffer of size bytes; its length, or -1. */
static long read_file(const char *path, char *buffer, long size)
{
    FILE *f = fopen(path, "rb");
    long n;
    if (!f)
        return -1;
    n = (long)fread(buffer, 1, (size_t)size, f);
    fclose(f);
    return n;
}

static int transfer_failed(const char *why)
{
    char text[512];
    qrx_last_transfer_error(text, (int)sizeof text);
    info("%s", text);
    return fail(why);
}

/* Upload UPDEMO.JBR, run it, download the controller's jobs into a fresh
 * folder and compare. Returns 0 when the files went both ways unchanged;
 * whether the controller runs the uploaded job is shown, not required (a
 * controller that does not read job files refuses it by name). */
static int job_file_steps(char *host, char *fresh, size_t size)
{
    char folder[600], path[700], back[sizeof k_demo_job + 16];
    FILE *f;
    long n;
    int state;

    step("job files: write UPDEMO.JBR, upload it");
    if (!make_job_root(host, size, folder, sizeof folder) || !make_dir(folder))
        return fail("cannot make a local job folder");
    snprintf(path, sizeof path, "%s/UPDEMO.JBR", folder);
    f = fopen(path, "wb");
    if (!f || fwrite(k_demo_job, 1, sizeof k_demo_job - 1, f) != sizeof k_demo_job - 1)
        return fail("cannot write the job file");
    fclose(f);
    info("%s, %d bytes", path, (int)(sizeof k_demo_job - 1));
    qrx_set_job_root(host);
    upload_job();
    if (qrx_last_transfer_failed() != 0)
        return transfer_failed("the upload did not go through (qrx-sim needs --job-dir)");
    info("uploaded");

    step("job files: run UPDEMO");
    set_runs(1);
    open_job("UPDEMO");
    run_job("UPDEMO");
    state = wait_job_running(30);
    if (state == 2) {
        info("running state %d: UPDEMO running", state);
        if (follow_job_lines(200) == 2)
            stop_job();
        info("running state %d: UPDEMO done", get_robot_running_state());
    } else {
        info("running state %d: the controller did not run UPDEMO", state);
    }

    step("job files: download the controller's jobs into a fresh folder, compare");
    if (!make_job_root(fresh, size, folder, sizeof folder))
        return fail("cannot make a fresh job folder");
    qrx_set_job_root(fresh);
    download_job();
    if (qrx_last_transfer_failed() != 0)
        return transfer_failed("the download did not go through");
    snprintf(path, sizeof path, "%s/UPDEMO.JBR", folder);
    n = read_file(path, back, (long)sizeof back);
    info("%s, %ld bytes", path, n);
    if (n != (long)sizeof k_demo_job - 1 || memcmp(back, k_demo_job, (size_t)n) != 0)
        return fail("the downloaded job differs from the uploaded one");
    info("same bytes as uploaded");
    return 0;
}

static int job_file_round_trip(void)
{
    char host[512] = "", fresh[512] = "";
    const int result = job_file_steps(host, fresh, sizeof host);
    if (*host)
        remove_job_root(host);
    if (*fresh)
        remove_job_root(fresh);
    return result;
}

int main(int argc, char **argv)
{
    const char *address = "127.0.0.1";
    int verbose = 0, job_files = 0, a, tries;
    double pos[6], before[6], io[16];

    for (a = 1; a < argc; ++a) {
        if (strcmp(argv[a], "--verbose") == 0)
            verbose = 1;
        else if (strcmp(argv[a], "--job-files") == 0)
            job_files = 1;
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
        int state = wait_job_running(100);
        if (state != 2)
            return fail("the job did not start");
        info("running state %d: job running", state);
        state = follow_job_lines(400);
        if (state != 0)
            return fail("the job did not end");
        info("running state %d: job done", state);
    }
    {
        double cycle[7];
        get_single_cycle(cycle);
        info("last cycle %.2f s, cycles done %.0f", cycle[0], cycle[2]);
    }

    if (job_files && job_file_round_trip() != 0)
        return 1;

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
