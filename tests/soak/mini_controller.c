#include "mini_controller.h"
#include "wire_frame.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <netinet/in.h>
#include <poll.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <sys/socket.h>
#include <unistd.h>

static pthread_t thread;
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
static int server = -1;
static int stopPipe[2] = {-1, -1};
static int accepted;
static int clientOpen;
static unsigned codes[64];
static int codeCounts[64];

static void count(unsigned code)
{
    int i;
    pthread_mutex_lock(&lock);
    for (i = 0; i < 64; ++i) {
        if (codeCounts[i] == 0 || codes[i] == code) {
            codes[i] = code;
            ++codeCounts[i];
            break;
        }
    }
    pthread_mutex_unlock(&lock);
}

static void sendFrame(int fd, unsigned code, const char *payload)
{
    unsigned char out[512];
    size_t size = wire_encode(code, payload, out);
    if (write(fd, out, size) < 0)
        perror("write");
}

/* Reads whole frames out of buf (n bytes); returns the bytes consumed. */
static size_t takeFrames(int fd, const unsigned char *buf, size_t n)
{
    size_t at = 0;
    while (n - at >= 10) {
        size_t length = (size_t)buf[at + 2] << 8 | buf[at + 3];
        unsigned code = (unsigned)buf[at + 4] << 8 | buf[at + 5];
        if (n - at < length + 10)
            break;
        count(code);
        if (code == 0x2F07)
            sendFrame(fd, 0x2F08, "{\"coord\":1,\"pos\":[1.5,2.5,3.5,4.5,5.5,6.5,7.5],"
                                  "\"posDeg\":[0,0,0,0,0,0,0],\"robot\":1}\n");
        at += length + 10;
    }
    return at;
}

static void *run(void *arg)
{
    int client = -1;
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
            client = accept(server, NULL, NULL);
            held = 0;
            if (client >= 0) {
                pthread_mutex_lock(&lock);
                ++accepted;
                clientOpen = 1;
                pthread_mutex_unlock(&lock);
            }
            continue;
        }
        {
            ssize_t got = read(client, buf + held, sizeof buf - held);
            size_t used;
            if (got <= 0) {
                close(client);
                client = -1;
                pthread_mutex_lock(&lock);
                clientOpen = 0;
                pthread_mutex_unlock(&lock);
                continue;
            }
            held += (size_t)got;
            used = takeFrames(client, buf, held);
            memmove(buf, buf + used, held - used);
            held -= used;
        }
    }
    if (client >= 0)
        close(client);
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

int mini_controller_frames(unsigned code)
{
    int i, n = 0;
    pthread_mutex_lock(&lock);
    for (i = 0; i < 64; ++i)
        if (codeCounts[i] && codes[i] == code)
            n = codeCounts[i];
    pthread_mutex_unlock(&lock);
    return n;
}

static int entries(const char *path)
{
    int n = 0;
    DIR *dir = opendir(path);
    struct dirent *e;
    if (!dir)
        return -1;
    while ((e = readdir(dir)) != NULL)
        n += e->d_name[0] != '.';
    closedir(dir);
    return n;
}

int process_threads(void)
{
    return entries("/proc/self/task");
}

int process_descriptors(void)
{
    return entries("/proc/self/fd") - 1; /* the directory being read */
}

long process_rss_kib(void)
{
    char line[256];
    long kib = -1;
    FILE *status = fopen("/proc/self/status", "r");
    if (!status)
        return -1;
    while (fgets(line, sizeof line, status))
        if (sscanf(line, "VmRSS: %ld kB", &kib) == 1)
            break;
    fclose(status);
    return kib;
}

static int linkThreads(void)
{
    int n = 0;
    char path[300], name[64];
    DIR *dir = opendir("/proc/self/task");
    struct dirent *e;
    if (!dir)
        return -1;
    while ((e = readdir(dir)) != NULL) {
        FILE *comm;
        if (e->d_name[0] == '.')
            continue;
        snprintf(path, sizeof path, "/proc/self/task/%s/comm", e->d_name);
        comm = fopen(path, "r");
        if (!comm)
            continue;
        if (fgets(name, sizeof name, comm) && strncmp(name, "qrx link", 8) == 0)
            ++n;
        fclose(comm);
    }
    closedir(dir);
    return n;
}

int settle(double seconds)
{
    struct timespec nap = {0, 2000000};
    int tries = (int)(seconds * 500);
    while (tries-- > 0) {
        int open;
        pthread_mutex_lock(&lock);
        open = clientOpen;
        pthread_mutex_unlock(&lock);
        if (!open && linkThreads() == 0)
            return 1;
        nanosleep(&nap, NULL);
    }
    return 0;
}
