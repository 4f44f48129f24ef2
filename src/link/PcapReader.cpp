#include "link/FrameCodec.h"
#include "link/PcapSession.h"

#include <QtEndian>

#include <array>

namespace qrx::pcap {

namespace {

constexpr quint16 kMainPort = 6001;
constexpr int kMaxPacket = 256 * 1024; // larger records are damage, not packets

enum LinkType : quint32 { Ethernet = 1, RawIp = 101, LinuxCooked = 113, Ipv4 = 228 };

struct Fault
{
    QString text;
};

quint16 big16(const char *p) { return qFromBigEndian<quint16>(p); }
quint32 big32(const char *p) { return qFromBigEndian<quint32>(p); }

// One TCP connection: who is who, and each direction's unread bytes.
struct Stream
{
    Endpoint host;
    Endpoint controller;
    struct Side
    {
        bool started = false;
        quint32 nextSeq = 0;
        QByteArray bytes; // received, not yet a whole frame
    };
    std::array<Side, 2> sides; // indexed by Sender
};

QString senderName(Sender sender)
{
    return sender == Sender::Host ? QStringLiteral("host") : QStringLiteral("controller");
}

class Reader
{
public:
    explicit Reader(const QByteArray &file)
        : m_file(file)
    {
    }

    Recording run()
    {
        try {
            header();
            while (m_at < m_file.size())
                packet();
            for (const Stream &stream : qAsConst(m_streams)) {
                for (int s = 0; s < 2; ++s) {
                    if (!stream.sides[s].bytes.isEmpty())
                        throw Fault{QStringLiteral("the recording ends inside a frame from the %1 (%2 bytes of it)")
                                        .arg(senderName(Sender(s)))
                                        .arg(stream.sides[s].bytes.size())};
                }
            }
        } catch (const Fault &fault) {
            m_result.error = fault.text;
        }
        return m_result;
    }

private:
    quint32 u32(const char *p) const { return m_swapped ? qFromBigEndian<quint32>(p) : qFromLittleEndian<quint32>(p); }

    void header()
    {
        if (m_file.size() < 24)
            throw Fault{QStringLiteral("not a pcap file: %1 bytes, shorter than the 24-byte file header")
                            .arg(m_file.size())};
        const quint32 magic = qFromLittleEndian<quint32>(m_file.constData());
        switch (magic) {
        case 0xA1B2C3D4: break;
        case 0xA1B23C4D: m_nanoseconds = true; break;
        case 0xD4C3B2A1: m_swapped = true; break;
        case 0x4D3CB2A1: m_swapped = m_nanoseconds = true; break;
        default:
            throw Fault{QStringLiteral("not a pcap file: magic number 0x%1").arg(magic, 8, 16, QLatin1Char('0'))};
        }
        m_linkType = u32(m_file.constData() + 20);
        if (m_linkType != Ethernet && m_linkType != RawIp && m_linkType != LinuxCooked && m_linkType != Ipv4)
            throw Fault{QStringLiteral("unsupported pcap link type %1").arg(m_linkType)};
        m_at = 24;
    }

    void packet()
    {
        ++m_packet;
        if (m_file.size() - m_at < 16)
            throw Fault{QStringLiteral("packet %1: the file ends inside its record header").arg(m_packet)};
        const char *record = m_file.constData() + m_at;
        const qint64 seconds = u32(record);
        const qint64 fraction = u32(record + 4);
        const quint32 captured = u32(record + 8);
        const quint32 original = u32(record + 12);
        if (captured > kMaxPacket)
            throw Fault{QStringLiteral("packet %1: its record claims %2 bytes").arg(m_packet).arg(captured)};
        if (m_file.size() - m_at - 16 < qint64(captured))
            throw Fault{QStringLiteral("packet %1 is truncated: %2 of its %3 bytes are in the file")
                            .arg(m_packet)
                            .arg(m_file.size() - m_at - 16)
                            .arg(captured)};
        if (captured < original)
            throw Fault{QStringLiteral("packet %1 was captured short: %2 of %3 bytes").arg(m_packet).arg(captured).arg(original)};
        m_time = seconds * 1000000 + (m_nanoseconds ? fraction / 1000 : fraction);
        const char *data = record + 16;
        m_at += 16 + qint64(captured);
        linkLayer(data, int(captured));
    }

    void linkLayer(const char *data, int size)
    {
        int skip = 0;
        if (m_linkType == Ethernet || m_linkType == LinuxCooked) {
            skip = m_linkType == Ethernet ? 14 : 16;
            if (size < skip)
                throw Fault{QStringLiteral("packet %1: shorter than its link header").arg(m_packet)};
            if (big16(data + skip - 2) != 0x0800)
                return; // not IPv4: other traffic of a capture
        }
        ip(data + skip, size - skip);
    }

    void ip(const char *data, int size)
    {
        if (size < 20 || (quint8(data[0]) >> 4) != 4)
            throw Fault{QStringLiteral("packet %1 is not an IPv4 packet").arg(m_packet)};
        const int headerSize = (quint8(data[0]) & 0x0F) * 4;
        const int total = big16(data + 2);
        if (headerSize < 20 || total < headerSize || total > size)
            throw Fault{QStringLiteral("packet %1: damaged IPv4 header").arg(m_packet)};
        if (quint8(data[9]) != 6)
            return; // not TCP
        const Endpoint source{big32(data + 12), 0};
        const Endpoint target{big32(data + 16), 0};
        tcp(data + headerSize, total - headerSize, source, target);
    }

    void tcp(const char *data, int size, Endpoint source, Endpoint target)
    {
        if (size < 20)
            throw Fault{QStringLiteral("packet %1: damaged TCP header").arg(m_packet)};
        source.port = big16(data);
        target.port = big16(data + 2);
        const quint32 seq = big32(data + 4);
        const int headerSize = (quint8(data[12]) >> 4) * 4;
        const quint8 flags = quint8(data[13]);
        if (headerSize < 20 || headerSize > size)
            throw Fault{QStringLiteral("packet %1: damaged TCP header").arg(m_packet)};
        const bool syn = flags & 0x02;
        const bool ack = flags & 0x10;

        Stream &stream = streamOf(source, target, syn && !ack);
        const Sender sender = (source.ipv4 == stream.host.ipv4 && source.port == stream.host.port) ? Sender::Host
                                                                                                  : Sender::Controller;
        Stream::Side &side = stream.sides[int(sender)];
        if (syn) {
            side.started = true;
            side.nextSeq = seq + 1;
            return;
        }
        QByteArray bytes(data + headerSize, size - headerSize);
        if (bytes.isEmpty())
            return;
        if (!side.started) {
            side.started = true;
            side.nextSeq = seq;
        }
        const qint32 ahead = qint32(seq - side.nextSeq);
        if (ahead > 0)
            throw Fault{QStringLiteral("packet %1: %2 bytes from the %3 are missing before it")
                            .arg(m_packet)
                            .arg(ahead)
                            .arg(senderName(sender))};
        const qint64 behind = -qint64(ahead);
        if (behind >= bytes.size())
            return; // a retransmission of bytes already read
        bytes.remove(0, int(behind));
        side.nextSeq += quint32(bytes.size());
        side.bytes += bytes;
        frames(stream, sender, side.bytes);
    }

    Stream &streamOf(Endpoint source, Endpoint target, bool opening)
    {
        QByteArray key(12, Qt::Uninitialized);
        const bool sourceFirst = source.ipv4 < target.ipv4 || (source.ipv4 == target.ipv4 && source.port < target.port);
        const Endpoint a = sourceFirst ? source : target;
        const Endpoint b = sourceFirst ? target : source;
        qToBigEndian(a.ipv4, key.data());
        qToBigEndian(a.port, key.data() + 4);
        qToBigEndian(b.ipv4, key.data() + 6);
        qToBigEndian(b.port, key.data() + 10);
        auto it = m_streams.find(key);
        if (it == m_streams.end() || opening) {
            // The SYN's sender is the host; without one, the side on a
            // controller port (or else the lower port) is the controller.
            const auto isControllerPort = [](quint16 port) { return port == kMainPort || port == kFilePort; };
            bool sourceIsHost = opening || isControllerPort(target.port);
            if (!opening && !isControllerPort(target.port) && !isControllerPort(source.port))
                sourceIsHost = target.port < source.port;
            Stream stream;
            stream.host = sourceIsHost ? source : target;
            stream.controller = sourceIsHost ? target : source;
            it = m_streams.insert(key, stream);
        }
        return *it;
    }

    void frames(const Stream &stream, Sender sender, QByteArray &bytes)
    {
        int at = 0;
        while (bytes.size() - at >= kFrameOverhead) {
            const char *p = bytes.constData() + at;
            if (p[0] != 'N' || p[1] != 'f')
                throw Fault{QStringLiteral("packet %1: no frame head \"Nf\" where a frame from the %2 should start")
                                .arg(m_packet)
                                .arg(senderName(sender))};
            const int length = big16(p + 2);
            if (bytes.size() - at < length + kFrameOverhead)
                break;
            const quint16 code = big16(p + 4);
            const quint32 crc = big32(p + 6 + length);
            if (frameCrc(p + 2, length + 4) != crc)
                throw Fault{QStringLiteral("packet %1: CRC mismatch in frame 0x%2 from the %3")
                                .arg(m_packet)
                                .arg(code, 4, 16, QLatin1Char('0'))
                                .arg(senderName(sender))};
            RecordedFrame frame;
            frame.timeUs = m_time;
            frame.sender = sender;
            frame.host = stream.host;
            frame.controller = stream.controller;
            frame.code = code;
            frame.payload = QByteArray(p + 6, length);
            m_result.frames.append(std::move(frame));
            at += length + kFrameOverhead;
        }
        bytes.remove(0, at);
    }

    const QByteArray &m_file;
    qint64 m_at = 0;
    int m_packet = 0;
    qint64 m_time = 0;
    bool m_swapped = false;
    bool m_nanoseconds = false;
    quint32 m_linkType = 0;
    QHash<QByteArray, Stream> m_streams;
    Recording m_result;
};

} // namespace

Recording read(const QByteArray &file)
{
    return Reader(file).run();
}

} // namespace qrx::pcap
