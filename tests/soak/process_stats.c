/* What the soak hosts measure of their own process, and their wait for the
 * controller and the library to be done with a connection. */
#include "process_stats.h"
#include "mini_controller.h"

#include <dirent.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

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
        if (!mini_controller_has_client() && linkThreads() == 0)
            return 1;
        nanosleep(&nap, NULL);
    }
    return 0;
}
