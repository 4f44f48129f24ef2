#include "mini_controller.h"
#include "wire_frame.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#define MAX_FRAMES 512
#define MAX_PAYLOAD 1024
#define MAX_CODES 64

struct frame {
    unsigned code;
    char payload[MAX_PAYLOAD + 1];
};

static pthread_t thread;
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static int server = -1;
static int stopPipe[2] = {-1, -1};
static int client = -1;
static int accepted;
static unsigned codes[MAX_CODES];
static int codeCounts[MAX_CODES];
static struct frame frames[MAX_FRAMES];
static int frameCount;

/* Counts the frame and keeps its payload while there is room. */
static void record(unsigned code, const unsigned char *payload, size_t length)
{
    int i;
    pthread_mutex_lock(&lock);
    for (i = 0; i < MAX_CODES; ++i) {
        if (codeCounts[i] == 0 || codes[i] == code) {
            codes[i] = code;
            ++codeCounts[i];
            break;
        }
    }
    if (frameCount < MAX_FRAMES) {
        struct frame *f = &frames[frameCount++];
        if (length > MAX_PAYLOAD)
            length = MAX_PAYLOAD;
        f->code = code;
        memcpy(f->payload, payload, length);
        f->payload[length] = 0;
    }
    pthread_mutex_unlock(&lock);
}

void mini_controller_send(unsigned code, const char *payload)
{
    unsigned char out[MAX_PAYLOAD + 10];
    size_t size = wire_encode(code, payload, out);
    pthread_mutex_lock(&lock);
    /* The host may have closed the connection: no SIGPIPE for the process
     * the controller shares with it. */
    if (client >= 0 && send(client, out, size, MSG_NOSIGNAL) != (ssize_t)size)
        fprintf(stderr, "short write\n");
    pthread_mutex_unlock(&lock);
}

/* Reads whole frames out of buf (n bytes); returns the bytes consumed. */
static size_t takeFrames(const unsigned char *buf, size_t n)
{
    size_t at = 0;
    while (n - at >= 10) {
        size_t length = (size_t)buf[at + 2] << 8 | buf[at + 3];
        unsigned code = (unsigned)buf[at + 4] << 8 | buf[at + 5];
        if (n - at < length + 10)
            break;
        if (code == 0x7266) {
            char echo[MAX_PAYLOAD + 1];
            size_t size = length < MAX_PAYLOAD ? length : MAX_PAYLOAD;
            memcpy(echo, buf + at + 6, size);
            echo[size] = 0;
            mini_controller_send(0x7267, echo);
        } else {
            if (code == 0x2F07)
                mini_controller_send(0x2F08, "{\"coord\":1,\"pos\":[1.5,2.5,3.5,4.5,5.5,6.5,7.5],"
                                             "\"posDeg\":[0,0,0,0,0,0,0],\"robot\":1}\n");
            record(code, buf + at + 6, length);
        }
        at += length + 10;
    }
    return at;
}

static void setClient(int fd)
{
    pthread_mutex_lock(&lock);
    if (fd >= 0)
        ++accepted;
    else if (client >= 0)
        close(client);
    client = fd;
    pthread_mutex_unlock(&lock);
}

static void *run(void *arg)
{
    unsigned char buf[70000];
    size_t held = 0;
    (void)arg;
    for (;;) {
        struct pollfd fds[2] = {{stopPipe[0], POLLIN, 0}, {client >= 0 ? client : server, POLLIN, 0}};
        if (poll(fds, 2, -1) < 0)
            continue;
        if (fds[0].revents)
            break;
        if (client < 0) {
            setClient(accept(server, NULL, NULL));
            held = 0;
            continue;
        }
        {
            ssize_t got = read(client, buf + held, sizeof buf - held);
            size_t used;
            if (got <= 0) {
                setClient(-1);
                continue;
            }
            held += (size_t)got;
            used = takeFrames(buf, held);
            memmove(buf, buf + used, held - used);
            held -= used;
        }
    }
    if (client >= 0)
        setClient(-1);
    return NULL;
}

int mini_controller_start(const char *address)
{
    struct sockaddr_in at;
    int one = 1;
    server = socket(AF_INET, SOCK_STREAM, 0);
    setsockopt(server, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    memset(&at, 0, sizeof at);
    at.sin_family = AF_INET;
    at.sin_port = htons(6001);
    if (inet_pton(AF_INET, address, &at.sin_addr) != 1 || bind(server, (struct sockaddr *)&at, sizeof at) != 0
        || listen(server, 8) != 0 || pipe(stopPipe) != 0) {
        fprintf(stderr, "cannot listen on %s:6001\n", address);
        return -1;
    }
    return pthread_create(&thread, NULL, run, NULL);
}

void mini_controller_stop(void)
{
    if (write(stopPipe[1], "x", 1) != 1)
        perror("write");
    pthread_join(thread, NULL);
    close(server);
    close(stopPipe[0]);
    close(stopPipe[1]);
}

int mini_controller_accepted(void)
{
    int n;
    pthread_mutex_lock(&lock);
    n = accepted;
    pthread_mutex_unlock(&lock);
    return n;
}

int mini_controller_has_client(void)
{
    int open;
    pthread_mutex_lock(&lock);
    open = client >= 0;
    pthread_mutex_unlock(&lock);
    return open;
}

int mini_controller_frames(unsigned code)
{
    int i, n = 0;
    pthread_mutex_lock(&lock);
    for (i = 0; i < MAX_CODES; ++i)
        if (codeCounts[i] && codes[i] == code)
            n = codeCounts[i];
    pthread_mutex_unlock(&lock);
    return n;
}

static int findFrame(unsigned code, int from)
{
    int i, found = -1;
    pthread_mutex_lock(&lock);
    for (i = from; i < frameCount && found < 0; ++i)
        if (frames[i].code == code)
            found = i;
    pthread_mutex_unlock(&lock);
    return found;
}

int mini_controller_wait_frame(unsigned code, int from, double seconds)
{
    const struct timespec slice = {0, 1000000};
    long slices = (long)(seconds * 1000);
    int found;
    while ((found = findFrame(code, from)) < 0 && slices-- > 0)
        nanosleep(&slice, NULL);
    return found;
}

const char *mini_controller_payload(int index)
{
    const char *payload;
    pthread_mutex_lock(&lock);
    payload = index >= 0 && index < frameCount ? frames[index].payload : "(none)";
    pthread_mutex_unlock(&lock);
    return payload;
}

int mini_controller_payload_is(int index, const char *expected)
{
    return index >= 0 && strcmp(mini_controller_payload(index), expected) == 0;
}
