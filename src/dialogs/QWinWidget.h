#pragma once
// Hosts a dialog in a native window that the library does not own: on X11
// the host's window id. The dialog becomes a child window of the foreign
// window, so it moves and hides with it; handle 0 shows it as a window of
// its own.

#include <QString>
#include <QWidget>

class QWinWidget
{
public:
    // Shows dialog in the native window parent (0: its own window). Returns
    // the empty text when shown, else why it could not be.
    static QString show(QWidget *dialog, WId parent);
};
