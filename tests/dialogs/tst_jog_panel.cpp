// The jog panel against qrx-sim: holding a button jogs the axis with the
// same frames and period as start_jogging(), the robot moves, and release,
// focus loss and closing stop it; with the servo off the panel refuses.

#include "DialogFixture.h"
#include "api/FamilyFixture.h"

#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QComboBox>

using familytest::json;

class JogPanelTest : public QObject
{
    Q_OBJECT
    familytest::Controller c;

    QDialog *openPanel()
    {
        if (qrx_show_jog_panel(0) != 1)
            return nullptr;
        return dialogtest::openDialog("JogPanel");
    }

    int jogSteps(int axis, int direction) const
    {
        const QByteArray payload = json(QStringLiteral("{\"axis\":%1,\"direction\":%2}").arg(axis).arg(direction).toLatin1());
        int n = 0;
        for (const auto &frame : c.sim->received(0x2901))
            n += frame.payload == payload;
        return n;
    }

    bool stopSent(int axis) const
    {
        return c.sim->received(0x2902).size() == 1
            && c.sim->received(0x2902).first().payload == json(QStringLiteral("{\"axis\":%1}").arg(axis).toLatin1());
    }

    double simPosition(int axis)
    {
        double pos = 0.0;
        c.model([&](qrxsim::ControllerModel &m) { pos = m.positionDeg[axis - 1]; });
        return pos;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(c.start());
        QVERIFY(c.holdMode(0));
    }

    void cleanup() { dialogtest::closeAll(); }

    void oneButtonPairPerAxisOfTheRobot_data()
    {
        QTest::addColumn<int>("wireType");
        QTest::addColumn<int>("axes");
        QTest::newRow("six-axis") << 1 << 6;
        QTest::newRow("four-axis SCARA") << 2 << 4;
        QTest::newRow("two-axis SCARA") << 8 << 2;
    }

    void oneButtonPairPerAxisOfTheRobot()
    {
        QFETCH(int, wireType);
        QFETCH(int, axes);
        const QByteArray type = QStringLiteral("{\"type\":%1}").arg(wireType).toLatin1();
        QVERIFY(c.report(0x2E03, type.constData(), [&] { return c.robot->axisCount == axes; }));
        QDialog *panel = openPanel();
        QVERIFY(panel);
        QCOMPARE(panel->findChildren<QPushButton *>(QRegularExpression(QStringLiteral("^jogPlus\\d$"))).size(), axes);
        QCOMPARE(panel->findChildren<QPushButton *>(QRegularExpression(QStringLiteral("^jogMinus\\d$"))).size(), axes);
        QVERIFY(dialogtest::child<QPushButton>(panel, QByteArray("jogPlus" + QByteArray::number(axes)).constData()));
        QVERIFY(c.report(0x2E03, "{\"type\":1}", [&] { return c.robot->axisCount == 6; }));
    }

    void holdingJogsUntilRelease_data()
    {
        QTest::addColumn<int>("axis");
        QTest::addColumn<bool>("positive");
        QTest::newRow("axis 1 +") << 1 << true;
        QTest::newRow("axis 3 -") << 3 << false;
        QTest::newRow("axis 6 +") << 6 << true;
    }

    void holdingJogsUntilRelease()
    {
        QFETCH(int, axis);
        QFETCH(bool, positive);
        QVERIFY(c.servoRunning());
        QDialog *panel = openPanel();
        QVERIFY(panel);
        auto *speed = dialogtest::child<QSpinBox>(panel, "jogSpeed");
        QVERIFY(speed);
        speed->setValue(speed->value() == 60 ? 61 : 60);
        QTRY_COMPARE_WITH_TIMEOUT(c.sim->lastFrame(0x2601).payload,
                                  json(QStringLiteral("{\"robot\":1,\"speed\":%1}").arg(speed->value()).toLatin1()), 5000);
        QVERIFY(c.settle());

        const double before = simPosition(axis);
        c.sim->clearReceived();
        auto *button = dialogtest::child<QPushButton>(panel, QByteArray((positive ? "jogPlus" : "jogMinus") + QByteArray::number(axis)).constData());
        QVERIFY(button);
        QTest::mousePress(button, Qt::LeftButton);
        // The timer repeats the step while the button is held.
        const int direction = positive ? 1 : -1;
        QTRY_VERIFY_WITH_TIMEOUT(jogSteps(axis, direction) >= 4, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(positive ? simPosition(axis) > before + 1.0 : simPosition(axis) < before - 1.0, 10000);
        const auto steps = c.sim->received(0x2901);
        for (int i = 1; i < steps.size(); ++i)
            QVERIFY2(steps[i].atMs - steps[i - 1].atMs >= 150, "jog steps closer together than the 200 ms period");
        QVERIFY(c.sim->received(0x2902).isEmpty());

        QTest::mouseRelease(button, Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(stopSent(axis), 5000);
        const int afterRelease = c.sim->received(0x2901).size();
        QTest::qWait(700); // three periods: no step may follow the stop
        QCOMPARE(c.sim->received(0x2901).size(), afterRelease);
        int jogAxis = -1;
        c.model([&](qrxsim::ControllerModel &m) { jogAxis = m.motion.jogAxis; });
        QCOMPARE(jogAxis, 0);
        QVERIFY(c.settle());
    }

    // Whatever takes the panel away from the operator stops the axis.
    void leavingThePanelStops_data()
    {
        QTest::addColumn<int>("how");
        QTest::newRow("focus moves to another window") << 0;
        QTest::newRow("panel hidden") << 1;
        QTest::newRow("panel closed") << 2;
    }

    void leavingThePanelStops()
    {
        QFETCH(int, how);
        QVERIFY(c.servoRunning());
        QDialog *panel = openPanel();
        QVERIFY(panel);
        panel->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(panel));
        c.sim->clearReceived();
        auto *button = dialogtest::child<QPushButton>(panel, "jogPlus2");
        QTest::mousePress(button, Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(jogSteps(2, 1) >= 2, 10000);
        QWidget other;
        switch (how) {
        case 0:
            other.show();
            other.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&other));
            break;
        case 1:
            panel->hide();
            break;
        default:
            panel->close();
            break;
        }
        QTRY_VERIFY_WITH_TIMEOUT(stopSent(2), 5000);
        QVERIFY(c.settle());
    }

    void refusesWhileTheServoIsNotRunning_data()
    {
        QTest::addColumn<int>("servo");
        QTest::newRow("servo off") << 0;
        QTest::newRow("servo ready") << 1;
        QTest::newRow("servo error") << 2;
    }

    void refusesWhileTheServoIsNotRunning()
    {
        QFETCH(int, servo);
        QVERIFY(c.holdServo(servo));
        QDialog *panel = openPanel();
        QVERIFY(panel);
        auto *message = dialogtest::child<QLabel>(panel, "jogMessage");
        QVERIFY(message && message->text().isEmpty());
        auto *button = dialogtest::child<QPushButton>(panel, "jogMinus4");
        const QStringList frames = c.framesOf([&] {
            QTest::mousePress(button, Qt::LeftButton);
            QTest::mouseRelease(button, Qt::LeftButton);
        });
        QCOMPARE(message->text(), QStringLiteral("伺服不在运行状态,无法执行点动操作!"));
        for (const QString &frame : frames)
            QVERIFY2(!frame.startsWith(QLatin1String("0x2901")) && !frame.startsWith(QLatin1String("0x2902")), qPrintable(frame));
    }

    void showsTheControllersState()
    {
        QVERIFY(c.servoRunning());
        c.model([](qrxsim::ControllerModel &m) { m.positionDeg[1] = 12.5; });
        QDialog *panel = openPanel();
        QVERIFY(panel);
        QTRY_COMPARE_WITH_TIMEOUT(dialogtest::child<QLabel>(panel, "position2")->text(), QStringLiteral("12.500"), 5000);
        QCOMPARE(dialogtest::child<QLabel>(panel, "servoState")->text(), QStringLiteral("伺服: 伺服运行"));
        QCOMPARE(dialogtest::child<QLabel>(panel, "modeState")->text(), QStringLiteral("模式: 示教模式"));
        auto *coord = dialogtest::child<QComboBox>(panel, "coordSystem");
        const QStringList frames = c.framesOf([&] { coord->activated(1); });
        QVERIFY2(frames.contains(familytest::frame(0x2201, "{\"coord\":1,\"robot\":1}")), qPrintable(frames.join('\n')));
        QVERIFY(c.settle());
    }
};

QTEST_MAIN(JogPanelTest)
#include "tst_jog_panel.moc"
