#include "link/FrameCodec.h"

#include "common/Logging.h"

#include <QScopeGuard>

#include <zlib.h>

#include <cstring>

namespace qrx {

namespace {

constexpr char kHead1 = 0x4E;
constexpr char kHead2 = 0x66;

inline quint32 readBig16(const char *p)
{
    return (quint32(quint8(p[0])) << 8) | quint8(p[1]);
}

inline quint32 readBig32(const char *p)
{
    return (quint32(quint8(p[0])) << 24) | (quint32(quint8(p[1])) << 16)
        | (quint32(quint8(p[2])) << 8) | quint8(p[3]);
}

} // namespace

quint32 frameCrc(const char *data, int size)
{
    return static_cast<quint32>(
        crc32(crc32(0L, Z_NULL, 0), reinterpret_cast<const Bytef *>(data), static_cast<uInt>(size)));
}

QByteArray encodeFrame(quint16 command, const QByteArray &payload)
{
    QByteArray frame;
    frame.reserve(qMin(payload.size(), kMaxPayload) + kFrameOverhead);
    if (!appendFrame(frame, command, payload.constData(), payload.size()))
        return QByteArray();
    return frame;
}

bool appendFrame(QByteArray &out, quint16 command, const char *payload, int size)
{
    if (size > kMaxPayload) {
        qCWarning(lcLink, "encodeFrame: payload too long (%d bytes), frame not sent", size);
        return false;
    }
    const int start = out.size();
    out.resize(start + size + kFrameOverhead);
    char *p = out.data() + start;
    p[0] = kHead1;
    p[1] = kHead2;
    p[2] = char((size >> 8) & 0xFF);
    p[3] = char(size & 0xFF);
    p[4] = char((command >> 8) & 0xFF);
    p[5] = char(command & 0xFF);
    if (size > 0)
        std::memcpy(p + 6, payload, size_t(size));
    const quint32 crc = frameCrc(p + 2, size + 4);
    p[6 + size] = char((crc >> 24) & 0xFF);
    p[7 + size] = char((crc >> 16) & 0xFF);
    p[8 + size] = char((crc >> 8) & 0xFF);
    p[9 + size] = char(crc & 0xFF);
    return true;
}

QVector<Frame> FrameDecoder::feed(const QByteArray &bytes)
{
    QVector<Frame> frames;
    feed(bytes, [&frames](quint16 command, QByteArray payload) {
        frames.append(Frame{command, std::move(payload)});
    });
    return frames;
}

void FrameDecoder::scan(EmitFn deliver, void *ctx)
{
    // Bytes fed from inside a sink only join the buffer; the scan that is
    // already running reaches them and hands their frames to its own sink.
    if (m_scanning)
        return;
    m_scanning = true;
    int pos = 0;
    const auto consume = qScopeGuard([this, &pos] {
        m_scanning = false;
        if (pos >= m_buffer.size())
            m_buffer.clear();
        else if (pos > 0)
            m_buffer.remove(0, pos);
    });
    // The buffer may grow (or be cleared) while a frame is handed out, so it
    // is looked at afresh on every turn.
    while (m_buffer.size() - pos > 9) {
        const char *p = m_buffer.constData() + pos;
        if (p[0] != kHead1 || p[1] != kHead2) {
            ++pos;
            if (m_logHeadErrors)
                qCDebug(lcLink, "onTcpSocketReadyRead: head error");
            continue;
        }
        const int length = int(readBig16(p + 2));
        const quint16 command = quint16(readBig16(p + 4));
        if (length + 9 >= m_buffer.size() - pos)
            break; // wait for the rest of the frame
        const quint32 received = readBig32(p + 6 + length);
        if (frameCrc(p + 2, length + 4) != received) {
            ++pos;
            qCDebug(lcLink, "%x", received);
            qCDebug(lcLink, "onTcpSocketReadyRead: crc32 error");
            continue;
        }
        pos += length + kFrameOverhead;
        m_cleared = false;
        deliver(ctx, command, p + 6, length); // copies the payload before the sink runs
        if (m_cleared)
            pos = 0;
    }
}

} // namespace qrx
