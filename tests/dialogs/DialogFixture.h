#pragma once
// What the dialog tests share: finding the dialogs the library opened, their
// widgets by object name, and the folder the rendered dialogs go to.

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QImage>
#include <QtTest>

namespace dialogtest {

// The open dialog with that object name ("JogPanel", ...), or null.
inline QDialog *openDialog(const char *name)
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w->objectName() == QLatin1String(name) && w->isVisible())
            return qobject_cast<QDialog *>(w);
    }
    return nullptr;
}

inline void closeAll()
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (qobject_cast<QDialog *>(w))
            w->close();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

template <class T>
T *child(QDialog *dialog, const char *name)
{
    return dialog ? dialog->findChild<T *>(QLatin1String(name)) : nullptr;
}

// Where rendered dialogs are kept for a reviewer (QRX_TEST_OUTPUT, else the
// working directory).
inline QDir outputDir()
{
    QDir dir(qEnvironmentVariable("QRX_TEST_OUTPUT", QDir::currentPath()));
    dir.mkpath(QStringLiteral("."));
    return dir;
}

// An image that shows something: more than a handful of distinct colours.
inline int colourCount(const QImage &image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2)
            colours.insert(image.pixel(x, y));
    }
    return colours.size();
}

} // namespace dialogtest
