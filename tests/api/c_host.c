/*
 * A host program in plain C (no Qt of its own) that drives the library
 * through qrx_host.h against a minimal controller of its own: a listening
 * socket on a loopback address, a thread that records every frame, answers
 * heartbeats and sends what the test asks for.
 *
 * Usage: c_host [address]   (exit status 0 when every check held)
 */
#include "qrx_host.h"
#include "host_checks.h"
#include "wire_frame.h"

#include <netinet/in.h>
#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#define MAX_FRAMES 512
#define MAX_PAYLOAD 1024

struct frame {
    unsigned code;
    size_t length;
    char payload[MAX_PAYLOAD + 1];
};

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static struct frame frames[MAX_FRAMES];
static int frameCount;
static int client = -1;
static char callbackText[256];
static int callbackCalls;

static void sendFrame(unsigned code, const char *payload)
{
    unsigned char bytes[MAX_PAYLOAD + 10];
    size_t size = wire_encode(code, payload, bytes);
    pthread_mutex_lock(&lock);
    if (client >= 0 && write(client, bytes, size) != (ssize_t)size)
        fprintf(stderr, "short write\n");
    pthread_mutex_unlock(&lock);
}

static int readAll(int fd, unsigned char *to, size_t size)
{
    size_t done = 0;
    while (done < size) {
        ssize_t n = read(fd, to + done, size - done);
        if (n <= 0)
            return 0;
        done += (size_t)n;
    }
    return 1;
}

/* Accepts one client and records its frames until it goes away. */
static void *controller(void *arg)
{
    int server = *(int *)arg;
    int fd = accept(server, NULL, NULL);
    unsigned char head[6];
    if (fd < 0)
        return NULL;
    pthread_mutex_lock(&lock);
    client = fd;
    pthread_mutex_unlock(&lock);
    while (readAll(fd, head, 6)) {
        unsigned length = (unsigned)head[2] << 8 | head[3];
        unsigned code = (unsigned)head[4] << 8 | head[5];
        unsigned char body[65536 + 4];
        if (head[0] != 0x4E || head[1] != 0x66 || !readAll(fd, body, length + 4))
            break;
        if (code == 0x2F07) {
            sendFrame(0x2F08, "{\"coord\":1,\"pos\":[1.50,2.50,3.50,4.50,5.50,6.50,7.50],"
                              "\"posDeg\":[0.0,0.0,0.0,0.0,0.0,0.0,0.0],\"robot\":1}\n");
        }
        if (code == 0x7266) {
            char echo[MAX_PAYLOAD + 1];
            size_t n = length < MAX_PAYLOAD ? length : MAX_PAYLOAD;
            memcpy(echo, body, n);
            echo[n] = 0;
            sendFrame(0x7267, echo);
            continue;
        }
        pthread_mutex_lock(&lock);
        if (frameCount < MAX_FRAMES) {
            struct frame *f = &frames[frameCount++];
            f->code = code;
            f->length = length < MAX_PAYLOAD ? length : MAX_PAYLOAD;
            memcpy(f->payload, body, f->length);
            f->payload[f->length] = 0;
        }
        pthread_mutex_unlock(&lock);
    }
    return NULL;
}

struct frameQuery {
    unsigned code;
    int from;
    int found;
};

/* Whether a frame with the query's code stands at or after its `from`. */
static int frameFound(void *arg)
{
    struct frameQuery *query = arg;
    int i;
    pthread_mutex_lock(&lock);
    for (i = query->from; i < frameCount && query->found < 0; ++i) {
        if (frames[i].code == query->code)
            query->found = i;
    }
    pthread_mutex_unlock(&lock);
    return query->found >= 0;
}

/* Index of the first frame with that code at or after `from`, or -1; waits
 * up to timeout seconds for it. */
static int waitForFrame(unsigned code, int from, double timeout)
{
    struct frameQuery query;
    query.code = code;
    query.from = from;
    query.found = -1;
    waitUntil(frameFound, &query, timeout);
    return query.found;
}

static int payloadIs(int index, const char *expected)
{
    int same;
    if (index < 0)
        return 0;
    pthread_mutex_lock(&lock);
    same = strcmp(frames[index].payload, expected) == 0;
    pthread_mutex_unlock(&lock);
    return same;
}

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
    struct sockaddr_in at;
    int server, one = 1, index;
    pthread_t thread;

    server = socket(AF_INET, SOCK_STREAM, 0);
    setsockopt(server, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    memset(&at, 0, sizeof at);
    at.sin_family = AF_INET;
    at.sin_port = htons(6001);
    if (inet_pton(AF_INET, address, &at.sin_addr) != 1
        || bind(server, (struct sockaddr *)&at, sizeof at) != 0 || listen(server, 4) != 0) {
        fprintf(stderr, "cannot listen on %s:6001\n", address);
        return 2;
    }
    pthread_create(&thread, NULL, controller, &server);

    /* A controller that accepts at once is seen at the first poll, after
     * the first one-second pause, not a poll later. */
    {
        double start = nowSeconds();
        CHECK(connect_robot(address) == 1);
        CHECK(nowSeconds() - start < 1.9);
    }
    CHECK(connection_status() == 1);
    index = waitForFrame(0x5052, 0, 10.0);
    CHECK(index >= 0);
    CHECK(payloadIs(index, ""));

    /* A getter blocks this thread, which runs no event loop, until the
     * library's own thread has handled the reply. */
    {
        double pos[7] = {0, 0, 0, 0, 0, 0, -1};
        get_current_position(pos, 1);
        index = waitForFrame(0x2F07, 0, 10.0);
        CHECK(payloadIs(index, "{\"coord\":1,\"robot\":1}\n"));
        CHECK(pos[0] == 1.5 && pos[5] == 6.5);
        CHECK(pos[6] == -1); /* six values, not seven */
    }

    /* Controller errors reach the handler on the library's thread. */
    setErrorHandle(onError);
    sendFrame(0x2B03, "{\"data\":\"C host\"}\n");
    {
        struct countAtLeast called = {&lock, &callbackCalls, 1};
        CHECK(waitUntil(countReaches, &called, 10.0));
    }
    pthread_mutex_lock(&lock);
    CHECK(strcmp(callbackText, "错误： C host") == 0);
    pthread_mutex_unlock(&lock);

    /* Jogging runs on the library's own thread: one step at once, then one
     * per timer tick, and none after the stop. */
    sendFrame(0x2003, "{\"mode\":0,\"robot\":1,\"status\":3}\n");
    {
        int servoOn = 3;
        CHECK(waitUntil(servoStateIs, &servoOn, 10.0));
    }
    start_jogging(3, false);
    index = waitForFrame(0x2901, 0, 10.0);
    CHECK(payloadIs(index, "{\"axis\":3,\"direction\":-1}\n"));
    index = waitForFrame(0x2901, index + 1, 10.0);
    CHECK(payloadIs(index, "{\"axis\":3,\"direction\":-1}\n"));
    stop_jogging(3);
    index = waitForFrame(0x2902, 0, 10.0);
    CHECK(payloadIs(index, "{\"axis\":3}\n"));
    continuous_motion_start(); /* sent after the stop: every frame before it is in */
    CHECK(waitForFrame(0x50B8, 0, 10.0) > index);
    CHECK(waitForFrame(0x2901, index, 0.0) < 0);

    continuous_motion_mode(0);
    index = waitForFrame(0x50B1, 0, 10.0);
    CHECK(payloadIs(index, "{\"open\":false}\n"));
    index = waitForFrame(0x2101, index, 10.0);
    CHECK(payloadIs(index, "{\"mode\":0}\n"));

    disconnect_robot();
    index = waitForFrame(0x7277, 0, 10.0);
    CHECK(payloadIs(index, ""));

    /* The link has gone: the controller thread sees the end of its client
     * (or, without one, its accept fails once the socket shuts down). */
    shutdown(server, SHUT_RDWR);
    pthread_join(thread, NULL);
    close(server);
    if (failures)
        fprintf(stderr, "%d check(s) failed\n", failures);
    else
        printf("c_host: all checks passed\n");
    return failures ? 1 : 0;
}
