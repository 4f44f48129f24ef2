/*
 * A plain C host that connects, calls getters from two threads, calls
 * disconnect_robot() and returns from main() at once (its controller thread
 * still running). run_exit.sh runs it many times: every run must end with
 * status 0 and print no garbled log line.
 *
 * Usage: soak_exit address
 */
#include "mini_controller.h"
#include "qrx_host.h"

#include <pthread.h>
#include <stdio.h>

static int wrong;

static void *getters(void *arg)
{
    int i;
    (void)arg;
    for (i = 0; i < 20; ++i) {
        double pos[6] = {0};
        get_current_position(pos, 1);
        if (pos[0] != 1.5)
            __atomic_add_fetch(&wrong, 1, __ATOMIC_SEQ_CST);
        (void)get_servo_state();
        (void)connection_status();
    }
    return NULL;
}

int main(int argc, char **argv)
{
    const char *address = argc > 1 ? argv[1] : "127.5.0.2";
    pthread_t one, two;
    int attempts = 0;
    qrx_set_connect_poll_interval(100);
    if (mini_controller_start(address) != 0)
        return 2;
    /* The run is about the exit: a machine too busy to connect within one
     * call's half second gets more calls. */
    while (connect_robot(address) != 1)
        if (++attempts == 10) {
            fprintf(stderr, "not connected after %d calls\n", attempts);
            return 3;
        }
    pthread_create(&one, NULL, getters, NULL);
    pthread_create(&two, NULL, getters, NULL);
    pthread_join(one, NULL);
    pthread_join(two, NULL);
    disconnect_robot();
    if (wrong)
        fprintf(stderr, "%d positions were not the controller's\n", wrong);
    return wrong ? 4 : 0;
}
