/*
 * A host program in plain C (no Qt of its own) that drives the library
 * through qrx_host.h against the minimal controller of tests/support on a
 * loopback address: it records every frame, answers heartbeats and position
 * queries and sends what the test asks for.
 *
 * Usage: c_host [address]   (exit status 0 when every check held)
 */
#include "qrx_host.h"
#include "host_checks.h"
#include "mini_controller.h"

#include <pthread.h>
#include <string.h>

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static char callbackText[256];
static int callbackCalls;

static void onError(const char *text)
{
    pthread_mutex_lock(&lock);
    snprintf(callbackText, sizeof callbackText, "%s", text);
    ++callbackCalls;
    pthread_mutex_unlock(&lock);
}

/* Whether the servo state the library holds is *(int *)state. */
static int servoStateIs(void *state)
{
    return get_servo_state() == *(int *)state;
}

int main(int argc, char **argv)
{
    const char *address = argc > 1 ? argv[1] : "127.3.0.1";
    int index;

    if (mini_controller_start(address) != 0)
        return 2;

    /* A controller that accepts at once is seen at the first poll, after
     * the first one-second pause, not a poll later. */
    {
        double start = nowSeconds();
        CHECK(connect_robot(address) == 1);
        CHECK(nowSeconds() - start < 1.9);
    }
    CHECK(connection_status() == 1);
    index = mini_controller_wait_frame(0x5052, 0, 10.0);
    CHECK(index >= 0);
    CHECK(mini_controller_payload_is(index, ""));

    /* A getter blocks this thread, which runs no event loop, until the
     * library's own thread has handled the reply. */
    {
        double pos[7] = {0, 0, 0, 0, 0, 0, -1};
        get_current_position(pos, 1);
        index = mini_controller_wait_frame(0x2F07, 0, 10.0);
        CHECK(mini_controller_payload_is(index, "{\"coord\":1,\"robot\":1}\n"));
        CHECK(pos[0] == 1.5 && pos[5] == 6.5);
        CHECK(pos[6] == -1); /* six values, not seven */
    }

    /* Controller errors reach the handler on the library's thread. */
    setErrorHandle(onError);
    mini_controller_send(0x2B03, "{\"data\":\"C host\"}\n");
    {
        struct countAtLeast called = {&lock, &callbackCalls, 1};
        CHECK(waitUntil(countReaches, &called, 10.0));
    }
    pthread_mutex_lock(&lock);
    CHECK(strcmp(callbackText, "错误： C host") == 0);
    pthread_mutex_unlock(&lock);

    /* Jogging runs on the library's own thread: one step at once, then one
     * per timer tick, and none after the stop. */
    mini_controller_send(0x2003, "{\"mode\":0,\"robot\":1,\"status\":3}\n");
    {
        int servoOn = 3;
        CHECK(waitUntil(servoStateIs, &servoOn, 10.0));
    }
    start_jogging(3, false);
    index = mini_controller_wait_frame(0x2901, 0, 10.0);
    CHECK(mini_controller_payload_is(index, "{\"axis\":3,\"direction\":-1}\n"));
    index = mini_controller_wait_frame(0x2901, index + 1, 10.0);
    CHECK(mini_controller_payload_is(index, "{\"axis\":3,\"direction\":-1}\n"));
    stop_jogging(3);
    index = mini_controller_wait_frame(0x2902, 0, 10.0);
    CHECK(mini_controller_payload_is(index, "{\"axis\":3}\n"));
    continuous_motion_start(); /* sent after the stop: every frame before it is in */
    CHECK(mini_controller_wait_frame(0x50B8, 0, 10.0) > index);
    CHECK(mini_controller_wait_frame(0x2901, index, 0.0) < 0);

    disconnect_robot();
    index = mini_controller_wait_frame(0x7277, 0, 10.0);
    CHECK(mini_controller_payload_is(index, ""));

    mini_controller_stop();
    if (failures)
        fprintf(stderr, "%d check(s) failed\n", failures);
    else
        printf("c_host: all checks passed\n");
    return failures ? 1 : 0;
}
