// Received-frame dispatch, end to end: a frame sent by qrx-sim travels over
// the link and comes out of TcpConnectModule as the notification named for
// its code, with the payload exactly as sent.
//
// Every notification of the module is connected to a recorder living in the
// test thread (queued, so the argument types must be registered and the
// module's own thread never touches test state). A frame is followed by a
// sentinel frame of an unknown code; once the sentinel has arrived, all that
// the first frame produced has arrived too, so "nothing else" is checked
// without waiting for a fixed time.

#include "link/TcpConnectModule.h"
#include "protocol/Catalogue.h"
#include "sim/SimHandle.h"
#include "support/Loopback.h"

#include <QMetaMethod>
#include <QtTest>

#include <vector>

namespace {

constexpr quint16 kSentinel = 0x0001; // not a controller code: always receivedData
constexpr int kWaitMs = 10000;
constexpr int kTimeBase = 18000; // check every 100 ms

// Hand-written spot checks of the catalogue: a controller code and the
// notification it must come out as, name for name (irregular spellings
// included), chosen where a wrong row would go unnoticed elsewhere:
// neighbouring codes of one family and names spelt against the rule.
struct PlainRow
{
    quint16 code;
    const char *signal;
};

const PlainRow kKnownRows[] = {
    {0x2003, "receivedServoStatus(QByteArray)"},
    {0x2306, "receivedDeadManMode(QByteArray)"},
    {0x2606, "receiveJointInchSpeed(QByteArray)"},
    {0x2609, "receiveRectInchSpeed(QByteArray)"},
    {0x260C, "recvSensitivity(QByteArray)"},
    {0x2A05, "receiveMotorSpeed(QByteArray)"},
    {0x2A07, "receiveMotorTorque(QByteArray)"},
    {0x2A0B, "signal_receivedMotorLoad(QByteArray)"},
    {0x2B03, "receivedError(QByteArray)"},
    {0x2B04, "receivedWarning(QByteArray)"},
    {0x2B05, "receivedInfo(QByteArray)"},
    {0x2E06, "receiveRobotSum(QByteArray)"},
    {0x2F08, "recriveMoreRobotCurPosition(QByteArray)"},
    {0x50B3, "receivedSocketState(QByteArray)"},
    {0x50C3, "singal_recvGAutoRun(QByteArray)"},
    {0x50C6, "singal_recvGAutoRunState(QByteArray)"},
    {0x5502, "receiveUploadAnswer(QByteArray)"},
    {0x5508, "receiveFileNamesNeedByDownload(QByteArray)"},
    {0x5606, "receiveGlobalPosition(QByteArray)"},
    {0x5609, "receiveGlobalVariant(QByteArray)"},
    {0x560C, "receiveOneGlobalVariant(QByteArray)"},
    {0x5613, "receiveLocalVariantPosP(QByteArray)"},
    {0x5616, "receiveLocalVariantPosE(QByteArray)"},
    {0x9106, "signal_receivedCurRunLine(QByteArray)"},
};

// The catalogue rows whose payload comes out as it came, once, by one
// notification of the row's name: every other incoming row has its own
// case among the special rows below.
bool isPlain(const qrx::protocol::Message &row)
{
    using qrx::protocol::Delivery;
    return (row.delivery == Delivery::Forward || row.delivery == Delivery::ForwardIfJson) && !row.secondName;
}

QByteArray plainSignature(const qrx::protocol::Message &row)
{
    return QByteArray(row.name) + "(QByteArray)";
}

// Declared for listeners but never emitted by any code.
const char *const kDeclaredOnly[] = {
    "receivedRunningMode(uchar)",
    "receivedLaserManufacturer(QByteArray)",
    "receivedDragSwitch(QByteArray)",
    "receiveRobotCycleTimes(QByteArray)",
    "receivedOutInchSpeed(QByteArray)",
    "recvSyncPositonerSwitch(QByteArray)",
    "receivePayloadNumPara(QByteArray)",
};

QString bytesText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toPercentEncoding("{}[]\":,.-_ "));
}

// One notification as text: "signature|arg|arg...".
// A signature with each argument type spelt by its meta-type's own name, so
// that "quint16" and "ushort" (the same type) compare equal.
QString canonical(const QString &signature)
{
    const int open = signature.indexOf(QLatin1Char('('));
    const QString inner = signature.mid(open + 1, signature.size() - open - 2);
    QStringList types;
    if (!inner.isEmpty()) {
        for (const QString &type : inner.split(QLatin1Char(','))) {
            const int id = QMetaType::type(type.toLatin1().constData());
            types << (id != QMetaType::UnknownType ? QString::fromLatin1(QMetaType::typeName(id)) : type);
        }
    }
    return signature.left(open + 1) + types.join(QLatin1Char(',')) + QLatin1Char(')');
}

QString eventText(const QString &signature, const QStringList &args)
{
    return (QStringList{canonical(signature)} + args).join(QLatin1Char('|'));
}

QString payloadEvent(const char *signature, const QByteArray &payload)
{
    return eventText(QLatin1String(signature), {bytesText(payload)});
}

} // namespace

// Records every notification of the module, in arrival order, in the test thread.
class NotificationRecorder : public QObject
{
    Q_OBJECT
public:
    QStringList events;

    // Connects every signal of the module declared by the link; false if a
    // signal has an argument list the recorder cannot take.
    bool attach(QObject *module)
    {
        const QMetaObject *mo = module->metaObject();
        for (int i = QObject::staticMetaObject.methodCount(); i < mo->methodCount(); ++i) {
            const QMetaMethod signal = mo->method(i);
            if (signal.methodType() != QMetaMethod::Signal)
                continue;
            const QMetaMethod slot = slotFor(signal);
            if (!slot.isValid()) {
                qWarning("no recorder slot for %s", signal.methodSignature().constData());
                return false;
            }
            if (!connect(module, signal, this, slot, Qt::QueuedConnection))
                return false;
        }
        return true;
    }

    bool sawSentinel(const QByteArray &tag) const
    {
        return events.contains(sentinelEvent(tag));
    }

    static QString sentinelEvent(const QByteArray &tag)
    {
        return eventText(QStringLiteral("receivedData(quint16,QByteArray)"),
                         {QString::number(kSentinel, 16), bytesText(tag)});
    }

public Q_SLOTS:
    void onPayload(const QByteArray &data) { record({bytesText(data)}); }
    void onTestMode(signed char mode) { record({QString::number(int(mode))}); }
    void onRunningMode(uchar mode) { record({QString::number(int(mode))}); }
    void onStatus(int status) { record({QString::number(status)}); }
    void onCommand(quint16 command) { record({QString::number(command, 16)}); }
    void onNothing() { record({}); }
    void onData(quint16 command, const QByteArray &data)
    {
        record({QString::number(command, 16), bytesText(data)});
    }
    void onPosition(const QVector<double> &position, int coord, int robot, int configuration)
    {
        QStringList values;
        for (double v : position)
            values << QString::number(v, 'g', 17);
        record({QLatin1Char('[') + values.join(QLatin1Char(',')) + QLatin1Char(']'),
                QString::number(coord), QString::number(robot), QString::number(configuration)});
    }

private:
    // The recorder slot whose argument types are those of the signal.
    QMetaMethod slotFor(const QMetaMethod &signal) const
    {
        const QMetaObject *mo = metaObject();
        for (int i = mo->methodOffset(); i < mo->methodCount(); ++i) {
            const QMetaMethod slot = mo->method(i);
            if (slot.methodType() != QMetaMethod::Slot || slot.parameterCount() != signal.parameterCount())
                continue;
            bool same = true;
            for (int p = 0; p < slot.parameterCount(); ++p)
                same = same && slot.parameterType(p) == signal.parameterType(p);
            if (same)
                return slot;
        }
        return QMetaMethod();
    }

    void record(const QStringList &args)
    {
        const QMetaMethod signal = sender()->metaObject()->method(senderSignalIndex());
        events << eventText(QString::fromLatin1(signal.methodSignature()), args);
    }
};

class TestDispatch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void notificationNames_data();
    void notificationNames();
    void plainRows_data();
    void plainRows();
    void knownNames_data();
    void knownNames();
    void specialRows_data();
    void specialRows();
    void burstKeepsOrder();

private:
    // Sends one frame, then the sentinel, and collects what the frame produced.
    void dispatch(quint16 code, const QByteArray &payload, QStringList &events);

    QScopedPointer<qrxsim::SimHandle> m_sim;
    QScopedPointer<TcpConnectModule> m_module;
    NotificationRecorder m_recorder;
    int m_round = 0;
};

void TestDispatch::initTestCase()
{
    m_sim.reset(new qrxsim::SimHandle(testsupport::loopbackAddress()));
    QVERIFY(m_sim->start());
    m_module.reset(new TcpConnectModule(testsupport::loopbackAddress(), 6001, kTimeBase));
    QVERIFY(m_recorder.attach(m_module.data()));
    m_module->start();
    QVERIFY(m_sim->waitForClient(kWaitMs));
    // Whatever the controller says on connect is not part of these cases.
    QStringList ignored;
    dispatch(kSentinel, "settle", ignored);
}

void TestDispatch::cleanupTestCase()
{
    m_module.reset();
    m_sim.reset();
}

void TestDispatch::dispatch(quint16 code, const QByteArray &payload, QStringList &events)
{
    const QByteArray tag = "round " + QByteArray::number(++m_round);
    m_recorder.events.clear();
    m_sim->send(code, payload);
    m_sim->send(kSentinel, tag);
    QTRY_VERIFY_WITH_TIMEOUT(m_recorder.sawSentinel(tag), kWaitMs);
    events = m_recorder.events;
    events.removeAll(QStringLiteral("connectSucceed(int)|1"));
    events.removeOne(NotificationRecorder::sentinelEvent(tag));
}

// Listeners connect by these exact strings; a misspelt declaration fails here.
void TestDispatch::notificationNames_data()
{
    QTest::addColumn<QByteArray>("signature");
    for (const PlainRow &row : kKnownRows)
        QTest::newRow(row.signal) << QByteArray(row.signal);
    for (const char *sig : kDeclaredOnly)
        QTest::newRow(sig) << QByteArray(sig);
    for (const char *sig : {"receivedTestMode(signed char)", "receivedPosition(QVector<double>,int,int,int)",
                            "receivedJobStatus(QByteArray)", "recvJobFileInfoFinish()",
                            "connectSucceed(int)", "receivedData(quint16,QByteArray)"})
        QTest::newRow(sig) << QByteArray(sig);
}

void TestDispatch::notificationNames()
{
    QFETCH(QByteArray, signature);
    const QMetaObject *mo = m_module->metaObject();
    bool declared = false;
    for (int i = 0; i < mo->methodCount() && !declared; ++i) {
        const QMetaMethod m = mo->method(i);
        declared = m.methodType() == QMetaMethod::Signal
                   && canonical(QString::fromLatin1(m.methodSignature())) == canonical(QString::fromLatin1(signature));
    }
    QVERIFY2(declared, signature.constData());
    // The old-style string connection that listeners use (connected and
    // dropped at once: only whether it is accepted matters here).
    QObject listener;
    const QMetaObject::Connection connection = QObject::connect(
        m_module.data(), QByteArray("2" + signature).constData(), &listener, SLOT(deleteLater()));
    QVERIFY(connection);
    QObject::disconnect(connection);
}

void TestDispatch::plainRows_data()
{
    QTest::addColumn<quint16>("code");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("expected");
    for (const qrx::protocol::Message &row : qrx::protocol::incoming()) {
        if (!isPlain(row))
            continue;
        const QByteArray payload = "{\"code\":" + QByteArray::number(row.code) + ",\"robot\":2}\n";
        QTest::newRow(qPrintable(QStringLiteral("0x%1").arg(row.code, 4, 16, QLatin1Char('0'))))
            << row.code << payload << QStringList{payloadEvent(plainSignature(row).constData(), payload)};
    }
}

// The spot checks against the catalogue: each known code is a plain row of
// the expected name, so a row that names the wrong notification fails here.
void TestDispatch::knownNames_data()
{
    QTest::addColumn<quint16>("code");
    QTest::addColumn<QByteArray>("signature");
    for (const PlainRow &row : kKnownRows)
        QTest::newRow(qPrintable(QStringLiteral("0x%1").arg(row.code, 4, 16, QLatin1Char('0'))))
            << row.code << QByteArray(row.signal);
}

void TestDispatch::knownNames()
{
    QFETCH(quint16, code);
    QFETCH(QByteArray, signature);
    const qrx::protocol::Message *row = qrx::protocol::find(code);
    QVERIFY(row);
    QVERIFY(isPlain(*row));
    QCOMPARE(plainSignature(*row), signature);
}

void TestDispatch::plainRows()
{
    QFETCH(quint16, code);
    QFETCH(QByteArray, payload);
    QFETCH(QStringList, expected);
    QStringList events;
    dispatch(code, payload, events);
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(events, expected);
}

void TestDispatch::specialRows_data()
{
    QTest::addColumn<quint16>("code");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("expected");

    const QByteArray json = "{\"mode\":1,\"robot\":1,\"status\":3}\n";
    const QByteArray broken = "{\"mode\":1,\"robot\"";
    const char *jsonOnly[][2] = {{"0x2003", "receivedServoStatus(QByteArray)"},
                                 {"0x2603", "receivedSpeedInfo(QByteArray)"},
                                 {"0x3C0C", "receivedCurrentUserCoords(QByteArray)"}};
    for (const auto &row : jsonOnly) {
        const quint16 code = quint16(QByteArray(row[0]).toUShort(nullptr, 16));
        QTest::addRow("%s json", row[0]) << code << json << QStringList{payloadEvent(row[1], json)};
        QTest::addRow("%s not json", row[0]) << code << broken << QStringList{};
        QTest::addRow("%s empty", row[0]) << code << QByteArray() << QStringList{};
        // JSON has no trailing commas.
        QTest::addRow("%s trailing comma", row[0])
            << code << QByteArray("{\"robot\":1,\"status\":3,}\n") << QStringList{};
        // Deeper than the JSON reader's stack limit: not JSON, and no throw
        // on the link thread.
        QTest::addRow("%s nested too deep", row[0])
            << code << QByteArray(3000, '[') + QByteArray(3000, ']') + "\n" << QStringList{};
        // Text after a NUL is not read, but the payload is handed on whole.
        const QByteArray withNul = json + QByteArray(1, '\0') + "tail";
        QTest::addRow("%s json, NUL, tail", row[0]) << code << withNul << QStringList{payloadEvent(row[1], withNul)};
    }

    const QString testMode = QStringLiteral("receivedTestMode(signed char)|%1");
    QTest::newRow("0x2703 0xFF") << quint16(0x2703) << QByteArray::fromHex("ff") << QStringList{testMode.arg(-1)};
    QTest::newRow("0x2703 0x05") << quint16(0x2703) << QByteArray::fromHex("05") << QStringList{testMode.arg(5)};
    QTest::newRow("0x2703 0x00") << quint16(0x2703) << QByteArray::fromHex("00") << QStringList{testMode.arg(0)};
    QTest::newRow("0x2703 0x80") << quint16(0x2703) << QByteArray::fromHex("80") << QStringList{testMode.arg(-128)};
    QTest::newRow("0x2703 two bytes") << quint16(0x2703) << QByteArray::fromHex("0101") << QStringList{};
    QTest::newRow("0x2703 empty") << quint16(0x2703) << QByteArray() << QStringList{};
    QTest::newRow("0x2703 json") << quint16(0x2703) << QByteArray("{\"testMode\":1}\n") << QStringList{};

    const QString position = QStringLiteral("receivedPosition(QVector<double>,int,int,int)|%1|%2|%3|%4");
    QTest::newRow("0x2A03 complete")
        << quint16(0x2A03)
        << QByteArray("{\"configuration\":5,\"coord\":1,\"posDeg\":[1.50,-2.0,3.250,0.0,90.0,-180.0,7.1250],\"robot\":2}\n")
        << QStringList{position.arg("[1.5,-2,3.25,0,90,-180,7.125]").arg(1).arg(2).arg(5)};
    QTest::newRow("0x2A03 integers, empty array")
        << quint16(0x2A03) << QByteArray("{\"configuration\":0,\"coord\":0,\"posDeg\":[],\"robot\":4}\n")
        << QStringList{position.arg("[]").arg(0).arg(4).arg(0)};
    QTest::newRow("0x2A03 extra keys")
        << quint16(0x2A03)
        << QByteArray("{\"configuration\":1,\"coord\":3,\"pos\":[9.0],\"posDeg\":[1,2],\"robot\":1,\"x\":\"y\"}\n")
        << QStringList{position.arg("[1,2]").arg(3).arg(1).arg(1)};
    QTest::newRow("0x2A03 no configuration")
        << quint16(0x2A03) << QByteArray("{\"coord\":1,\"posDeg\":[1.0],\"robot\":1}\n") << QStringList{};
    QTest::newRow("0x2A03 no posDeg")
        << quint16(0x2A03) << QByteArray("{\"configuration\":1,\"coord\":1,\"robot\":1}\n") << QStringList{};
    QTest::newRow("0x2A03 no coord")
        << quint16(0x2A03) << QByteArray("{\"configuration\":1,\"posDeg\":[1.0],\"robot\":1}\n") << QStringList{};
    QTest::newRow("0x2A03 no robot")
        << quint16(0x2A03) << QByteArray("{\"configuration\":1,\"coord\":1,\"posDeg\":[1.0]}\n") << QStringList{};
    QTest::newRow("0x2A03 not json") << quint16(0x2A03) << QByteArray("{\"posDeg\":[1.0") << QStringList{};
    QTest::newRow("0x2A03 json array") << quint16(0x2A03) << QByteArray("[1,2,3]\n") << QStringList{};
    QTest::newRow("0x2A03 posDeg object")
        << quint16(0x2A03) << QByteArray("{\"configuration\":1,\"coord\":1,\"posDeg\":{\"a\":1},\"robot\":1}\n")
        << QStringList{};
    QTest::newRow("0x2A03 posDeg nested too deep")
        << quint16(0x2A03)
        << QByteArray("{\"configuration\":1,\"coord\":1,\"posDeg\":") + QByteArray(3000, '[')
               + QByteArray(3000, ']') + ",\"robot\":1}\n"
        << QStringList{};
    QTest::newRow("0x2A03 text where a number belongs")
        << quint16(0x2A03) << QByteArray("{\"configuration\":1,\"coord\":\"x\",\"posDeg\":[1.0],\"robot\":1}\n")
        << QStringList{};

    const QByteArray run = "{\"continueRun\":0,\"robot\":1,\"status\":2}\n";
    for (quint16 code : {quint16(0x4919), quint16(0x9103)}) {
        QTest::addRow("0x%04X run status, then job status", code)
            << code << run
            << QStringList{payloadEvent("receivedProRunStatus(QByteArray)", run),
                           payloadEvent("receivedJobStatus(QByteArray)", run)};
    }
    QTest::newRow("0x3D03 run status only")
        << quint16(0x3D03) << run << QStringList{payloadEvent("receivedProRunStatus(QByteArray)", run)};

    QTest::newRow("0x5535 no argument") << quint16(0x5535) << QByteArray("{}\n")
                                        << QStringList{QStringLiteral("recvJobFileInfoFinish()")};
    QTest::newRow("0x5535 empty") << quint16(0x5535) << QByteArray()
                                  << QStringList{QStringLiteral("recvJobFileInfoFinish()")};

    const QString data = QStringLiteral("receivedData(quint16,QByteArray)|%1|%2");
    QTest::newRow("0x1234 unlisted") << quint16(0x1234) << QByteArray("{\"a\":1}\n")
                                     << QStringList{data.arg("1234", bytesText("{\"a\":1}\n"))};
    QTest::newRow("0x2002 host-side code") << quint16(0x2002) << QByteArray("not json")
                                           << QStringList{data.arg("2002", bytesText("not json"))};
    QTest::newRow("0x2004 next to a listed code") << quint16(0x2004) << QByteArray()
                                                  << QStringList{data.arg("2004", QString())};
    QTest::newRow("0xFFFF highest code") << quint16(0xFFFF) << QByteArray::fromHex("00ff")
                                         << QStringList{data.arg("ffff", bytesText(QByteArray::fromHex("00ff")))};
}

void TestDispatch::specialRows()
{
    QFETCH(quint16, code);
    QFETCH(QByteArray, payload);
    QFETCH(QStringList, expected);
    for (QString &event : expected) {
        const int bar = event.indexOf(QLatin1Char('|'));
        event = canonical(event.left(bar < 0 ? event.size() : bar)) + (bar < 0 ? QString() : event.mid(bar));
    }
    QStringList events;
    dispatch(code, payload, events);
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(events, expected);
}

// Many frames in one burst come out one notification each, in order.
void TestDispatch::burstKeepsOrder()
{
    m_recorder.events.clear();
    std::vector<const qrx::protocol::Message *> plain;
    for (const qrx::protocol::Message &row : qrx::protocol::incoming())
        if (isPlain(row))
            plain.push_back(&row);
    QVERIFY(!plain.empty());
    QStringList expected;
    for (int i = 0; i < 200; ++i) {
        const qrx::protocol::Message &row = *plain[(i * 7) % plain.size()];
        const QByteArray payload = "{\"i\":" + QByteArray::number(i) + "}\n";
        m_sim->send(row.code, payload);
        expected << payloadEvent(plainSignature(row).constData(), payload);
    }
    const QByteArray tag = "burst";
    m_sim->send(kSentinel, tag);
    QTRY_VERIFY_WITH_TIMEOUT(m_recorder.sawSentinel(tag), kWaitMs);
    QStringList events = m_recorder.events;
    events.removeOne(NotificationRecorder::sentinelEvent(tag));
    QCOMPARE(events, expected);
}

QTEST_GUILESS_MAIN(TestDispatch)
#include "tst_dispatch.moc"
