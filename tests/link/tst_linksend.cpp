// Sending over the controller link against qrx-sim: nothing written while
// the link is down, the payload size limit, pre-framed bytes, senders on
// several threads, and hostile bytes from the controller.

#include "LinkFixture.h"
#include "link/FrameCodec.h"
#include "support/LogCapture.h"
#include "support/Loopback.h"

#include <QRegularExpression>
#include <QThread>
#include <QtTest>

#include <memory>
#include <random>
#include <vector>
#include <zlib.h>

using namespace linktest;

class tst_LinkSend : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void sendWhileDownWritesNothing_data();
    void sendWhileDownWritesNothing();
    void payloadSizes_data();
    void payloadSizes();
    void sendBytesWritesFrameAsIs();
    void concurrentSendersKeepFramesWhole_data();
    void concurrentSendersKeepFramesWhole();
    void hostileBytes_data();
    void hostileBytes();

private:
    QString m_address;
    std::unique_ptr<qrxsim::SimHandle> m_sim;
};

void tst_LinkSend::init()
{
    m_address = testsupport::loopbackAddress();
    m_sim = std::make_unique<qrxsim::SimHandle>(m_address, kPort);
    QVERIFY(m_sim->start());
}

void tst_LinkSend::cleanup()
{
    m_sim.reset();
}

void tst_LinkSend::sendWhileDownWritesNothing_data()
{
    QTest::addColumn<QString>("situation");
    QTest::newRow("not started") << QStringLiteral("not started");
    QTest::newRow("controller unreachable") << QStringLiteral("unreachable");
    QTest::newRow("stopped") << QStringLiteral("stopped");
}

void tst_LinkSend::sendWhileDownWritesNothing()
{
    QFETCH(QString, situation);
    Link link(m_address);
    if (situation == QLatin1String("unreachable")) {
        m_sim->setRefuseConnections(true);
        LogCapture log;
        link.module.start();
        QTRY_VERIFY(countLinesStartingWith(log, kReconnectLine) >= 2);
    } else if (situation == QLatin1String("stopped")) {
        link.module.start();
        QVERIFY(waitUp(link));
        QVERIFY(m_sim->waitForClient());
        link.module.stopConnect();
        QTRY_COMPARE(m_sim->clientCount(), 0);
    }
    QCOMPARE(link.module.sendData(kProbe, "{\"a\":1}\n"), false);
    QCOMPARE(link.module.sendBytes(qrx::encodeFrame(kProbe, "{\"b\":2}\n")), false);

    // Bring it up: what was refused never arrives, what follows does.
    if (situation == QLatin1String("not started"))
        link.module.start();
    else if (situation == QLatin1String("unreachable"))
        m_sim->setRefuseConnections(false);
    else
        link.module.startConnect();
    QTRY_VERIFY_WITH_TIMEOUT(link.module.sendData(kMarker, "{}\n"), 10000);
    QVERIFY(m_sim->waitForFrame(kMarker, 5000));
    QVERIFY(m_sim->received(kProbe).isEmpty());
}

void tst_LinkSend::payloadSizes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("sent");
    QTest::newRow("empty") << 0 << true;
    QTest::newRow("one byte") << 1 << true;
    QTest::newRow("largest") << 65535 << true;
    QTest::newRow("one too many") << 65536 << false;
    QTest::newRow("far too many") << 200000 << false;
}

void tst_LinkSend::payloadSizes()
{
    QFETCH(int, size);
    QFETCH(bool, sent);
    Link link(m_address);
    link.module.start();
    QVERIFY(waitUp(link));
    QByteArray payload(size, 'p');
    for (int i = 0; i < size; i += 97)
        payload[i] = char('a' + i % 26);

    QCOMPARE(link.module.sendData(kProbe, payload), sent);
    QVERIFY(link.module.sendData(kMarker, "{}\n"));
    QVERIFY(m_sim->waitForFrame(kMarker, 5000));
    const auto probes = m_sim->received(kProbe);
    if (!sent) {
        QVERIFY(probes.isEmpty());
        return;
    }
    QCOMPARE(probes.size(), 1);
    QCOMPARE(probes.first().payload, payload);
}

void tst_LinkSend::sendBytesWritesFrameAsIs()
{
    Link link(m_address);
    link.module.start();
    QVERIFY(waitUp(link));
    // Framed by hand: head, length 3, code 0x7E01, "x\0y", CRC-32 of the
    // seven bytes from the length field on.
    QByteArray frame = QByteArray::fromHex("4e6600037e01780079");
    const uLong crc = crc32(crc32(0L, Z_NULL, 0), reinterpret_cast<const Bytef *>(frame.constData() + 2), 7);
    for (int shift = 24; shift >= 0; shift -= 8)
        frame.append(char((crc >> shift) & 0xFF));
    QVERIFY(link.module.sendBytes(frame));
    QVERIFY(m_sim->waitForFrame(kProbe, 5000));
    QCOMPARE(m_sim->lastFrame(kProbe).payload, QByteArray("x\0y", 3));
}

void tst_LinkSend::concurrentSendersKeepFramesWhole_data()
{
    QTest::addColumn<int>("frames");
    QTest::addColumn<int>("padding");
    // Small frames leave at once; large ones fill the socket, so that
    // frames wait behind the rest of a frame the kernel took in part.
    QTest::newRow("small") << 150 << 0;
    QTest::newRow("filling the socket") << 40 << 60000;
}

void tst_LinkSend::concurrentSendersKeepFramesWhole()
{
    QFETCH(int, frames);
    QFETCH(int, padding);
    Link link(m_address);
    link.module.start();
    QVERIFY(waitUp(link));
    constexpr int kThreads = 4;
    const QString pad = padding ? QStringLiteral("\"pad\":\"%1\",").arg(QString(padding, QLatin1Char('x'))) : QString();
    std::vector<std::unique_ptr<QThread>> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back(QThread::create([&link, &pad, frames, t] {
            for (int n = 0; n < frames; ++n)
                link.module.sendData(kProbe, QStringLiteral("{\"n\":%1,%2\"t\":%3}\n").arg(n).arg(pad).arg(t).toUtf8());
        }));
        threads.back()->start();
    }
    for (auto &thread : threads)
        QVERIFY(thread->wait(20000));

    QTRY_COMPARE_WITH_TIMEOUT(m_sim->received(kProbe).size(), kThreads * frames, 10000);
    // Every frame whole and, per sender, in the order sent.
    QVector<int> next(kThreads, 0);
    const QRegularExpression shape(QStringLiteral("^\\{\"n\":(\\d+),(?:\"pad\":\"x+\",)?\"t\":(\\d)\\}\n$"));
    for (const auto &f : m_sim->received(kProbe)) {
        const auto match = shape.match(QString::fromUtf8(f.payload));
        QVERIFY2(match.hasMatch(), f.payload.constData());
        const int t = match.captured(2).toInt();
        QCOMPARE(match.captured(1).toInt(), next[t]);
        ++next[t];
    }
}

void tst_LinkSend::hostileBytes_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("headErrors");
    QTest::addColumn<int>("crcErrors");
    QTest::newRow("garbage") << QStringLiteral("garbage") << 23 << 0;
    QTest::newRow("split delivery") << QStringLiteral("split") << 0 << 0;
    QTest::newRow("corrupt CRC") << QStringLiteral("crc") << -1 << 1;
    QTest::newRow("length claim swallowing the next bytes") << QStringLiteral("claim") << 65544 << 1;
    QTest::newRow("random bytes without a head") << QStringLiteral("noise") << 50000 << 0;
}

void tst_LinkSend::hostileBytes()
{
    QFETCH(QString, kind);
    QFETCH(int, headErrors);
    QFETCH(int, crcErrors);
    Link link(m_address);
    Received received(link.module);
    link.module.start();
    QVERIFY(waitUp(link));
    QVERIFY(settle(*m_sim, received));
    LogCapture log;

    const QByteArray good("{\"ok\":true}\n");
    if (kind == QLatin1String("garbage")) {
        m_sim->sendGarbage("hello, this is no frame"); // 23 bytes, no "N"
    } else if (kind == QLatin1String("noise")) {
        QByteArray noise(headErrors, Qt::Uninitialized);
        std::mt19937 random(2024);
        for (int i = 0; i < noise.size(); ++i) {
            noise[i] = char(random());
            if (i > 0 && noise[i - 1] == 'N' && noise[i] == 'f')
                noise[i] = 'g';
        }
        m_sim->sendGarbage(noise);
    } else if (kind == QLatin1String("split")) {
        m_sim->setSplitDelivery(true);
    } else if (kind == QLatin1String("crc")) {
        m_sim->corruptNextCrc();
        m_sim->send(kProbe, "{\"bad\":1}\n");
    } else {
        // Claims 65535 bytes: the frame that follows is taken as its payload
        // until the claim is filled, then fails its CRC.
        QByteArray claim = QByteArray::fromHex("4e66ffff7e01");
        claim.append(QByteArray(65535, 'x'));
        claim.append(QByteArray(4, '\0'));
        m_sim->sendGarbage(claim.left(1000));
        m_sim->sendGarbage(claim.mid(1000));
    }
    m_sim->send(kMarker, good);

    QTRY_VERIFY_WITH_TIMEOUT(received.has(kMarker), 10000);
    QVERIFY(!received.has(kProbe));
    QCOMPARE(received.frames.last().second, good);
    if (headErrors >= 0)
        QCOMPARE(log.count(kHeadError), headErrors);
    QCOMPARE(log.count(kCrcError), crcErrors);
    // Still the same connection.
    QCOMPARE(statuses(link.status), QVector<int>{1});
    m_sim->setSplitDelivery(false);
    m_sim->send(kMarker, "{\"again\":1}\n");
    QTRY_COMPARE_WITH_TIMEOUT(received.frames.size(), 2, 5000);
}

QTEST_GUILESS_MAIN(tst_LinkSend)
#include "tst_linksend.moc"
