// Saves the whole X11 screen to a PNG file: x11_screenshot <file>.
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    if (argc != 2 || !QGuiApplication::primaryScreen())
        return 2;
    return QGuiApplication::primaryScreen()->grabWindow(0).save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}
