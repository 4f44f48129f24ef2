#pragma once
// The frame format of the controller link (port 6001 and the file-transfer
// port 5000):
//
//   offset 0   2 bytes  head "N" "f" (0x4E 0x66)
//   offset 2   2 bytes  payload length L, big-endian
//   offset 4   2 bytes  command code, big-endian
//   offset 6   L bytes  payload (compact JSON text and a line feed, as a rule)
//   offset 6+L 4 bytes  CRC-32 (zlib) of the L+4 bytes from offset 2, big-endian
//
// Encoding and decoding are pure: no socket is involved, so both are tested
// on byte arrays alone.
//
// A payload longer than 65535 bytes cannot be framed: the length field would
// wrap. encodeFrame refuses it (returns an empty array and logs
// "encodeFrame: payload too long"); senders report that as a failed send.

#include <QByteArray>
#include <QVector>
#include <QtGlobal>
#include <type_traits>

namespace qrx {

constexpr int kFrameOverhead = 10;       // head, length, code, CRC
constexpr int kMaxPayload = 0xFFFF;       // what the length field can claim

struct Frame {
    quint16 command = 0;
    QByteArray payload;
};

// CRC-32 of the bytes (zlib's crc32).
quint32 frameCrc(const char *data, int size);

// The frame for (command, payload), or an empty array when the payload is
// longer than kMaxPayload.
QByteArray encodeFrame(quint16 command, const QByteArray &payload);
// Appends the frame for (command, the size bytes at payload) to out, so that
// a sender can put many frames into one write; false, and nothing appended,
// when the payload is longer than kMaxPayload.
bool appendFrame(QByteArray &out, quint16 command, const char *payload, int size);

// Cuts a received byte stream into checked frames.
//
// The controller's decoder drops one byte per head error and per CRC error,
// logging "onTcpSocketReadyRead: head error", or the received CRC in "%x"
// followed by "onTcpSocketReadyRead: crc32 error". This decoder produces the
// same frames and the same log lines, but skips by advancing an offset and
// compacts the buffer once per call, so its cost is linear in the bytes fed.
class FrameDecoder
{
public:
    // Appends the bytes and returns every whole, checked frame in order.
    // An incomplete frame stays buffered for the next call.
    QVector<Frame> feed(const QByteArray &bytes);

    // Same, calling sink(command, payload) per frame instead of collecting.
    template <typename Sink>
    void feed(const QByteArray &bytes, Sink &&sink);

    int buffered() const { return m_buffer.size(); }
    // The file connection skips a wrong head without the log line.
    void setLogHeadErrors(bool on) { m_logHeadErrors = on; }
    void clear()
    {
        m_buffer.clear();
        m_cleared = true;
    }

private:
    // Scans m_buffer from its front, hands each frame to deliver(ctx, ...) and
    // removes what was consumed once at the end.
    using EmitFn = void (*)(void *ctx, quint16 command, const char *payload, int size);
    void scan(EmitFn deliver, void *ctx);

    QByteArray m_buffer;
    bool m_scanning = false; // a feed is handing out frames
    bool m_cleared = false;  // clear() ran while a frame was handed out
    bool m_logHeadErrors = true;
};

template <typename Sink>
void FrameDecoder::feed(const QByteArray &bytes, Sink &&sink)
{
    using S = std::remove_reference_t<Sink>;
    m_buffer.append(bytes);
    scan([](void *ctx, quint16 command, const char *payload, int size) {
             (*static_cast<S *>(ctx))(command, QByteArray(payload, size));
         },
         &sink);
}

} // namespace qrx
