// Recorded sessions as pcap files: what the writer puts in a file the reader
// gives back frame for frame, and a truncated or damaged file gives a clear
// error with the frames before the fault, never a crash.

#include "link/FrameCodec.h"
#include "link/PcapSession.h"

#include <QtTest>

using qrx::pcap::Endpoint;
using qrx::pcap::RecordedFrame;
using qrx::pcap::Sender;

Q_DECLARE_METATYPE(QVector<RecordedFrame>)

namespace {

constexpr quint32 kLoopback = 0x7F000001;
constexpr quint32 kController = 0x7F1A0002; // 127.26.0.2
const Endpoint kHostMain{kLoopback, 41000};
const Endpoint kHostFile{kLoopback, 41001};
const Endpoint kMain{kController, 6001};
const Endpoint kFile{kController, 5000};

RecordedFrame frame(qint64 timeUs, Sender sender, quint16 code, const QByteArray &payload, Endpoint host = kHostMain,
                    Endpoint controller = kMain)
{
    RecordedFrame f;
    f.timeUs = timeUs;
    f.sender = sender;
    f.host = host;
    f.controller = controller;
    f.code = code;
    f.payload = payload;
    return f;
}

QByteArray write(const QVector<RecordedFrame> &frames)
{
    qrx::pcap::Writer writer;
    QByteArray file = qrx::pcap::Writer::fileHeader();
    for (const RecordedFrame &f : frames)
        file += writer.frame(f.timeUs, f.sender, f.host, f.controller, qrx::encodeFrame(f.code, f.payload));
    return file;
}

// A session of six frames: three packets of handshake, then one per frame.
QVector<RecordedFrame> session()
{
    return {frame(1700000000000001, Sender::Host, 0x2F07, "{\"coord\":0,\"robot\":1}\n"),
            frame(1700000000000450, Sender::Controller, 0x2F08, "{\"coord\":0,\"pos\":[1.5,2],\"robot\":1}\n"),
            frame(1700000000100000, Sender::Host, 0x7266, "{\"time\":1700000000}\n"),
            frame(1700000000100020, Sender::Controller, 0x7267, ""),
            frame(1700000001000000, Sender::Controller, 0x2B03, "{\"data\":\"\xe9\x94\x99\",\"type\":4353}\n"),
            frame(1700000001500000, Sender::Host, 0x2701, QByteArray(1, '\x05'))};
}

// Where packet n (1-based) of a file starts.
int packetOffset(const QByteArray &file, int n)
{
    int at = 24;
    for (int i = 1; i < n; ++i)
        at += 16 + qFromLittleEndian<quint32>(file.constData() + at + 8);
    return at;
}

} // namespace

class TestPcapSession : public QObject
{
    Q_OBJECT

private slots:
    void readsBackWhatWasWritten_data();
    void readsBackWhatWasWritten();
    void damagedFile_data();
    void damagedFile();
    void tcpHeadersFollowTheStream();
};

void TestPcapSession::readsBackWhatWasWritten_data()
{
    QTest::addColumn<QVector<RecordedFrame>>("frames");
    QTest::newRow("empty session") << QVector<RecordedFrame>{};
    QTest::newRow("both directions") << session();
    // A payload of 65535 bytes does not fit one IPv4 packet: two segments.
    QTest::newRow("largest frame") << QVector<RecordedFrame>{
        frame(1700000000000000, Sender::Controller, 0x5522, QByteArray(0xFFFF, 'x'), kHostFile, kFile),
        frame(1700000000000001, Sender::Host, 0x5523, "{}\n", kHostFile, kFile)};
    QVector<RecordedFrame> both = session().mid(0, 2);
    both << frame(1700000000050000, Sender::Host, 0x5501, "{\"name\":\"job/R1/A.JBR\",\"size\":3}\n", kHostFile, kFile)
         << frame(1700000000060000, Sender::Controller, 0x5502, "{\"answer\":\"yes\"}\n", kHostFile, kFile);
    both += session().mid(2);
    // A reconnect: the same controller port from a new host port.
    both.append(frame(1700000009000000, Sender::Host, 0x2102, "{}\n", Endpoint{kLoopback, 41002}));
    QTest::newRow("link, file connection and a reconnect") << both;
}

void TestPcapSession::readsBackWhatWasWritten()
{
    QFETCH(QVector<RecordedFrame>, frames);
    const qrx::pcap::Recording read = qrx::pcap::read(write(frames));
    QCOMPARE(read.error, QString());
    QCOMPARE(read.frames.size(), frames.size());
    for (int i = 0; i < frames.size(); ++i) {
        const RecordedFrame &got = read.frames[i];
        const RecordedFrame &want = frames[i];
        QCOMPARE(got.timeUs, want.timeUs);
        QCOMPARE(got.sender, want.sender);
        QCOMPARE(got.host.ipv4, want.host.ipv4);
        QCOMPARE(got.host.port, want.host.port);
        QCOMPARE(got.controller.ipv4, want.controller.ipv4);
        QCOMPARE(got.controller.port, want.controller.port);
        QCOMPARE(got.code, want.code);
        QCOMPARE(got.payload, want.payload);
        QCOMPARE(got.onFileConnection(), want.controller.port == 5000);
    }
}

void TestPcapSession::damagedFile_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("error");  // a pattern
    QTest::addColumn<int>("framesKept"); // the first frames of session()

    const QByteArray good = write(session());
    // Packets 1-3 are the handshake; packet 3 + k carries frame k (1-based).
    QTest::newRow("empty file") << QByteArray() << "not a pcap file: 0 bytes" << 0;
    QTest::newRow("not pcap") << QByteArray("GIF89a").repeated(10) << "not a pcap file: magic number 0x" << 0;
    QByteArray linkType = good;
    linkType[20] = char(105);
    QTest::newRow("unknown link type") << linkType << "unsupported pcap link type 105" << 0;
    QTest::newRow("cut inside the last packet") << good.left(good.size() - 3)
                                                << "packet 9 is truncated: \\d+ of its \\d+ bytes" << 5;
    QTest::newRow("cut inside a record header") << good.left(packetOffset(good, 7) + 9)
                                                << "packet 7: the file ends inside its record header" << 3;
    QByteArray crc = good;
    crc[packetOffset(good, 5) + 16 + 40 + 8] = char(crc[packetOffset(good, 5) + 16 + 40 + 8] ^ 0x20); // frame 2's payload
    QTest::newRow("payload byte changed") << crc << "packet 5: CRC mismatch in frame 0x2f08 from the controller" << 1;
    QByteArray head = good;
    head[packetOffset(good, 6) + 16 + 40] = 'X';
    QTest::newRow("frame head changed") << head << "packet 6: no frame head \"Nf\" where a frame from the host" << 2;
    QByteArray gap = good.left(packetOffset(good, 7)) + good.mid(packetOffset(good, 8));
    QTest::newRow("a packet missing") << gap
                                      << "packet 7: 10 bytes from the controller are missing before it" << 3;
    QByteArray huge = good;
    qToLittleEndian<quint32>(0x7FFFFFFF, huge.data() + packetOffset(good, 4) + 8);
    QTest::newRow("record length absurd") << huge << "packet 4: its record claims 2147483647 bytes" << 0;
    QByteArray notIp = good;
    notIp[packetOffset(good, 4) + 16] = char(0x65);
    QTest::newRow("not IPv4") << notIp << "packet 4 is not an IPv4 packet" << 0;
    // The last frame cut inside its TCP payload, the record consistent.
    QByteArray partial = good.left(packetOffset(good, 9));
    const QByteArray last = qrx::encodeFrame(0x2701, QByteArray(1, '\x05'));
    QByteArray record = good.mid(packetOffset(good, 9), 16 + 40 + 6);
    qToLittleEndian<quint32>(40 + 6, record.data() + 8);
    qToLittleEndian<quint32>(40 + 6, record.data() + 12);
    qToBigEndian<quint16>(40 + 6, record.data() + 16 + 2);
    QVERIFY(last.size() > 6);
    QTest::newRow("ends inside a frame") << partial + record
                                         << "the recording ends inside a frame from the host \\(6 bytes of it\\)" << 5;
}

void TestPcapSession::damagedFile()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, error);
    QFETCH(int, framesKept);
    const qrx::pcap::Recording read = qrx::pcap::read(file);
    QVERIFY2(QRegularExpression(error).match(read.error).hasMatch(), qPrintable(read.error));
    const QVector<RecordedFrame> all = session();
    QCOMPARE(read.frames.size(), framesKept);
    for (int i = 0; i < framesKept; ++i) {
        QCOMPARE(read.frames[i].code, all[i].code);
        QCOMPARE(read.frames[i].payload, all[i].payload);
    }
}

// The segments carry what a capture on the wire would: a handshake, then
// sequence numbers that advance by the bytes sent, acknowledgements of the
// other side, and IPv4 and TCP checksums that add up.
void TestPcapSession::tcpHeadersFollowTheStream()
{
    const QByteArray file = write(session());
    QCOMPARE(qFromLittleEndian<quint32>(file.constData()), 0xA1B2C3D4u);
    QCOMPARE(qFromLittleEndian<quint32>(file.constData() + 20), 101u); // raw IP
    const auto sum = [](const QByteArray &bytes) {
        quint32 s = 0;
        for (int i = 0; i + 1 < bytes.size(); i += 2)
            s += (quint32(quint8(bytes[i])) << 8) | quint8(bytes[i + 1]);
        if (bytes.size() % 2)
            s += quint32(quint8(bytes[bytes.size() - 1])) << 8;
        while (s >> 16)
            s = (s & 0xFFFF) + (s >> 16);
        return s;
    };
    quint32 next[2] = {0, 0}; // host, controller
    const QVector<quint8> flags = {0x02, 0x12, 0x10, 0x18, 0x18, 0x18, 0x18, 0x18, 0x18};
    for (int n = 1; n <= flags.size(); ++n) {
        const int at = packetOffset(file, n);
        const quint32 length = qFromLittleEndian<quint32>(file.constData() + at + 8);
        const QByteArray ip = file.mid(at + 16, int(length));
        QCOMPARE(sum(ip.left(20)), 0xFFFFu);
        const QByteArray tcp = ip.mid(20);
        QByteArray pseudo = ip.mid(12, 8) + QByteArray("\0\x06", 2);
        pseudo += char(tcp.size() >> 8);
        pseudo += char(tcp.size() & 0xFF);
        QCOMPARE(sum(pseudo + tcp), 0xFFFFu);
        QCOMPARE(quint8(tcp[13]), flags[n - 1]);
        const bool fromHost = qFromBigEndian<quint16>(tcp.constData() + 2) == 6001;
        const quint32 seq = qFromBigEndian<quint32>(tcp.constData() + 4);
        const quint32 ack = qFromBigEndian<quint32>(tcp.constData() + 8);
        if (n > 2) {
            QCOMPARE(seq, next[fromHost ? 0 : 1]);
            QCOMPARE(ack, next[fromHost ? 1 : 0]);
        }
        next[fromHost ? 0 : 1] = seq + quint32(tcp.size() - 20) + ((tcp[13] & 0x02) ? 1 : 0);
    }
}

QTEST_GUILESS_MAIN(TestPcapSession)
#include "tst_pcapsession.moc"
