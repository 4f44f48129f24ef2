#include "dialogs/QWinWidget.h"

#include <QObject>
#include <QWindow>

QString QWinWidget::show(QWidget *dialog, WId parent)
{
    if (parent == 0) {
        dialog->show();
        dialog->activateWindow();
        return QString();
    }
    // A foreign window stands for the host's window; it is dropped with the
    // dialog and never destroys the host's window itself.
    QWindow *foreign = QWindow::fromWinId(parent);
    if (!foreign)
        return QStringLiteral("the window system cannot host a dialog in a foreign window");
    QObject::connect(dialog, &QObject::destroyed, foreign, &QObject::deleteLater);
    dialog->setAttribute(Qt::WA_NativeWindow);
    dialog->winId(); // creates the dialog's native window
    dialog->windowHandle()->setParent(foreign);
    dialog->move(0, 0);
    dialog->show();
    return QString();
}
