/*
 * A plain C host that connects and disconnects many times against its own
 * controller and then returns from main(). Every cycle must connect; after a
 * warm-up the process's threads and descriptors must stay exactly as they
 * were and its memory may not grow by more than a few MiB.
 *
 * Usage: soak_cycles address cycles
 */
#include "mini_controller.h"
#include "process_stats.h"
#include "qrx_host.h"

#include <stdio.h>
#include <stdlib.h>

#define WARM_UP 20
/* Under AddressSanitizer freed memory sits in quarantine, so resident memory
 * says nothing there; LeakSanitizer checks for leaks at exit instead. */
#ifdef __SANITIZE_ADDRESS__
#define MAX_GROWTH_KIB (1L << 30)
#else
#define MAX_GROWTH_KIB 6144
#endif

int main(int argc, char **argv)
{
    const char *address = argc > 1 ? argv[1] : "127.5.0.1";
    int cycles = argc > 2 ? atoi(argv[2]) : 1000;
    int i, failures = 0, threads = 0, descriptors = 0;
    long rss = 0;

    qrx_set_connect_poll_interval(30);
    if (mini_controller_start(address) != 0)
        return 2;
    for (i = 0; i < cycles; ++i) {
        if (i == WARM_UP) {
            if (!settle(10.0))
                ++failures;
            threads = process_threads();
            descriptors = process_descriptors();
            rss = process_rss_kib();
        }
        if (connect_robot(address) != 1) {
            fprintf(stderr, "cycle %d: not connected\n", i);
            ++failures;
        }
        if (i % 10 == 0) {
            double pos[6] = {0};
            get_current_position(pos, 1);
            if (pos[5] != 6.5) {
                fprintf(stderr, "cycle %d: position %g\n", i, pos[5]);
                ++failures;
            }
        }
        disconnect_robot();
    }
    if (!settle(10.0)) {
        fprintf(stderr, "a link thread or the connection stayed\n");
        ++failures;
    }
    printf("cycles %d: threads %d -> %d, descriptors %d -> %d, rss %ld -> %ld KiB\n", cycles, threads,
           process_threads(), descriptors, process_descriptors(), rss, process_rss_kib());
    if (process_threads() != threads || process_descriptors() != descriptors) {
        fprintf(stderr, "threads or descriptors grew\n");
        ++failures;
    }
    if (process_rss_kib() - rss > MAX_GROWTH_KIB) {
        fprintf(stderr, "memory grew by %ld KiB\n", process_rss_kib() - rss);
        ++failures;
    }
    if (mini_controller_accepted() != cycles || mini_controller_frames(0x7277) != cycles) {
        fprintf(stderr, "controller saw %d connections and %d farewells\n", mini_controller_accepted(),
                mini_controller_frames(0x7277));
        ++failures;
    }
    mini_controller_stop();
    return failures ? 1 : 0;
}
