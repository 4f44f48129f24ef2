/*
 * What the host programs in tests/api (C and C++, no test framework) share:
 * a CHECK that counts failures, a bounded wait on a condition, and the
 * loopback address n after a first one.
 */
#ifndef QRX_TESTS_HOST_CHECKS_H
#define QRX_TESTS_HOST_CHECKS_H

#include <arpa/inet.h>
#include <pthread.h>
#include <stdio.h>
#include <time.h>

#ifdef __cplusplus
#include <atomic>
#include <string>
inline std::atomic<int> failures{0};
#else
static int failures;
#endif

#define CHECK(cond)                                                          \
    do {                                                                     \
        if (!(cond)) {                                                       \
            fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, \
                    #cond);                                                  \
            ++failures;                                                      \
        }                                                                    \
    } while (0)

static inline double nowSeconds(void)
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return (double)ts.tv_sec + ts.tv_nsec / 1e9;
}

/* Asks `holds` every millisecond until it answers non-zero or `seconds` have
 * passed; gives its last answer. */
static inline int waitUntil(int (*holds)(void *), void *arg, double seconds)
{
    const double deadline = nowSeconds() + seconds;
    const struct timespec slice = {0, 1000000};
    for (;;) {
        const int held = holds(arg);
        if (held || nowSeconds() > deadline)
            return held;
        nanosleep(&slice, NULL);
    }
}

/* A count kept under a lock, and the least it is waited for to reach. */
struct countAtLeast {
    pthread_mutex_t *lock;
    const int *count;
    int least;
};

static inline int countReaches(void *arg)
{
    const struct countAtLeast *wanted = (const struct countAtLeast *)arg;
    int reached;
    pthread_mutex_lock(wanted->lock);
    reached = *wanted->count >= wanted->least;
    pthread_mutex_unlock(wanted->lock);
    return reached;
}

/* The address n after first, as text. */
static inline void nextAddress(const char *first, unsigned n, char *out, size_t size)
{
    struct in_addr addr;
    inet_pton(AF_INET, first, &addr);
    addr.s_addr = htonl(ntohl(addr.s_addr) + n);
    inet_ntop(AF_INET, &addr, out, (socklen_t)size);
}

#ifdef __cplusplus
inline std::string nextAddress(const std::string &first, unsigned n)
{
    char text[INET_ADDRSTRLEN];
    nextAddress(first.c_str(), n, text, sizeof text);
    return text;
}
#endif

#endif
