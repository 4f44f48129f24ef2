// The frame codec on byte arrays: layout, CRC, cutting a stream into frames.

#include "link/FrameCodec.h"
#include "support/LogCapture.h"

#include <QtTest>

#include <functional>

using qrx::Frame;
using qrx::FrameDecoder;

namespace {

QByteArray frameOf(quint16 command, const QByteArray &payload)
{
    return qrx::encodeFrame(command, payload);
}

QString headError() { return QStringLiteral("onTcpSocketReadyRead: head error"); }
QString crcError() { return QStringLiteral("onTcpSocketReadyRead: crc32 error"); }

} // namespace

class TestFrameCodec : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void checkValue();
    void encode_data();
    void encode();
    void payloadTooLong();
    void decodeSplits_data();
    void decodeSplits();
    void lengthWaitRule();
    void garbageBeforeFrame();
    void corruptedPayload();
    void bufferNeverHoldsMoreThanOneFrameAndOneRead();
    void feedFromInsideSink_data();
    void feedFromInsideSink();
};

void TestFrameCodec::checkValue()
{
    QCOMPARE(qrx::frameCrc("123456789", 9), quint32(0xCBF43926));
}

void TestFrameCodec::encode_data()
{
    QTest::addColumn<quint16>("command");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("frame");
    // Expected CRCs from Python's binascii.crc32 over length+code+payload.
    QTest::newRow("empty 0x2102") << quint16(0x2102) << QByteArray()
                                  << QByteArray::fromHex("4e66" "0000" "2102" "43d5abd3");
    QTest::newRow("one raw byte 0x2701") << quint16(0x2701) << QByteArray::fromHex("05")
                                         << QByteArray::fromHex("4e66" "0001" "2701" "05" "2aed05d3");
    QTest::newRow("heartbeat") << quint16(0x7266) << QByteArray("{\"time\":1}\n")
                               << QByteArray::fromHex("4e66" "000b" "7266") + QByteArray("{\"time\":1}\n")
            + QByteArray::fromHex("b84ea151");
}

void TestFrameCodec::encode()
{
    QFETCH(quint16, command);
    QFETCH(QByteArray, payload);
    QFETCH(QByteArray, frame);
    QCOMPARE(frameOf(command, payload).toHex(), frame.toHex());
    FrameDecoder decoder;
    const QVector<Frame> frames = decoder.feed(frame);
    QCOMPARE(frames.size(), 1);
    QCOMPARE(frames[0].command, command);
    QCOMPARE(frames[0].payload, payload);
}

void TestFrameCodec::payloadTooLong()
{
    LogCapture log;
    QCOMPARE(frameOf(0x2001, QByteArray(65535, 'x')).size(), 65535 + 10);
    QVERIFY(frameOf(0x2001, QByteArray(65536, 'x')).isEmpty());
    QVERIFY(log.contains(QStringLiteral("payload too long")));
}

void TestFrameCodec::decodeSplits_data()
{
    QTest::addColumn<int>("chunk");
    QTest::newRow("all at once") << 0;
    QTest::newRow("byte by byte") << 1;
    QTest::newRow("7 bytes") << 7;
    QTest::newRow("frame-sized reads") << 31;
}

void TestFrameCodec::decodeSplits()
{
    QFETCH(int, chunk);
    const QByteArray a = frameOf(0x2003, "{\"robot\":1,\"status\":1}\n");
    const QByteArray b = frameOf(0x2103, "{\"mode\":2}\n");
    const QByteArray c = frameOf(0x3201, QByteArray());
    const QByteArray stream = a + b + c;

    FrameDecoder decoder;
    QVector<Frame> frames;
    QVector<int> completedAt;
    const int step = chunk ? chunk : stream.size();
    for (int i = 0; i < stream.size(); i += step) {
        const QVector<Frame> got = decoder.feed(stream.mid(i, step));
        for (const Frame &f : got) {
            frames.append(f);
            completedAt.append(qMin(i + step, stream.size()));
        }
    }
    QCOMPARE(frames.size(), 3);
    QCOMPARE(frames[0].command, quint16(0x2003));
    QCOMPARE(frames[1].payload, QByteArray("{\"mode\":2}\n"));
    QCOMPARE(frames[2].command, quint16(0x3201));
    QCOMPARE(decoder.buffered(), 0);
    if (chunk == 1) {
        // Each frame is routed exactly when its last CRC byte arrives.
        QCOMPARE(completedAt, (QVector<int>{a.size(), a.size() + b.size(), stream.size()}));
    }
}

void TestFrameCodec::lengthWaitRule()
{
    // Exactly 10 bytes holding an empty frame: decoded (9 >= 10 is false).
    FrameDecoder decoder;
    QCOMPARE(decoder.feed(frameOf(0x2102, QByteArray())).size(), 1);

    // 10 bytes whose length field says 1: wait, nothing removed, no log line.
    LogCapture log;
    QByteArray partial = frameOf(0x2701, "x");
    QCOMPARE(decoder.feed(partial.left(10)).size(), 0);
    QCOMPARE(decoder.buffered(), 10);
    QVERIFY(log.lines().isEmpty());
    const QVector<Frame> rest = decoder.feed(partial.mid(10));
    QCOMPARE(rest.size(), 1);
    QCOMPARE(rest[0].payload, QByteArray("x"));

    // Nine bytes or fewer: never looked at, even if they are garbage.
    QCOMPARE(decoder.feed("garbage!!").size(), 0);
    QCOMPARE(decoder.buffered(), 9);
    QVERIFY(log.lines().isEmpty());
}

void TestFrameCodec::garbageBeforeFrame()
{
    LogCapture log;
    FrameDecoder decoder;
    const QByteArray garbage("\x01\x02NxN\x4e\x00zzzz", 11);
    const QVector<Frame> frames = decoder.feed(garbage + frameOf(0x2203, "{\"coord\":1}\n"));
    QCOMPARE(frames.size(), 1);
    QCOMPARE(frames[0].command, quint16(0x2203));
    QCOMPARE(log.lines(), QStringList(QVector<QString>(garbage.size(), headError()).toList()));
}

void TestFrameCodec::corruptedPayload()
{
    QByteArray bad = frameOf(0x2603, "{\"speed\":50}\n");
    const QByteArray crcBytes = bad.right(4);
    bad[8] = 'X'; // inside the payload
    const QByteArray good = frameOf(0x2103, "{\"mode\":0}\n");

    LogCapture log;
    FrameDecoder decoder;
    const QVector<Frame> frames = decoder.feed(bad + good);
    QCOMPARE(frames.size(), 1);
    QCOMPARE(frames[0].command, quint16(0x2103));

    // The received CRC in %x, the CRC line, then one head error per
    // remaining byte of the bad frame (none of them starts "Nf").
    QStringList expected;
    expected << QString::number(quint32(crcBytes.toHex().toUInt(nullptr, 16)), 16) << crcError();
    for (int i = 1; i < bad.size(); ++i)
        expected << headError();
    QCOMPARE(log.lines(), expected);
}

void TestFrameCodec::bufferNeverHoldsMoreThanOneFrameAndOneRead()
{
    // A length field that claims the maximum keeps the decoder waiting; the
    // buffer holds that one claim and nothing is lost or duplicated.
    LogCapture log;
    FrameDecoder decoder;
    QByteArray claim = QByteArray::fromHex("4e66ffff2003");
    QCOMPARE(decoder.feed(claim).size(), 0);
    const QByteArray read(4096, 'a');
    for (int i = 0; i < 20; ++i)
        decoder.feed(read);
    QVERIFY(decoder.buffered() <= 0xFFFF + 10 + read.size());
}

// A sink that spins an event loop can bring more bytes in while a frame is
// being handed out. Every frame is still handed out once, in stream order.
void TestFrameCodec::feedFromInsideSink_data()
{
    QTest::addColumn<QByteArray>("inner");
    QTest::addColumn<QVector<quint16>>("expected");
    QTest::addColumn<int>("left");
    QTest::newRow("one more frame") << frameOf(0x2103, "{\"mode\":2}\n")
                                    << QVector<quint16>{0x2003, 0x2B03, 0x2103} << 0;
    QTest::newRow("two more frames, large")
        << frameOf(0x2103, QByteArray(5000, 'm')) + frameOf(0x3201, QByteArray())
        << QVector<quint16>{0x2003, 0x2B03, 0x2103, 0x3201} << 0;
    QTest::newRow("half a frame") << frameOf(0x2103, "{\"mode\":2}\n").left(12)
                                  << QVector<quint16>{0x2003, 0x2B03} << 12;
}

void TestFrameCodec::feedFromInsideSink()
{
    QFETCH(QByteArray, inner);
    QFETCH(QVector<quint16>, expected);
    QFETCH(int, left);
    FrameDecoder decoder;
    QVector<quint16> seen;
    bool fedInner = false;
    std::function<void(quint16, QByteArray)> sink = [&](quint16 command, QByteArray) {
        seen.append(command);
        QVERIFY(seen.size() <= expected.size() + 1); // a sink re-run without end is a failure, not a hang
        if (!fedInner) {
            fedInner = true;
            decoder.feed(inner, sink);
        }
    };
    decoder.feed(frameOf(0x2003, "{\"robot\":1}\n") + frameOf(0x2B03, "{\"e\":1}\n"), sink);
    QCOMPARE(seen, expected);
    QCOMPARE(decoder.buffered(), left);
}

QTEST_APPLESS_MAIN(TestFrameCodec)
#include "tst_framecodec.moc"
