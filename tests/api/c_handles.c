/*
 * A host program in plain C that holds two controllers at once through the
 * handle API (qrxc_): qrx-sim --count 2 listens on address and address+1.
 *
 * Usage: c_handles <first address>   (exit status 0 when every check held)
 */
#include "qrx_host.h"
#include "host_checks.h"

#include <math.h>
#include <pthread.h>
#include <string.h>

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static int stateCalls;
static qrx_controller *stateHandle;

static void onState(qrx_controller *c, void *user)
{
    pthread_mutex_lock(&lock);
    ++stateCalls;
    stateHandle = c;
    pthread_mutex_unlock(&lock);
    (void)user;
}

/* What every function gives for a handle that is null or closed: its result
 * without a link, nothing sent, buffers left alone. */
static void checkNoLink(qrx_controller *c)
{
    double pos[6] = {-1, -1, -1, -1, -1, -1};
    char text[16] = "untouched";
    qrx_state state;

    CHECK(qrxc_link_up(c) == 0);
    CHECK(qrxc_connection_status(c) == 0);
    CHECK(qrxc_get_servo_state(c) == 0);
    CHECK(qrxc_get_current_mode(c) == 0);
    CHECK(qrxc_get_global_variant(c, "GI001") == 0.0);
    CHECK(qrxc_set_axis_zero_position(c, 1)); /* true without a link */
    CHECK(qrxc_continue_job(c) == 0);
    qrxc_get_current_position(c, pos, 0);
    CHECK(pos[0] == -1 && pos[5] == -1);
    qrxc_set_global_variant(c, "GI001", 9);
    CHECK(qrxc_robot_type(c, text, (int)sizeof text) == -1);
    CHECK(strcmp(text, "untouched") == 0);
    CHECK(qrxc_wait_move_done(c, NULL, 0, 0.1, 10) == -1);
    CHECK(qrxc_export_logs(c, "/nonexistent") == -1);
    CHECK(qrxc_last_message(c, text, (int)sizeof text) == 5 && strcmp(text, "error") == 0);
    qrxc_set_wait_timeout(c, 99);
    CHECK(qrxc_wait_timeout(c) == 0);
    CHECK(qrxc_get_state(c, &state) == 0);
    qrxc_close(c); /* nothing happens */
}

int main(int argc, char **argv)
{
    const char *first = argc > 1 ? argv[argc - 1] : "127.0.33.1";
    char second[INET_ADDRSTRLEN], nobody[INET_ADDRSTRLEN];
    qrx_controller *a, *b, *none;
    qrx_state state;
    double pos[6];
    double started;
    int i;

    nextAddress(first, 1, second, sizeof second);
    nextAddress(first, 2, nobody, sizeof nobody);

    a = qrxc_open(first, 0);
    b = qrxc_open(second, 6001);
    CHECK(a != NULL && b != NULL && a != b);
    if (!a || !b)
        return 1;
    CHECK(qrxc_link_up(a) == 1 && qrxc_link_up(b) == 1);
    CHECK(qrxc_connection_status(a) == 1);
    /* The default controller is not linked by a handle. */
    CHECK(connection_status() == 0);

    /* Two controllers, two values; each read ends on the reply to its own
     * query, not on a start-up report. */
    qrxc_set_matched_replies(a, 1);
    qrxc_set_matched_replies(b, 1);
    qrxc_set_global_variant(a, "GI001", 5);
    qrxc_set_global_variant(b, "GI001", 7);
    CHECK(qrxc_get_global_variant(a, "GI001") == 5.0);
    CHECK(qrxc_get_global_variant(b, "GI001") == 7.0);
    CHECK(qrxc_get_global_variant(a, "GI001") == 5.0);

    /* Settings are each controller's own; the default one keeps its own. */
    CHECK(qrxc_wait_timeout(a) == 3000 && qrx_wait_timeout() == 0);
    qrxc_set_wait_timeout(a, 1234);
    CHECK(qrxc_wait_timeout(a) == 1234 && qrxc_wait_timeout(b) == 3000 && qrx_wait_timeout() == 0);
    qrxc_set_matched_replies(a, 0);
    CHECK(qrxc_matched_replies(b) == 1 && qrxc_matched_replies(a) == 0 && qrx_matched_replies() == 0);

    CHECK(qrxc_get_state(a, &state) == 1);
    CHECK(state.link == 1);

    /* The state handler hears of a report that changed the state; the
     * cached state then holds what the getter read. */
    qrxc_set_state_handler(b, onState, NULL);
    qrxc_get_current_position(b, pos, 0);
    {
        struct countAtLeast called = {&lock, &stateCalls, 1};
        CHECK(waitUntil(countReaches, &called, 10.0));
    }
    pthread_mutex_lock(&lock);
    CHECK(stateHandle == b);
    pthread_mutex_unlock(&lock);
    CHECK(qrxc_get_state(b, &state) == 1);
    for (i = 0; i < 6; ++i)
        CHECK(state.joints[i] == pos[i]);
    qrxc_set_state_handler(b, NULL, NULL);

    /* One closed, the other still answers. */
    qrxc_close(a);
    checkNoLink(a);
    for (i = 0; i < 6; ++i)
        pos[i] = NAN;
    qrxc_get_current_position(b, pos, 0);
    CHECK(qrx_last_call_timed_out() == 0);
    for (i = 0; i < 6; ++i)
        CHECK(isfinite(pos[i]));
    CHECK(qrxc_get_global_variant(b, "GI001") == 7.0);
    CHECK(qrxc_get_state(b, &state) == 1 && state.link == 1);

    checkNoLink(NULL);

    /* Nobody listens: NULL within the bound asked for. */
    started = nowSeconds();
    none = qrxc_open_within(nobody, 0, 300);
    CHECK(none == NULL);
    CHECK(nowSeconds() - started < 3.0);
    CHECK(qrxc_open(first, 70000) == NULL);

    qrxc_close(b);
    CHECK(qrxc_link_up(b) == 0);

    if (failures)
        fprintf(stderr, "%d check(s) failed\n", failures);
    return failures ? 1 : 0;
}
