// The protocol catalogue: lookups by code and by request, the pairing of
// requests and replies, and the controller (qrx-sim) answering every paired
// request it serves with the reply code the catalogue names, on the wire.

#include "link/DispatchTable.h"
#include "protocol/Catalogue.h"
#include "sim/SimHandle.h"
#include "sim/WireClient.h"
#include "support/Loopback.h"

#include <QSet>
#include <QtTest>

#include <memory>

using namespace qrx::protocol;

class tst_Protocol : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lookup_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("incoming");
        QTest::addColumn<int>("paired"); // reply: its request; request: its reply

        QTest::newRow("current position reply") << 0x2F08 << "recriveMoreRobotCurPosition" << true << 0x2F07;
        QTest::newRow("current position query") << 0x2F07 << "GetCurrentPosition" << false << 0x2F08;
        QTest::newRow("set operation mode") << 0x2101 << "SetOperationMode" << false << 0x2103;
        QTest::newRow("operation mode reply") << 0x2103 << "receivedOperationMode" << true << 0x2102;
        QTest::newRow("servo set acknowledged") << 0x2001 << "SetServoStatus" << false << 0x2003;
        QTest::newRow("user frame of a number") << 0x3C0A << "GetUserFrame" << false << 0x3C09;
        QTest::newRow("four-point result") << 0x7204 << "receivedCountSuccessFor4" << true << 0x7201;
        QTest::newRow("report without request") << 0x2B03 << "receivedError" << true << 0;
        QTest::newRow("request without reply") << 0x4501 << "MoveJoint" << false << 0;
        QTest::newRow("heartbeat answer") << 0x7267 << "heartbeatAnswer" << true << 0x7266;
        QTest::newRow("last code") << 0x9106 << "signal_receivedCurRunLine" << true << 0;
    }

    void lookup()
    {
        QFETCH(int, code);
        QFETCH(QString, name);
        QFETCH(bool, incoming);
        QFETCH(int, paired);

        const Message *row = find(quint16(code), incoming ? Direction::FromController : Direction::ToController);
        QVERIFY(row);
        QCOMPARE(int(row->code), code);
        QCOMPARE(QString::fromLatin1(row->name), name);
        QCOMPARE(int(row->pairedWith), paired);
        QCOMPARE(row->isReply(), incoming && paired != 0);
        QCOMPARE(QString::fromLatin1(qrx::protocol::name(quint16(code))), name);
        if (!incoming)
            QCOMPARE(int(replyTo(quint16(code))), paired);
    }

    void unknownCodes_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("zero") << 0;
        QTest::newRow("below the first") << 0x1FFF;
        QTest::newRow("between rows") << 0x2004;
        QTest::newRow("test probe") << 0x7E01;
        QTest::newRow("above the last") << 0xFFFF;
    }

    void unknownCodes()
    {
        QFETCH(int, code);
        QVERIFY(!findAny(quint16(code)));
        QVERIFY(!qrx::protocol::name(quint16(code)));
        QCOMPARE(int(replyTo(quint16(code))), 0);
        QVERIFY(!qrx::findDispatchRow(quint16(code)));
    }

    // The heartbeat codes stay with the connection: the dispatcher never
    // hands them out, although the catalogue names them.
    void heartbeatIsNotDispatched()
    {
        QVERIFY(find(0x7266));
        QVERIFY(find(0x7266, Direction::ToController));
        QVERIFY(!qrx::findDispatchRow(0x7266));
        QVERIFY(!qrx::findDispatchRow(0x7267));
        QCOMPARE(qrx::dispatchRowCount(), incoming().count - 2);
    }

    // Every row of the catalogue can be found again by its code; request
    // names are unique, and the only notification that several codes share
    // is the run status (0x3D03, 0x4919, 0x9103).
    void everyRowIsFound()
    {
        QHash<QByteArray, int> uses;
        for (const Rows rows : {incoming(), outgoing()}) {
            for (const Message &row : rows) {
                QCOMPARE(find(row.code, row.direction), &row);
                ++uses[QByteArray(row.name) + (row.direction == Direction::ToController ? "/out" : "")];
            }
        }
        QStringList shared;
        for (auto it = uses.cbegin(); it != uses.cend(); ++it) {
            if (it.value() > 1)
                shared << QString::fromLatin1(it.key()) + QLatin1Char('x') + QString::number(it.value());
        }
        QCOMPARE(shared, QStringList{QStringLiteral("receivedProRunStatusx3")});
        QVERIFY(incoming().count > 300);
    }

    // The reports named for the simulated controller are the codes of their
    // notifications.
    void namedReports_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("name");
        QTest::newRow("error") << int(report::Error) << "receivedError";
        QTest::newRow("job line") << int(report::JobLine) << "receivedJobfileLine";
        QTest::newRow("control number") << int(report::ControlNumber) << "recvControlNumber";
        QTest::newRow("continuous mode") << int(report::ContinuousModeState) << "receivedSocketState";
    }

    void namedReports()
    {
        QFETCH(int, code);
        QFETCH(QString, name);
        const Message *row = find(quint16(code));
        QVERIFY(row);
        QCOMPARE(QString::fromLatin1(row->name), name);
    }

    // Every paired request the simulated controller serves is answered with
    // the reply the catalogue names.
    void simulatorAnswersTheNamedReply_data()
    {
        QTest::addColumn<int>("request");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<int>("expectedReply"); // written out here, not read from the catalogue
        const QByteArray robot("{\"robot\":1}\n");
        QTest::newRow("servo") << 0x2002 << robot << 0x2003;
        QTest::newRow("mode") << 0x2102 << QByteArray() << 0x2103;
        QTest::newRow("coordinate") << 0x2202 << robot << 0x2203;
        QTest::newRow("speed") << 0x2602 << robot << 0x2603;
        QTest::newRow("position") << 0x2F07 << QByteArray("{\"coord\":0,\"robot\":1}\n") << 0x2F08;
        QTest::newRow("douts") << 0x3602 << QByteArray() << 0x3603;
        QTest::newRow("ains") << 0x360A << QByteArray() << 0x360B;
        QTest::newRow("tool") << 0x380B << robot << 0x380C;
        QTest::newRow("tool data") << 0x3806 << QByteArray("{\"toolNum\":1}\n") << 0x3807;
        QTest::newRow("user frame") << 0x3C0B << robot << 0x3C0C;
        QTest::newRow("run status") << 0x3D02 << robot << 0x3D03;
        QTest::newRow("robot type") << 0x2E02 << robot << 0x2E03;
        QTest::newRow("robot count") << 0x2E05 << QByteArray() << 0x2E06;
        QTest::newRow("current robot") << 0x5002 << QByteArray() << 0x5003;
        QTest::newRow("global variable") << 0x560B << QByteArray("{\"varName\":\"GI001\",\"varType\":2}\n") << 0x560C;
        QTest::newRow("sync position") << 0x7012 << QByteArray("{\"coord\":0,\"robot\":1}\n") << 0x7013;
        QTest::newRow("motor load") << 0x2A0A << robot << 0x2A0B;
        QTest::newRow("four point") << 0x7207 << QByteArray() << 0x7208;
        QTest::newRow("single cycle") << 0x3309 << robot << 0x330A;
        QTest::newRow("zero axis") << 0x3301 << QByteArray("{\"axis\":1,\"clearEncoder\":false}\n") << 0x3303;
    }

    void simulatorAnswersTheNamedReply()
    {
        QFETCH(int, request);
        QFETCH(QByteArray, payload);
        QFETCH(int, expectedReply);
        const quint16 reply = replyTo(quint16(request));
        QCOMPARE(int(reply), expectedReply);
        QVERIFY2(reply != 0, "the request has a reply in the catalogue");
        QVERIFY(find(reply)->isReply());

        if (!m_sim) {
            m_sim = std::make_unique<qrxsim::SimHandle>(testsupport::loopbackAddress());
            QVERIFY(m_sim->start());
        }
        WireClient client;
        QVERIFY(client.connectTo(m_sim->address(), m_sim->port()));
        client.sendFrame(quint16(request), payload);
        QVERIFY2(client.waitForFrame(reply), qPrintable(QStringLiteral("no 0x%1").arg(reply, 4, 16)));
    }

    void cleanupTestCase() { m_sim.reset(); }

private:
    std::unique_ptr<qrxsim::SimHandle> m_sim;
};

QTEST_GUILESS_MAIN(tst_Protocol)
#include "tst_protocol.moc"
