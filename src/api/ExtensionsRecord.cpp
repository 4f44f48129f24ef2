// Session recording: every frame of the link and of the file connections
// into a pcap file (link/SessionRecorder.h), and the names of the codes
// that readers of a recording show beside them.

#include "api/qrx_host.h"
#include "link/SessionRecorder.h"
#include "protocol/Catalogue.h"

#include <string>
#include <unordered_map>

namespace {

// A row's name as the dissector shows it: "first / second" for the rows
// that carry a second notification of the same payload.
const char *shownName(const qrx::protocol::Message &message)
{
    if (!message.secondName)
        return message.name;
    static const std::unordered_map<const qrx::protocol::Message *, std::string> joined = [] {
        std::unordered_map<const qrx::protocol::Message *, std::string> names;
        for (const qrx::protocol::Message &m : qrx::protocol::incoming()) {
            if (m.secondName)
                names[&m] = std::string(m.name) + " / " + m.secondName;
        }
        return names;
    }();
    const auto it = joined.find(&message);
    return it != joined.end() ? it->second.c_str() : message.name;
}

} // namespace

extern "C" {

int qrx_record(const char *path)
{
    qrx::SessionRecorder &recorder = qrx::SessionRecorder::processWide();
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
    return message ? shownName(*message) : nullptr;
}

} // extern "C"
