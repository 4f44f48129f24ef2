// Fuzz target: the frame decoder fed a hostile byte stream in pieces.
// The first input byte sets the piece size; every frame that comes out must
// encode back to bytes that decode to the same frame.
#include "link/FrameCodec.h"

#include <QLoggingCategory>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool quiet = [] {
        QLoggingCategory::setFilterRules(QStringLiteral("qrx.*=false"));
        return true;
    }();
    (void)quiet;
    if (size == 0)
        return 0;
    const size_t piece = size_t(data[0] % 64) + 1;
    qrx::FrameDecoder decoder;
    for (size_t at = 1; at < size; at += piece) {
        const size_t n = at + piece <= size ? piece : size - at;
        const QByteArray bytes(reinterpret_cast<const char *>(data + at), int(n));
        for (const qrx::Frame &frame : decoder.feed(bytes)) {
            qrx::FrameDecoder again;
            const QVector<qrx::Frame> back = again.feed(qrx::encodeFrame(frame.command, frame.payload));
            if (back.size() != 1 || back[0].command != frame.command || back[0].payload != frame.payload)
                std::abort();
        }
    }
    return 0;
}
