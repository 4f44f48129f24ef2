#include "link/PcapSession.h"

#include <QtEndian>

namespace qrx::pcap {

namespace {

constexpr quint32 kMagicMicroseconds = 0xA1B2C3D4;
constexpr quint32 kLinkTypeRaw = 101;
constexpr int kIpHeader = 20;
constexpr int kTcpHeader = 20;
constexpr int kMaxSegmentData = 0xFFFF - kIpHeader - kTcpHeader;

// TCP flags.
constexpr quint8 kSyn = 0x02, kPsh = 0x08, kAck = 0x10;

// Where the synthetic streams start (any value works; these read well).
constexpr quint32 kHostIsn = 1000;
constexpr quint32 kControllerIsn = 5000;

template <typename T>
void putLittle(QByteArray &out, T value)
{
    char bytes[sizeof(T)];
    qToLittleEndian(value, bytes);
    out.append(bytes, sizeof(T));
}

// The one's-complement sum (RFC 1071) of 16-bit big-endian words, added to
// sum; only the last part summed may have an odd size.
quint32 addWords(quint32 sum, const char *data, int size)
{
    const auto *p = reinterpret_cast<const uchar *>(data);
    for (int i = 0; i + 1 < size; i += 2)
        sum += (quint32(p[i]) << 8) | p[i + 1];
    if (size % 2)
        sum += quint32(p[size - 1]) << 8;
    return sum;
}

quint16 fold(quint32 sum)
{
    while (sum >> 16)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return quint16(~sum);
}

Writer::StreamKey streamKey(Endpoint host, Endpoint controller)
{
    return {(quint64(host.ipv4) << 16) | host.port, (quint64(controller.ipv4) << 16) | controller.port};
}

} // namespace

QByteArray Writer::fileHeader()
{
    QByteArray out;
    putLittle<quint32>(out, kMagicMicroseconds);
    putLittle<quint16>(out, 2); // version 2.4
    putLittle<quint16>(out, 4);
    putLittle<qint32>(out, 0);  // times are UTC
    putLittle<quint32>(out, 0); // accuracy
    putLittle<quint32>(out, 0xFFFF); // snapshot length: a whole packet
    putLittle<quint32>(out, kLinkTypeRaw);
    return out;
}

QByteArray Writer::frame(qint64 timeUs, Sender sender, Endpoint host, Endpoint controller, const QByteArray &wire)
{
    QByteArray out;
    const StreamKey key = streamKey(host, controller);
    auto it = m_streams.find(key);
    if (it == m_streams.end()) {
        it = m_streams.insert(key, Stream{kHostIsn, kControllerIsn});
        out += segment(timeUs, Sender::Host, host, controller, *it, kSyn, {});
        out += segment(timeUs, Sender::Controller, host, controller, *it, kSyn | kAck, {});
        out += segment(timeUs, Sender::Host, host, controller, *it, kAck, {});
    }
    for (int at = 0; at < wire.size(); at += kMaxSegmentData)
        out += segment(timeUs, sender, host, controller, *it, kPsh | kAck, wire.mid(at, kMaxSegmentData));
    return out;
}

QByteArray Writer::segment(qint64 timeUs, Sender sender, Endpoint host, Endpoint controller, Stream &stream,
                           quint8 flags, const QByteArray &data)
{
    const bool fromHost = sender == Sender::Host;
    const Endpoint source = fromHost ? host : controller;
    const Endpoint target = fromHost ? controller : host;
    quint32 &seq = fromHost ? stream.hostSeq : stream.controllerSeq;
    const quint32 ack = (flags & kAck) ? (fromHost ? stream.controllerSeq : stream.hostSeq) : 0;
    const quint16 length = quint16(kIpHeader + kTcpHeader + data.size());

    // The packet record's header, then the IPv4 and TCP headers in place.
    uchar head[16 + kIpHeader + kTcpHeader] = {};
    qToLittleEndian(quint32(timeUs / 1000000), head);
    qToLittleEndian(quint32(timeUs % 1000000), head + 4);
    qToLittleEndian(quint32(length), head + 8);
    qToLittleEndian(quint32(length), head + 12);
    uchar *ip = head + 16;
    ip[0] = 0x45;
    qToBigEndian(length, ip + 2);
    qToBigEndian(m_ipId++, ip + 4);
    qToBigEndian(quint16(0x4000), ip + 6); // don't fragment
    ip[8] = 64;                             // time to live
    ip[9] = 6;                              // TCP
    qToBigEndian(source.ipv4, ip + 12);
    qToBigEndian(target.ipv4, ip + 16);
    qToBigEndian(fold(addWords(0, reinterpret_cast<const char *>(ip), kIpHeader)), ip + 10);
    uchar *tcp = ip + kIpHeader;
    qToBigEndian(source.port, tcp);
    qToBigEndian(target.port, tcp + 2);
    qToBigEndian(seq, tcp + 4);
    qToBigEndian(ack, tcp + 8);
    tcp[12] = 5 << 4; // a header of five words
    tcp[13] = flags;
    qToBigEndian(quint16(0xFFFF), tcp + 14); // window
    // The TCP checksum covers a pseudo header: both addresses, the protocol
    // and the TCP length.
    quint32 sum = addWords(0, reinterpret_cast<const char *>(ip + 12), 8) + 6 + quint32(kTcpHeader + data.size());
    sum = addWords(sum, reinterpret_cast<const char *>(tcp), kTcpHeader);
    qToBigEndian(fold(addWords(sum, data.constData(), data.size())), tcp + 16);

    // SYN counts as one byte of the sequence.
    seq += quint32(data.size()) + ((flags & kSyn) ? 1 : 0);

    QByteArray out;
    out.reserve(int(sizeof head) + data.size());
    out.append(reinterpret_cast<const char *>(head), int(sizeof head));
    out.append(data);
    return out;
}

} // namespace qrx::pcap
