// Fuzz target: a Robot fed received bytes without a socket. The bytes go
// through the frame decoder and the link's dispatcher into every handler
// (each one parses, caches, logs and emits on this thread). Its dictionary,
// fuzz_robot.dict, names the keys the handlers read.
#include "link/FrameCodec.h"
#include "link/TcpConnectModule.h"
#include "robot/Robot.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cstdint>

namespace {

Robot *robotUnderTest()
{
    static int argc = 1;
    static char name[] = "fuzz_robot";
    static char *argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static Robot *robot = [] {
        QLoggingCategory::setFilterRules(QStringLiteral("qrx.*=false"));
        return new Robot(QStringLiteral("127.0.0.1"));
    }();
    return robot;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Robot *robot = robotUnderTest();
    qrx::FrameDecoder decoder;
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    decoder.feed(bytes, [robot](quint16 command, const QByteArray &payload) {
        robot->link()->onReceivedData(command, payload);
    });
    // Queued notifications (listeners in this thread) run too.
    QCoreApplication::sendPostedEvents();
    return 0;
}
