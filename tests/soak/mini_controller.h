/* A minimal controller for plain C soak hosts: listens on address:6001,
 * accepts any number of clients one after another, answers a position query
 * (0x2F07) with a position report and counts the frames it reads. */
#ifndef MINI_CONTROLLER_H
#define MINI_CONTROLLER_H

/* Starts the controller thread; 0 on success. */
int mini_controller_start(const char *address);
/* Stops it and joins its thread. */
void mini_controller_stop(void);
/* Clients accepted and frames of code read so far. */
int mini_controller_accepted(void);
int mini_controller_frames(unsigned code);

/* Waits (up to seconds) until the controller holds no client and no link
 * thread of the library ("qrx link") is still
 * ending; 0 when that was not reached. */
int settle(double seconds);

/* This process's threads, open descriptors and resident memory (KiB). */
int process_threads(void);
int process_descriptors(void);
long process_rss_kib(void);

#endif
