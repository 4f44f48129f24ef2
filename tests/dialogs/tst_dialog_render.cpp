// showDialog and the about dialog's menu, and every dialog rendered in
// Chinese and in English to PNG files for a reviewer (QRX_TEST_OUTPUT).

#include "DialogFixture.h"
#include "api/FamilyFixture.h"

#include <QLabel>
#include <QPushButton>

using Opener = int (*)(unsigned long);
Q_DECLARE_METATYPE(Opener)

class DialogRenderTest : public QObject
{
    Q_OBJECT
    familytest::Controller c;

private slots:
    void initTestCase() { QVERIFY(c.start()); }

    void cleanup()
    {
        dialogtest::closeAll();
        QCOMPARE(qrx_set_language("zh"), 1);
    }

    void aboutMenuOpensTheOtherDialogs_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<QByteArray>("dialog");
        QTest::newRow("jog panel") << QByteArray("openJogPanel") << QByteArray("JogPanel");
        QTest::newRow("calibration") << QByteArray("openCalibration") << QByteArray("CalibrationDialog");
    }

    void aboutMenuOpensTheOtherDialogs()
    {
        QFETCH(QByteArray, button);
        QFETCH(QByteArray, dialog);
        QCOMPARE(showDialog(0), 1);
        QDialog *about = dialogtest::openDialog("AboutDialog");
        QVERIFY(about);
        QCOMPARE(dialogtest::child<QLabel>(about, "linkState")->text(), QStringLiteral("已连接控制器"));
        auto *menu = dialogtest::child<QPushButton>(about, button.constData());
        QVERIFY(menu);
        QVERIFY(menu->styleSheet().contains(QLatin1String("border-image: url(:/qrx/dialogs/menu_button.png)")));
        QVERIFY(!QImage(QStringLiteral(":/qrx/dialogs/menu_button.png")).isNull());
        QVERIFY(!dialogtest::openDialog(dialog.constData()));
        QTest::mouseClick(menu, Qt::LeftButton);
        QVERIFY(dialogtest::openDialog(dialog.constData()));
        QVERIFY(c.settle());
    }

    // Opening a dialog again replaces the one that is open.
    void oneDialogOfEachKind()
    {
        QCOMPARE(qrx_show_jog_panel(0), 1);
        QCOMPARE(qrx_show_jog_panel(0), 1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        int panels = 0;
        for (QWidget *w : QApplication::topLevelWidgets())
            panels += w->objectName() == QLatin1String("JogPanel");
        QCOMPARE(panels, 1);
    }

    // Where the platform has no foreign windows (offscreen), a native handle
    // cannot be used: 0, and nothing left open.
    void foreignHandleRefusedWithoutWindowSystem()
    {
        QCOMPARE(showDialog(0x4a00001), 0);
        QVERIFY(!dialogtest::openDialog("AboutDialog"));
    }

    void rendersInEachLanguage_data()
    {
        QTest::addColumn<Opener>("open");
        QTest::addColumn<QByteArray>("dialog");
        QTest::addColumn<QByteArray>("language");
        QTest::addColumn<QString>("title");
        const struct
        {
            Opener open;
            const char *name;
            const char *zh;
            const char *en;
        } dialogs[] = {
            {&showDialog, "AboutDialog", "关于 qrx_host", "About qrx_host"},
            {&qrx_show_jog_panel, "JogPanel", "点动面板", "Jog panel"},
            {&qrx_show_calibration, "CalibrationDialog", "用户坐标标定", "User frame calibration"},
        };
        for (const auto &d : dialogs) {
            QTest::addRow("%s zh", d.name) << d.open << QByteArray(d.name) << QByteArray("zh") << QString::fromUtf8(d.zh);
            QTest::addRow("%s en", d.name) << d.open << QByteArray(d.name) << QByteArray("en") << QString::fromUtf8(d.en);
        }
    }

    void rendersInEachLanguage()
    {
        QFETCH(Opener, open);
        QFETCH(QByteArray, dialog);
        QFETCH(QByteArray, language);
        QFETCH(QString, title);
        QVERIFY(c.servoRunning());
        QCOMPARE(qrx_set_language(language.constData()), 1);
        QCOMPARE(open(0), 1);
        QDialog *shown = dialogtest::openDialog(dialog.constData());
        QVERIFY(shown);
        QCOMPARE(shown->windowTitle(), title);
        QVERIFY(QTest::qWaitForWindowExposed(shown));
        const QImage image = shown->grab().toImage();
        QVERIFY(image.width() > 100 && image.height() > 80);
        QVERIFY2(dialogtest::colourCount(image) > 8, "the dialog renders as a blank area");
        const QString file = dialogtest::outputDir().filePath(QStringLiteral("%1_%2.png").arg(QString::fromLatin1(dialog), QString::fromLatin1(language)));
        QVERIFY(image.save(file));
        QVERIFY(c.settle());
    }

    // A dialog already open follows a change of language.
    void openDialogFollowsTheLanguage()
    {
        QCOMPARE(qrx_show_jog_panel(0), 1);
        QDialog *panel = dialogtest::openDialog("JogPanel");
        QVERIFY(panel);
        QCOMPARE(panel->windowTitle(), QStringLiteral("点动面板"));
        QCOMPARE(qrx_set_language("en"), 1);
        QTRY_COMPARE(panel->windowTitle(), QStringLiteral("Jog panel"));
        QCOMPARE(qrx_set_language("zh"), 1);
        QTRY_COMPARE(panel->windowTitle(), QStringLiteral("点动面板"));
    }
};

QTEST_MAIN(DialogRenderTest)
#include "tst_dialog_render.moc"
