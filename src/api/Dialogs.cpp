// showDialog and the dialog extensions: where the dialogs run and in which
// window they are shown.
//
// Widgets live in the thread of the application that owns them: the host's
// own QApplication, or the application the library runs for a host without
// one (a QApplication when a display is there). A call from another thread
// is carried into that thread and returns once the dialog is shown.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "common/Logging.h"
#include "dialogs/AboutDialog.h"
#include "dialogs/CalibrationDialog.h"
#include "dialogs/DialogKit.h"
#include "dialogs/JogPanel.h"
#include "dialogs/QWinWidget.h"

#include <QApplication>
#include <QFileInfo>
#include <QMetaObject>
#include <QPointer>
#include <QThread>

// The dialogs' images are a resource of a static part: this call keeps them
// linked in (it must stand outside any namespace).
static void initDialogResources()
{
    Q_INIT_RESOURCE(dialogs);
}

namespace {

enum Kind { About, Jog, Calibration, KindCount };

const char *const kCallNames[KindCount] = {"showDialog", "qrx_show_jog_panel", "qrx_show_calibration"};

// One dialog of each kind at a time; touched only in the widgets' thread.
QPointer<QDialog> g_open[KindCount];

QString openInGuiThread(Kind kind, WId parent);

QDialog *create(Kind kind)
{
    switch (kind) {
    case About: {
        auto *about = new AboutDialog;
        QObject::connect(about, &AboutDialog::jogPanelWanted, [] { openInGuiThread(Jog, 0); });
        QObject::connect(about, &AboutDialog::calibrationWanted, [] { openInGuiThread(Calibration, 0); });
        return about;
    }
    case Jog:
        return new JogPanel;
    default:
        return new CalibrationDialog;
    }
}

QString openInGuiThread(Kind kind, WId parent)
{
    initDialogResources();
    qrx::dialogs::setRobotSource(&qrx::api::apiRobot);
    if (g_open[kind])
        delete g_open[kind].data(); // shown again, in the window asked for now
    QDialog *dialog = create(kind);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const QString reason = QWinWidget::show(dialog, parent);
    if (!reason.isEmpty()) {
        delete dialog;
        return reason;
    }
    g_open[kind] = dialog;
    return QString();
}

// Whether a display server is there to show widgets on. Qt ends the process
// when a platform cannot be opened, so a server that is not there must be
// seen before a QApplication is made.
bool displayAvailable()
{
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (!platform.isEmpty() && !platform.startsWith("xcb") && !platform.startsWith("wayland"))
        return true; // offscreen, vnc, ...: no server needed
    if (platform.startsWith("wayland"))
        return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    const QByteArray display = qgetenv("DISPLAY");
    if (display.isEmpty())
        return false;
    if (display.startsWith(':')) { // a local server: its socket must exist
        const QByteArray number = display.mid(1).split('.').value(0);
        return QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X") + QString::fromLatin1(number));
    }
    return true;
}

QCoreApplication *makeApplication(int &argc, char **argv)
{
    if (displayAvailable())
        return new QApplication(argc, argv);
    return new QCoreApplication(argc, argv);
}

const bool g_factorySet = [] {
    qrx::api::setApplicationFactory(&makeApplication);
    return true;
}();

int open(Kind kind, unsigned long handle)
{
    QObject *ownContext = qrx::api::libraryContext();
    QCoreApplication *app = QCoreApplication::instance();
    QString reason;
    if (!qobject_cast<QApplication *>(app)) {
        reason = ownContext ? QStringLiteral("no display to show a dialog on")
                            : QStringLiteral("the host's Qt application is not a widgets application (QApplication)");
    } else if (QThread::currentThread() == app->thread()) {
        reason = openInGuiThread(kind, WId(handle));
    } else {
        QMetaObject::invokeMethod(
            app, [&] { reason = openInGuiThread(kind, WId(handle)); }, Qt::BlockingQueuedConnection);
    }
    if (!reason.isEmpty()) {
        qCWarning(lcApi).noquote() << kCallNames[kind] << "shows nothing:" << reason;
        return 0;
    }
    return 1;
}

} // namespace

extern "C" {

int showDialog(unsigned long handle)
{
    return open(About, handle);
}

int qrx_show_jog_panel(unsigned long handle)
{
    return open(Jog, handle);
}

int qrx_show_calibration(unsigned long handle)
{
    return open(Calibration, handle);
}

} // extern "C"
