#include "wire_frame.h"

#include <string.h>
#include <zlib.h>

size_t wire_encode(unsigned code, const char *payload, unsigned char *out)
{
    size_t length = strlen(payload);
    uLong crc;
    out[0] = 0x4E;
    out[1] = 0x66;
    out[2] = (unsigned char)(length >> 8);
    out[3] = (unsigned char)length;
    out[4] = (unsigned char)(code >> 8);
    out[5] = (unsigned char)code;
    memcpy(out + 6, payload, length);
    crc = crc32(0L, out + 2, (uInt)(length + 4));
    out[6 + length] = (unsigned char)(crc >> 24);
    out[7 + length] = (unsigned char)(crc >> 16);
    out[8 + length] = (unsigned char)(crc >> 8);
    out[9 + length] = (unsigned char)crc;
    return length + 10;
}
