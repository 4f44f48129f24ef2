/* A host program in plain C, no Qt of its own, that uses the dialogs.
 *   dialog_host nodisplay <address>
 *     the dialogs return 0 and the rest of the API still works; a refused
 *     move reaches the error callback with the prefix of the language that
 *     QRX_LANG chose (Chinese when unset);
 *   dialog_host x11 <window id> <address>
 *     shows the about dialog inside that X11 window, prints "shown" and
 *     keeps it open until the process is ended. */
#include "qrx_host.h"

#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

static atomic_int g_prefixSeen;
static const char *g_prefix = "错误： ";

/* Called on the library's link thread. */
static void onError(const char *text)
{
    if (strncmp(text, g_prefix, strlen(g_prefix)) == 0)
        atomic_store(&g_prefixSeen, 1);
}

static int fail(const char *what)
{
    fprintf(stderr, "dialog_host: %s\n", what);
    return 1;
}

static int noDisplay(void)
{
    int tries;
    if (showDialog(0) != 0 || qrx_show_jog_panel(0) != 0 || qrx_show_calibration(0) != 0)
        return fail("a dialog was shown without a display");
    if (showDialog(0x400001UL) != 0)
        return fail("a dialog was shown in a native window without a display");
    set_jogging_speed(33);
    /* Any waking reply ends a wait: ask until the controller's answer is in. */
    for (tries = 0; tries < 20 && get_jogging_speed() != 33; ++tries)
        ;
    if (get_jogging_speed() != 33)
        return fail("the jog speed did not reach the controller");
    if (get_current_mode() != 0)
        return fail("the controller's mode is not teach mode");
    {
        /* The controller refuses a move while the servo is off. */
        double pos[7] = {10, 0, 0, 0, 0, 0, 0};
        const struct timespec tick = {0, 10 * 1000 * 1000};
        const char *lang = getenv("QRX_LANG");
        if (lang && strcmp(lang, "en") == 0)
            g_prefix = "Error: ";
        setErrorHandle(onError);
        robot_movj(pos, 10, 0, 10, 10);
        for (tries = 0; tries < 1000 && !atomic_load(&g_prefixSeen); ++tries)
            nanosleep(&tick, NULL);
        setErrorHandle(NULL);
        if (!atomic_load(&g_prefixSeen))
            return fail("the refusal did not reach the error callback with the language's prefix");
    }
    if (qrx_set_language("en") != 1)
        return fail("no English translation");
    return 0;
}

int main(int argc, char **argv)
{
    const char *address = argv[argc - 1];
    int result;
    if (argc < 3)
        return fail("usage: dialog_host nodisplay|x11 [window id] <address>");
    if (connect_robot(address) != 1)
        return fail("cannot connect");
    if (strcmp(argv[1], "x11") == 0 && argc == 4) {
        if (showDialog(strtoul(argv[2], NULL, 0)) != 1)
            return fail("showDialog refused the window");
        printf("shown\n");
        fflush(stdout);
        for (;;)
            pause();
    }
    result = noDisplay();
    disconnect_robot();
    if (result == 0)
        printf("ok\n");
    return result;
}
