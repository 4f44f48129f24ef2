/* A minimal controller for the plain C test hosts: listens on address:6001,
 * accepts clients one after another, answers heartbeats (0x7266, echoed as
 * 0x7267) and position queries (0x2F07, with a position report), records the
 * other frames it reads and sends what the host program asks for. */
#ifndef MINI_CONTROLLER_H
#define MINI_CONTROLLER_H

/* Starts the controller thread; 0 on success. */
int mini_controller_start(const char *address);
/* Stops it and joins its thread. */
void mini_controller_stop(void);

/* Clients accepted so far; whether one is connected now. */
int mini_controller_accepted(void);
int mini_controller_has_client(void);
/* Frames of code read so far (heartbeats left out). */
int mini_controller_frames(unsigned code);
/* Index of the first recorded frame of code at or after `from`, or -1; waits
 * up to `seconds` for it. */
int mini_controller_wait_frame(unsigned code, int from, double seconds);
/* Whether the payload of recorded frame `index` is `expected`. */
int mini_controller_payload_is(int index, const char *expected);
/* The payload of recorded frame `index`, or "(none)". */
const char *mini_controller_payload(int index);

/* Sends a frame to the connected client (nothing when there is none). */
void mini_controller_send(unsigned code, const char *payload);

#endif
