/* One controller frame for plain C test hosts: head "Nf", payload length
 * and code big-endian, the payload, CRC-32 (zlib) of length, code and
 * payload. */
#ifndef WIRE_FRAME_H
#define WIRE_FRAME_H

#include <stddef.h>

/* Writes the frame into out (room for strlen(payload) + 10 bytes); returns
 * its size. */
size_t wire_encode(unsigned code, const char *payload, unsigned char *out);

#endif
