/* What a getter costs a plain C host beside the network itself.
 *
 * One minimal controller on a loopback address of its own, a thread of
 * this program: it answers heartbeats 0x7266 with 0x7267 and each position
 * query 0x2F07 with the same 0x2F08 report, on every connection. Against
 * it, per iteration, one right after the other so that all see the same
 * load of the machine:
 *   raw     a blocking socket sends the very 0x2F07 frame the library sends
 *           for get_current_position(pos, 0) and reads the report back;
 *   getter  get_current_position(pos, 0) on the connect_robot() link;
 *   handle  qrxc_get_current_position(c, pos, 0) on a handle of its own.
 * Prints the median and the 99th percentile of each and their ratios to
 * the raw ones; the goal is a median at most 1.5 times and a 99th
 * percentile at most twice the raw one.
 *
 * Usage: bench_roundtrip_c [iterations] (20000 by default). Exit status 1
 * when the peer cannot be set up or a getter does not return its position. */
#include "qrx_host.h"
#include "wire_frame.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#define PEER_ADDRESS "127.41.0.2"
#define PEER_PORT 6001
#define MAX_CLIENTS 4
#define BUFFER_SIZE 65536

static const char kQuery[] = "{\"coord\":0,\"robot\":1}\n";
static const char kReport[] = "{\"coord\":0,\"pos\":[100.0,101.25,102.5,103.75,105.0,106.25,107.5],"
                              "\"posDeg\":[10.0,10.5,11.0,11.5,12.0,12.5,13.0],\"robot\":1}\n";

struct client {
    int fd;
    size_t used;
    unsigned char buffer[BUFFER_SIZE];
};

static struct client g_clients[MAX_CLIENTS];
static unsigned char g_report[sizeof kReport + 10];
static size_t g_reportSize;

static int write_all(int fd, const unsigned char *bytes, size_t size)
{
    size_t done = 0;
    while (done < size) {
        ssize_t n = send(fd, bytes + done, size - done, MSG_NOSIGNAL);
        if (n <= 0)
            return 0;
        done += (size_t)n;
    }
    return 1;
}

/* Answers every whole frame in the client's buffer and keeps the rest. */
static void answer(struct client *c)
{
    size_t at = 0;
    while (c->used - at >= 10) {
        const unsigned char *f = c->buffer + at;
        size_t length;
        unsigned code;
        if (f[0] != 0x4E || f[1] != 0x66) {
            ++at;
            continue;
        }
        length = ((size_t)f[2] << 8) | f[3];
        if (c->used - at < length + 10)
            break;
        code = ((unsigned)f[4] << 8) | f[5];
        if (code == 0x2F07) {
            write_all(c->fd, g_report, g_reportSize);
        } else if (code == 0x7266) {
            /* The heartbeat's answer carries its payload (JSON text). */
            static char payload[BUFFER_SIZE];
            static unsigned char echo[BUFFER_SIZE + 10];
            memcpy(payload, f + 6, length);
            payload[length] = '\0';
            write_all(c->fd, echo, wire_encode(0x7267, payload, echo));
        }
        at += length + 10;
    }
    memmove(c->buffer, c->buffer + at, c->used - at);
    c->used -= at;
}

static void *serve(void *arg)
{
    const int server = *(const int *)arg;
    int i;
    for (i = 0; i < MAX_CLIENTS; ++i)
        g_clients[i].fd = -1;
    for (;;) {
        struct pollfd fds[MAX_CLIENTS + 1];
        fds[0].fd = server;
        fds[0].events = POLLIN;
        for (i = 0; i < MAX_CLIENTS; ++i) {
            fds[i + 1].fd = g_clients[i].fd;
            fds[i + 1].events = POLLIN;
        }
        if (poll(fds, MAX_CLIENTS + 1, -1) < 0)
            continue;
        if (fds[0].revents & POLLIN) {
            const int fd = accept(server, NULL, NULL);
            const int one = 1;
            setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
            for (i = 0; i < MAX_CLIENTS && g_clients[i].fd >= 0; ++i) {
            }
            if (i < MAX_CLIENTS) {
                g_clients[i].fd = fd;
                g_clients[i].used = 0;
            } else {
                close(fd);
            }
        }
        for (i = 0; i < MAX_CLIENTS; ++i) {
            struct client *c = &g_clients[i];
            ssize_t n;
            if (c->fd < 0 || !(fds[i + 1].revents & (POLLIN | POLLHUP | POLLERR)))
                continue;
            n = recv(c->fd, c->buffer + c->used, BUFFER_SIZE - c->used, 0);
            if (n <= 0) {
                close(c->fd);
                c->fd = -1;
                continue;
            }
            c->used += (size_t)n;
            answer(c);
        }
    }
    return NULL;
}

static struct sockaddr_in peer_address(void)
{
    struct sockaddr_in at;
    memset(&at, 0, sizeof at);
    at.sin_family = AF_INET;
    at.sin_port = htons(PEER_PORT);
    inet_pton(AF_INET, PEER_ADDRESS, &at.sin_addr);
    return at;
}

static int start_peer(void)
{
    static int server;
    pthread_t thread;
    const int one = 1;
    struct sockaddr_in at = peer_address();
    server = socket(AF_INET, SOCK_STREAM, 0);
    setsockopt(server, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    if (bind(server, (struct sockaddr *)&at, sizeof at) != 0 || listen(server, 4) != 0)
        return 0;
    if (pthread_create(&thread, NULL, serve, &server) != 0)
        return 0;
    pthread_detach(thread);
    return 1;
}

static int raw_connect(void)
{
    const int one = 1;
    struct sockaddr_in at = peer_address();
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    if (connect(fd, (struct sockaddr *)&at, sizeof at) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

static void raw_ping_pong(int fd, const unsigned char *query, size_t querySize)
{
    unsigned char reply[sizeof g_report];
    size_t got = 0;
    write_all(fd, query, querySize);
    while (got < g_reportSize) {
        const ssize_t n = recv(fd, reply + got, g_reportSize - got, 0);
        if (n <= 0)
            break;
        got += (size_t)n;
    }
}

static double now_us(void)
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return (double)ts.tv_sec * 1e6 + (double)ts.tv_nsec / 1e3;
}

static int by_value(const void *a, const void *b)
{
    const double x = *(const double *)a;
    const double y = *(const double *)b;
    return (x > y) - (x < y);
}

/* Sorts the samples and returns the value below which the share q lies. */
static double percentile(double *samples, int n, double q)
{
    qsort(samples, (size_t)n, sizeof *samples, by_value);
    return samples[(int)((double)(n - 1) * q)];
}

int main(int argc, char **argv)
{
    const int iterations = argc > 1 ? atoi(argv[1]) : 20000;
    const int warmup = 1000;
    unsigned char query[sizeof kQuery + 10];
    size_t querySize;
    double *raw, *getter, *handle;
    double pos[6] = {0}, handlePos[6] = {0};
    double rawMedian, rawP99, getterMedian, getterP99, handleMedian, handleP99;
    qrx_controller *c;
    int fd, i;

    if (iterations < 1)
        return 1;
    g_reportSize = wire_encode(0x2F08, kReport, g_report);
    querySize = wire_encode(0x2F07, kQuery, query);
    if (!start_peer() || connect_robot(PEER_ADDRESS) != 1) {
        fprintf(stderr, "peer at %s not reachable\n", PEER_ADDRESS);
        return 1;
    }
    fd = raw_connect();
    c = qrxc_open(PEER_ADDRESS, PEER_PORT);
    raw = malloc(sizeof *raw * (size_t)iterations);
    getter = malloc(sizeof *getter * (size_t)iterations);
    handle = malloc(sizeof *handle * (size_t)iterations);
    if (fd < 0 || !c || !raw || !getter || !handle) {
        fprintf(stderr, "setup failed\n");
        return 1;
    }
    for (i = -warmup; i < iterations; ++i) {
        const double t0 = now_us();
        double t1, t2, t3;
        raw_ping_pong(fd, query, querySize);
        t1 = now_us();
        get_current_position(pos, 0);
        t2 = now_us();
        qrxc_get_current_position(c, handlePos, 0);
        t3 = now_us();
        if (i >= 0) {
            raw[i] = t1 - t0;
            getter[i] = t2 - t1;
            handle[i] = t3 - t2;
        }
    }
    rawMedian = percentile(raw, iterations, 0.5);
    rawP99 = percentile(raw, iterations, 0.99);
    getterMedian = percentile(getter, iterations, 0.5);
    getterP99 = percentile(getter, iterations, 0.99);
    handleMedian = percentile(handle, iterations, 0.5);
    handleP99 = percentile(handle, iterations, 0.99);
    printf("%d iterations\n", iterations);
    printf("raw     median %8.1f us  p99 %8.1f us\n", rawMedian, rawP99);
    printf("getter  median %8.1f us  p99 %8.1f us  ratio %.2f  p99 ratio %.2f\n", getterMedian, getterP99,
           getterMedian / rawMedian, getterP99 / rawP99);
    printf("handle  median %8.1f us  p99 %8.1f us  ratio %.2f  p99 ratio %.2f\n", handleMedian, handleP99,
           handleMedian / rawMedian, handleP99 / rawP99);
    qrxc_close(c);
    disconnect_robot();
    close(fd);
    free(raw);
    free(getter);
    free(handle);
    if (pos[0] != 100.0 || handlePos[0] != 100.0) {
        fprintf(stderr, "a getter did not return the peer's position\n");
        return 1;
    }
    return 0;
}
