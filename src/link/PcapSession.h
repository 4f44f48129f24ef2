#pragma once
// A recorded session as a pcap file: every frame of the controller link
// (and of the file connection) as one synthetic IPv4/TCP segment between the
// host and the controller, so that Wireshark and tshark show it with the qrx
// dissector and reassemble it like a capture taken on the wire.
//
// The file is classic pcap (microsecond times, link type 101: raw IP). Each
// connection starts with a three-way handshake; the host is the side that
// sends the SYN. Sequence and acknowledgement numbers follow the stream, so
// a frame is one segment and the reader can check that no byte is missing.
//
// Both ends are pure: they turn bytes into bytes and frames, no file and no
// socket involved; the recorder writes the bytes, tests and qrx-sim read them.

#include <QByteArray>
#include <QHash>
#include <QPair>
#include <QString>
#include <QVector>
#include <QtGlobal>

namespace qrx::pcap {

constexpr quint16 kFilePort = 5000; // the controller's file connection

enum class Sender : quint8 { Host, Controller };

struct Endpoint
{
    quint32 ipv4 = 0; // host byte order (127.0.0.1 is 0x7F000001)
    quint16 port = 0;
};

struct RecordedFrame
{
    qint64 timeUs = 0; // microseconds since the epoch
    Sender sender = Sender::Host;
    Endpoint host;
    Endpoint controller;
    quint16 code = 0;
    QByteArray payload;

    bool onFileConnection() const { return controller.port == kFilePort; }
};

// Writes segments; remembers each connection's sequence numbers.
class Writer
{
public:
    // The pcap file header (24 bytes), written once at the start of a file.
    static QByteArray fileHeader();
    // The packet records for one frame (the bytes as on the wire), preceded
    // by the handshake when this (host, controller) pair is new.
    QByteArray frame(qint64 timeUs, Sender sender, Endpoint host, Endpoint controller, const QByteArray &wire);

    // A connection: the host's and the controller's address and port.
    using StreamKey = QPair<quint64, quint64>;

private:
    struct Stream
    {
        quint32 hostSeq;
        quint32 controllerSeq;
    };
    QByteArray segment(qint64 timeUs, Sender sender, Endpoint host, Endpoint controller, Stream &stream,
                       quint8 flags, const QByteArray &data);

    QHash<StreamKey, Stream> m_streams;
    quint16 m_ipId = 0;
};

struct Recording
{
    QVector<RecordedFrame> frames; // every whole, checked frame up to the first fault
    QString error;                 // empty when the whole file was read
};

// Reads a pcap file of qrx frames (raw IP or Ethernet link type). A
// truncated record, a packet that is not IPv4/TCP, a gap in a TCP stream, a
// wrong frame head or a CRC mismatch stops the reading: the frames before it
// are kept and the error says what was wrong and where. A frame still
// incomplete at the end of the file is reported the same way.
Recording read(const QByteArray &file);

} // namespace qrx::pcap
