// The user-frame calibration dialog against qrx-sim: each step puts the
// frames of its exported function on the wire, and the dialog shows what the
// controller answers.

#include "DialogFixture.h"
#include "api/FamilyFixture.h"

#include <QDoubleSpinBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

using familytest::Call;
using familytest::frame;

Q_DECLARE_METATYPE(std::function<void(QDialog *)>)
using Step = std::function<void(QDialog *)>;

class CalibrationTest : public QObject
{
    Q_OBJECT
    familytest::Controller c;

    QDialog *openCalibration()
    {
        if (qrx_show_calibration(0) != 1)
            return nullptr;
        return dialogtest::openDialog("CalibrationDialog");
    }

    static Step click(const char *button)
    {
        return [button](QDialog *d) { QTest::mouseClick(dialogtest::child<QPushButton>(d, button), Qt::LeftButton); };
    }

private slots:
    void initTestCase() { QVERIFY(c.start()); }
    void cleanup() { dialogtest::closeAll(); }

    void stepsOnTheWire_data()
    {
        QTest::addColumn<Step>("step");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("choose user frame 2")
            << Step([](QDialog *d) {
                   dialogtest::child<QSpinBox>(d, "userFrame")->setValue(2);
                   click("chooseFrame")(d);
               })
            << QStringList{frame(0x3c08, "{\"robot\":1,\"userNum\":2}"),
                           frame(0x3c0a, "{\"inquire\":\"Calibration\",\"userNum\":2}")};
        QTest::newRow("mark point 3") << click("markPoint3")
                                      << QStringList{frame(0x7202, "{\"pointNum\":3,\"status\":1}"), frame(0x7207, nullptr)};
        QTest::newRow("clear point 1") << click("clearPoint1")
                                       << QStringList{frame(0x7202, "{\"pointNum\":1,\"status\":0}"), frame(0x7207, nullptr)};
        QTest::newRow("calculate")
            << Step([](QDialog *d) {
                   dialogtest::child<QDoubleSpinBox>(d, "firstParam")->setValue(1.5);
                   dialogtest::child<QDoubleSpinBox>(d, "secondParam")->setValue(-20.0);
                   click("calculate")(d);
               })
            << QStringList{frame(0x7201, "{\"ParamOf4Points\":[1.50,-20.0]}")};
    }

    void stepsOnTheWire()
    {
        QFETCH(Step, step);
        QFETCH(QStringList, expected);
        QDialog *dialog = openCalibration();
        QVERIFY(dialog);
        QVERIFY(c.settle());
        QCOMPARE(c.framesOf([&] { step(dialog); }), expected);
        QVERIFY(c.settle());
    }

    void showsMarkedPointsAndTheResult_data()
    {
        QTest::addColumn<QVector<int>>("marks");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("all four marked") << QVector<int>{1, 1, 1, 1} << QStringLiteral("四点标定计算成功");
        QTest::newRow("point 2 missing") << QVector<int>{1, 0, 1, 1} << QStringLiteral("四点标定计算失败");
        QTest::newRow("none marked") << QVector<int>{0, 0, 0, 0} << QStringLiteral("四点标定计算失败");
    }

    void showsMarkedPointsAndTheResult()
    {
        QFETCH(QVector<int>, marks);
        QFETCH(QString, outcome);
        c.model([&](qrxsim::ControllerModel &m) {
            for (int i = 0; i < 4; ++i)
                m.fourPointStatus[i] = marks[i];
            m.fourPointLength[0] = 1.25;
            m.fourPointLength[1] = 2.5;
            m.fourPointLength[2] = 0.125;
            m.fourPointDtheta = 0.75;
        });
        QVERIFY(c.settle());
        QDialog *dialog = openCalibration();
        QVERIFY(dialog);
        for (int i = 0; i < 4; ++i) {
            const QString state = dialogtest::child<QLabel>(dialog, QByteArray("pointState" + QByteArray::number(i + 1)).constData())->text();
            QCOMPARE(state, marks[i] ? QStringLiteral("已标定") : QStringLiteral("未标定"));
        }
        QTest::mouseClick(dialogtest::child<QPushButton>(dialog, "calculate"), Qt::LeftButton);
        QCOMPARE(dialogtest::child<QLabel>(dialog, "result")->text(),
                 outcome + QStringLiteral(" 长度: 1.250 2.500 0.125 角度偏差: 0.750"));
        QVERIFY(c.settle());
    }

    // The controller's answer to the frame inquiry is shown with its values.
    void showsTheChosenFrame()
    {
        QDialog *dialog = openCalibration();
        QVERIFY(dialog);
        c.sim->sendJson(0x3C09, [] {
            Json::Value v(Json::objectValue);
            v["userNum"] = 4;
            v["inquire"] = 1;
            Json::Value pos(Json::arrayValue);
            for (double d : {10.0, 20.0, 30.0, 0.0, 0.0, 90.0})
                pos.append(d);
            v["posDeg"] = pos;
            return v;
        }());
        QTRY_COMPARE_WITH_TIMEOUT(dialogtest::child<QLabel>(dialog, "frameValues")->text(),
                                  QStringLiteral("用户坐标4: 10.000  20.000  30.000  0.000  0.000  90.000"), 5000);
        QVERIFY(c.settle());
    }
};

QTEST_MAIN(CalibrationTest)
#include "tst_calibration.moc"
