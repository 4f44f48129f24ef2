// The language of the library's texts in a host whose application is not a
// widgets one: Chinese by default, English after qrx_set_language("en"), in
// log lines and in the texts handed to the error callback; the dialogs stay
// shut here and say why.

#include "api/FamilyFixture.h"
#include "support/LogCapture.h"

#include <QSignalSpy>

class LanguageTest : public QObject
{
    Q_OBJECT
    familytest::Controller c;

private slots:
    void initTestCase()
    {
        QVERIFY(c.start());
        setErrorHandle(&hosterrors::collect);
    }

    void cleanupTestCase() { setErrorHandle(nullptr); }
    void cleanup() { QCOMPARE(qrx_set_language("zh"), 1); }

    void languageCodes_data()
    {
        QTest::addColumn<QByteArray>("code");
        QTest::addColumn<int>("result");
        QTest::newRow("en") << QByteArray("en") << 1;
        QTest::newRow("zh") << QByteArray("zh") << 1;
        QTest::newRow("unknown") << QByteArray("fr") << 0;
        QTest::newRow("empty") << QByteArray("") << 0;
    }

    void languageCodes()
    {
        QFETCH(QByteArray, code);
        QFETCH(int, result);
        QCOMPARE(qrx_set_language(code.constData()), result);
        QCOMPARE(qrx_set_language(nullptr), 0);
    }

    void callbackPrefixes_data()
    {
        QTest::addColumn<QByteArray>("language");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("prefix");
        QTest::newRow("error zh") << QByteArray("zh") << 0x2B03 << QStringLiteral("错误： ");
        QTest::newRow("warning zh") << QByteArray("zh") << 0x2B04 << QStringLiteral("警告： ");
        QTest::newRow("info zh") << QByteArray("zh") << 0x2B05 << QStringLiteral("消息： ");
        QTest::newRow("error en") << QByteArray("en") << 0x2B03 << QStringLiteral("Error: ");
        QTest::newRow("warning en") << QByteArray("en") << 0x2B04 << QStringLiteral("Warning: ");
        QTest::newRow("info en") << QByteArray("en") << 0x2B05 << QStringLiteral("Message: ");
    }

    void callbackPrefixes()
    {
        QFETCH(QByteArray, language);
        QFETCH(int, code);
        QFETCH(QString, prefix);
        QCOMPARE(qrx_set_language(language.constData()), 1);
        const QString data = QStringLiteral("轴3超限 %1 %2").arg(code).arg(QString::fromLatin1(language));
        Json::Value v(Json::objectValue);
        v["data"] = data.toStdString();
        c.sim->sendJson(quint16(code), v);
        QTRY_VERIFY_WITH_TIMEOUT(hosterrors::seen(prefix + data), 5000);
    }

    // The servo-error rule reads the controller's Chinese robot name in every
    // language.
    void servoErrorRuleInEnglish()
    {
        QCOMPARE(qrx_set_language("en"), 1);
        QSignalSpy spy(c.robot, &Robot::robot_servo_err_info);
        Json::Value v(Json::objectValue);
        v["data"] = "机器人1伺服报警";
        v["type"] = 0x6010;
        c.sim->sendJson(0x2B03, v);
        QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 1, 5000);
        QCOMPARE(spy.first().first().toString(), QStringLiteral("机器人1伺服报警"));
    }

    void logLines_data()
    {
        QTest::addColumn<QByteArray>("language");
        QTest::addColumn<QString>("line");
        QTest::newRow("zh") << QByteArray("zh") << QStringLiteral("接收当前工具手为5");
        QTest::newRow("en") << QByteArray("en") << QStringLiteral("Received current tool 5");
    }

    void logLines()
    {
        QFETCH(QByteArray, language);
        QFETCH(QString, line);
        QCOMPARE(qrx_set_language(language.constData()), 1);
        LogCapture log;
        QVERIFY(c.report(0x380C, "{\"curToolNum\":5,\"robot\":1}", [this] { return c.robot->currentTool == 5; }));
        QVERIFY2(log.contains(line), qPrintable(log.lines().join('\n')));
        QVERIFY(c.report(0x380C, "{\"curToolNum\":0,\"robot\":1}", [this] { return c.robot->currentTool == 0; }));
    }

    void dialogsNeedAWidgetsApplication_data()
    {
        QTest::addColumn<QByteArray>("call");
        QTest::newRow("showDialog") << QByteArray("showDialog");
        QTest::newRow("qrx_show_jog_panel") << QByteArray("qrx_show_jog_panel");
        QTest::newRow("qrx_show_calibration") << QByteArray("qrx_show_calibration");
    }

    void dialogsNeedAWidgetsApplication()
    {
        QFETCH(QByteArray, call);
        LogCapture log;
        const int shown = call == "showDialog" ? showDialog(0) : call == "qrx_show_jog_panel" ? qrx_show_jog_panel(0) : qrx_show_calibration(0);
        QCOMPARE(shown, 0);
        QVERIFY2(log.contains(QString::fromLatin1(call) + QStringLiteral(" shows nothing: the host's Qt application is not a widgets application")),
                 qPrintable(log.lines().join('\n')));
        // The rest of the library goes on working.
        set_jogging_speed(42);
        QVERIFY(c.sim->waitForFrame(0x2601));
        QCOMPARE(c.sim->lastFrame(0x2601).payload, familytest::json("{\"robot\":1,\"speed\":42}"));
        QVERIFY(c.settle());
    }
};

QTEST_GUILESS_MAIN(LanguageTest)
#include "tst_language.moc"
