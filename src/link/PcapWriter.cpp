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
void putBig(QByteArray &out, T value)
{
    char bytes[sizeof(T)];
    qToBigEndian(value, bytes);
    out.append(bytes, sizeof(T));
}

template <typename T>
void putLittle(QByteArray &out, T value)
{
    char bytes[sizeof(T)];
    qToLittleEndian(value, bytes);
    out.append(bytes, sizeof(T));
}

// The Internet checksum (RFC 1071) over the concatenation of the parts.
quint16 checksum(std::initializer_list<QByteArray> parts)
{
    quint32 sum = 0;
    bool odd = false;
    quint8 pending = 0;
    for (const QByteArray &part : parts) {
        for (const char c : part) {
            const quint8 byte = quint8(c);
            if (odd)
                sum += (quint32(pending) << 8) | byte;
            else
                pending = byte;
            odd = !odd;
        }
    }
    if (odd)
        sum += quint32(pending) << 8;
    while (sum >> 16)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return quint16(~sum);
}

QByteArray streamKey(Endpoint host, Endpoint controller)
{
    QByteArray key;
    putBig(key, host.ipv4);
    putBig(key, host.port);
    putBig(key, controller.ipv4);
    putBig(key, controller.port);
    return key;
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
    const QByteArray key = streamKey(host, controller);
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

    QByteArray tcp;
    putBig(tcp, source.port);
    putBig(tcp, target.port);
    putBig(tcp, seq);
    putBig(tcp, ack);
    putBig<quint8>(tcp, 5 << 4); // header of five words
    putBig(tcp, flags);
    putBig<quint16>(tcp, 0xFFFF); // window
    putBig<quint16>(tcp, 0);      // checksum, filled in below
    putBig<quint16>(tcp, 0);      // urgent pointer
    QByteArray pseudo;
    putBig(pseudo, source.ipv4);
    putBig(pseudo, target.ipv4);
    putBig<quint16>(pseudo, 6);
    putBig<quint16>(pseudo, quint16(kTcpHeader + data.size()));
    const quint16 tcpSum = checksum({pseudo, tcp, data});
    tcp[16] = char(tcpSum >> 8);
    tcp[17] = char(tcpSum);

    QByteArray ip;
    putBig<quint8>(ip, 0x45);
    putBig<quint8>(ip, 0);
    putBig<quint16>(ip, quint16(kIpHeader + kTcpHeader + data.size()));
    putBig<quint16>(ip, m_ipId++);
    putBig<quint16>(ip, 0x4000); // don't fragment
    putBig<quint8>(ip, 64);      // time to live
    putBig<quint8>(ip, 6);       // TCP
    putBig<quint16>(ip, 0);      // checksum, filled in below
    putBig(ip, source.ipv4);
    putBig(ip, target.ipv4);
    const quint16 ipSum = checksum({ip});
    ip[10] = char(ipSum >> 8);
    ip[11] = char(ipSum);

    // SYN counts as one byte of the sequence.
    seq += quint32(data.size()) + ((flags & kSyn) ? 1 : 0);

    const quint32 length = quint32(ip.size() + tcp.size() + data.size());
    QByteArray out;
    putLittle<quint32>(out, quint32(timeUs / 1000000));
    putLittle<quint32>(out, quint32(timeUs % 1000000));
    putLittle(out, length);
    putLittle(out, length);
    return out + ip + tcp + data;
}

} // namespace qrx::pcap
