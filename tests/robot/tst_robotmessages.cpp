// Errors, warnings and information from the controller, through the link
// from qrx-sim: the texts handed to the host's callback, the last message,
// the servo-error rule of type 0x6010, and that none of them ends a wait.

#include "RobotFixture.h"
#include "ThreadSpy.h"

#include <mutex>
#include <QScopeGuard>
#include <QTranslator>
#include <QtTest>

namespace {

// What the host callback saw: copies taken during the call, and the thread
// it ran on.
std::mutex g_mutex;
QList<QByteArray> g_texts;
QList<Qt::HANDLE> g_threads;

void recordCallback(const char *text)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_texts.append(QByteArray(text)); // up to the NUL terminator
    g_threads.append(QThread::currentThreadId());
}

QList<QByteArray> callbackTexts()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_texts;
}

void clearCallbackTexts()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_texts.clear();
    g_threads.clear();
}

QByteArray utf8(const QString &s)
{
    return s.toUtf8();
}

} // namespace

class tst_RobotMessages : public RobotTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // A controller with two robots, robot 2 addressed, its servo
        // running (deadman on), in remote mode, driving UR-type arms (wire type 7).
        QVERIFY(startRobot([](qrxsim::ControllerModel &m) {
            m.robotCount = 2;
            m.currentRobot = 2;
            m.servoStatus = 3;
            m.deadman = 1; // drives keep running only while the deadman is on
            m.operationMode = 1;
            m.robotTypeWire = 7;
        }));
    }

    // What the controller reports on its own after the connection is held
    // before the host asks anything.
    void startupReportsHeld()
    {
        QCOMPARE(robot->robotCount, 2);
        QCOMPARE(robot->currentRobot(), 2);
        QCOMPARE(robot->servoStatus, 3);
        QCOMPARE(robot->operationMode, 1);
        QCOMPARE(robot->robotType, int(R_GENERAL_6S_1));
        QCOMPARE(robot->axisCount, 6);
    }

    void init()
    {
        clearCallbackTexts();
        robot->setMessageSink([](int, const QByteArray &text) { recordCallback(text.constData()); });
        if (qstrcmp(QTest::currentTestFunction(), "startupReportsHeld") != 0)
            robot->setCurrentRobot(1);
    }

    void cleanup()
    {
        robot->setMessageSink(nullptr);
    }

    void callbackText_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QByteArray>("text");       // handed to the callback
        QTest::addColumn<QByteArray>("lastMessage");

        QTest::newRow("error") << 0x2B03 << utf8(QStringLiteral("{\"data\":\"急停按下\",\"type\":8193}"))
                               << utf8(QStringLiteral("错误： 急停按下")) << utf8(QStringLiteral("急停按下"));
        QTest::newRow("error without type") << 0x2B03 << QByteArray("{\"data\":\"E-stop\"}")
                                            << utf8(QStringLiteral("错误： E-stop")) << QByteArray("E-stop");
        QTest::newRow("warning") << 0x2B04 << utf8(QStringLiteral("{\"data\":\"电池电压低\"}"))
                                 << utf8(QStringLiteral("警告： 电池电压低")) << utf8(QStringLiteral("电池电压低"));
        QTest::newRow("info") << 0x2B05 << QByteArray("{\"data\":\"job loaded\"}")
                              << utf8(QStringLiteral("消息： job loaded")) << QByteArray("job loaded");
        QTest::newRow("empty data") << 0x2B05 << QByteArray("{\"data\":\"\"}")
                                    << utf8(QStringLiteral("消息： ")) << QByteArray();
        QTest::newRow("text ends at NUL") << 0x2B04 << QByteArray("{\"data\":\"ok\"}\n\0{\"data\":\"x\"}", 28)
                                          << utf8(QStringLiteral("警告： ok")) << QByteArray("ok");
        QTest::newRow("numeric data") << 0x2B03 << QByteArray("{\"data\":404,\"type\":1}")
                                      << utf8(QStringLiteral("错误： 404")) << QByteArray("404");
        QTest::newRow("negative data") << 0x2B05 << QByteArray("{\"data\":-7}")
                                       << utf8(QStringLiteral("消息： -7")) << QByteArray("-7");
        QTest::newRow("flag data") << 0x2B04 << QByteArray("{\"data\":true}")
                                   << utf8(QStringLiteral("警告： true")) << QByteArray("true");
        QTest::newRow("null data") << 0x2B04 << QByteArray("{\"data\":null}")
                                   << utf8(QStringLiteral("警告： ")) << QByteArray();
        QTest::newRow("escaped quote") << 0x2B03 << QByteArray("{\"data\":\"axis \\\"3\\\"\",\"type\":1}")
                                       << utf8(QStringLiteral("错误： axis \"3\"")) << QByteArray("axis \"3\"");
    }

    void callbackText()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, payload);
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, lastMessage);

        fixture.send(quint16(code), payload, true);
        QVERIFY(fixture.flush());
        QCOMPARE(callbackTexts(), QList<QByteArray>{text});
        QCOMPARE(QByteArray::fromStdString(robot->lastMessage()), lastMessage);
        std::lock_guard<std::mutex> lock(g_mutex);
        QVERIFY(g_threads.value(0) != QThread::currentThreadId()); // the link thread, not the host's
    }

    void noCallbackRegistered_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("error") << 0x2B03;
        QTest::newRow("warning") << 0x2B04;
        QTest::newRow("info") << 0x2B05;
    }

    void noCallbackRegistered()
    {
        QFETCH(int, code);

        robot->setMessageSink(nullptr);
        const QString data = QStringLiteral("机器人1 伺服报警 %1").arg(code);
        fixture.send(quint16(code), utf8(QStringLiteral("{\"data\":\"%1\"}").arg(data)));
        QVERIFY(fixture.flush());
        QCOMPARE(callbackTexts().size(), 0);
        QCOMPARE(QString::fromStdString(robot->lastMessage()), data);
    }

    void withoutDataDropped_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("payload");
        QTest::newRow("error, type only") << 0x2B03 << QByteArray("{\"type\":24592}");
        QTest::newRow("warning, not JSON") << 0x2B04 << QByteArray("data: nothing");
        QTest::newRow("info, empty") << 0x2B05 << QByteArray();
    }

    void withoutDataDropped()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, payload);

        fixture.send(0x2B05, QByteArray("{\"data\":\"before\"}"));
        QVERIFY(fixture.flush());
        clearCallbackTexts();
        ThreadSpy servoError(robot, SIGNAL(robot_servo_err_info(QString)));
        fixture.send(quint16(code), payload, true);
        QVERIFY(fixture.flush());
        QCOMPARE(callbackTexts().size(), 0);
        QCOMPARE(robot->lastMessage(), std::string("before"));
        QCOMPARE(servoError.count(), 0);
    }

    void servoError_data()
    {
        QTest::addColumn<int>("current");
        QTest::addColumn<QByteArray>("type");   // JSON text of "type", empty for none
        QTest::addColumn<QString>("data");
        QTest::addColumn<bool>("emitted");

        const QString r1 = QStringLiteral("机器人1伺服错误: 轴2过流");
        const QString r2 = QStringLiteral("机器人2 伺服驱动器报警");
        const QString r3 = QStringLiteral("机器人3伺服未就绪");
        const QString r4 = QStringLiteral("机器人4");
        QTest::newRow("robot 1, current 1") << 1 << QByteArray("24592") << r1 << true;
        QTest::newRow("robot 2, current 2") << 2 << QByteArray("24592") << r2 << true;
        QTest::newRow("robot 3, current 3") << 3 << QByteArray("24592") << r3 << true;
        QTest::newRow("robot 4, current 4, name only") << 4 << QByteArray("24592") << r4 << true;
        QTest::newRow("robot 2, current 1") << 1 << QByteArray("24592") << r2 << false;
        QTest::newRow("robot 1, current 3") << 3 << QByteArray("24592") << r1 << false;
        QTest::newRow("other type") << 2 << QByteArray("24593") << r2 << false;
        QTest::newRow("decimal 6010") << 2 << QByteArray("6010") << r2 << false;
        QTest::newRow("no type") << 2 << QByteArray() << r2 << false;
        QTest::newRow("no robot name") << 1 << QByteArray("24592") << QStringLiteral("伺服错误 机器人1") << false;
        QTest::newRow("robot 5") << 1 << QByteArray("24592") << QStringLiteral("机器人5伺服错误") << false;
        QTest::newRow("short text") << 1 << QByteArray("24592") << QStringLiteral("机器") << false;
    }

    void servoError()
    {
        QFETCH(int, current);
        QFETCH(QByteArray, type);
        QFETCH(QString, data);
        QFETCH(bool, emitted);

        robot->setCurrentRobot(current);
        ThreadSpy servoError(robot, SIGNAL(robot_servo_err_info(QString)));
        QByteArray payload = "{\"data\":\"" + data.toUtf8() + "\"";
        if (!type.isEmpty())
            payload += ",\"type\":" + type;
        payload += "}";
        fixture.send(0x2B03, payload);
        QVERIFY(fixture.flush());

        QCOMPARE(servoError.count(), emitted ? 1 : 0);
        if (emitted)
            QCOMPARE(servoError.at(0).value(0).toString(), data);
        // Stored and handed over in every case.
        QCOMPARE(QString::fromStdString(robot->lastMessage()), data);
        QCOMPARE(callbackTexts(), QList<QByteArray>{utf8(QStringLiteral("错误： ") + data)});
    }

    // The servo-error rule compares the translated "错误代码: 0x" texts on
    // both sides, so an installed translation (which also renames the
    // robots) keeps the rule working: type 0x6010 with the translated robot
    // name still reaches robot_servo_err_info, another type still does not.
    void servoErrorUnderTranslation_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<bool>("emitted");
        QTest::newRow("0x6010") << QByteArray("24592") << true;
        QTest::newRow("0x6011") << QByteArray("24593") << false;
    }

    void servoErrorUnderTranslation()
    {
        QFETCH(QByteArray, type);
        QFETCH(bool, emitted);

        class English : public QTranslator
        {
        public:
            QString translate(const char *context, const char *source, const char *, int) const override
            {
                if (qstrcmp(context, "Robot") != 0)
                    return QString();
                const QString text = QString::fromUtf8(source);
                if (text == QStringLiteral("错误代码: 0x"))
                    return QStringLiteral("Error code: 0x");
                if (text == QStringLiteral("机器人2"))
                    return QStringLiteral("RB-2");
                return QString();
            }
            bool isEmpty() const override { return false; }
        } english;
        QVERIFY(QCoreApplication::installTranslator(&english));
        const auto removeTranslator = qScopeGuard([&english] { QCoreApplication::removeTranslator(&english); });
        QCOMPARE(QCoreApplication::translate("Robot", "错误代码: 0x"), QStringLiteral("Error code: 0x"));

        robot->setCurrentRobot(2);
        ThreadSpy servoError(robot, SIGNAL(robot_servo_err_info(QString)));
        fixture.send(0x2B03, "{\"data\":\"RB-2 overcurrent\",\"type\":" + type + "}");
        QVERIFY(fixture.flush());
        QCOMPARE(servoError.count(), emitted ? 1 : 0);
    }

    // With the wait lock held here, a handler that tried to wake would stall
    // the link thread, and the marker behind the message would never arrive.
    void messagesDoNotWake_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("error") << 0x2B03;
        QTest::newRow("warning") << 0x2B04;
        QTest::newRow("info") << 0x2B05;
    }

    void messagesDoNotWake()
    {
        QFETCH(int, code);

        QVERIFY(fixture.sendWithoutWake(quint16(code), QByteArray("{\"data\":\"机器人1 test\",\"type\":24592}")));
        QCOMPARE(callbackTexts().size(), 1);
    }
};

QTEST_GUILESS_MAIN(tst_RobotMessages)
#include "tst_robotmessages.moc"
