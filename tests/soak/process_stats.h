/* What the soak hosts measure of their own process. */
#ifndef PROCESS_STATS_H
#define PROCESS_STATS_H

/* Waits (up to seconds) until the controller holds no client and no link
 * thread of the library ("qrx link") is still ending; 0 when that was not
 * reached. */
int settle(double seconds);

/* This process's threads, open descriptors and resident memory (KiB). */
int process_threads(void);
int process_descriptors(void);
long process_rss_kib(void);

#endif
