// Session recording: every frame of the link and of the file connections
// into a pcap file (link/SessionRecorder.h), and the names of the codes
// that readers of a recording show beside them.

#include "api/qrx_host.h"
#include "link/SessionRecorder.h"
#include "protocol/Catalogue.h"

extern "C" {

int qrx_record(const char *path)
{
    qrx::SessionRecorder &recorder = qrx::SessionRecorder::instance();
    if (!path || !*path) {
        recorder.stop();
        return 0;
    }
    return recorder.start(QString::fromUtf8(path)) ? 0 : -1;
}

const char *qrx_code_name(int code, int from_controller, int file_connection)
{
    if (code < 0 || code > 0xFFFF)
        return nullptr;
    using qrx::protocol::Direction;
    const Direction direction = from_controller ? Direction::FromController : Direction::ToController;
    const qrx::protocol::Message *message = file_connection ? qrx::protocol::findFileCode(quint16(code), direction)
                                                            : qrx::protocol::find(quint16(code), direction);
    return message ? message->name : nullptr;
}

} // extern "C"
