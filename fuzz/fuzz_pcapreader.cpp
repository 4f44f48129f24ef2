// Fuzz target: the reader of recorded sessions (pcap) fed any bytes. It
// must end with frames and an error text, never crash or read out of
// bounds; a file it reads without fault, written again, reads back the same.
#include "link/PcapSession.h"
#include "link/FrameCodec.h"

#include <QLoggingCategory>

#include <cstdint>
#include <cstdlib>

namespace {

bool oneConnection(const QVector<qrx::pcap::RecordedFrame> &frames)
{
    for (const auto &f : frames) {
        if (f.host.ipv4 != frames[0].host.ipv4 || f.host.port != frames[0].host.port ||
            f.controller.ipv4 != frames[0].controller.ipv4 || f.controller.port != frames[0].controller.port)
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool quiet = [] {
        QLoggingCategory::setFilterRules(QStringLiteral("qrx.*=false"));
        return true;
    }();
    (void)quiet;
    const QByteArray file(reinterpret_cast<const char *>(data), int(size));
    const qrx::pcap::Recording read = qrx::pcap::read(file);
    if (read.frames.size() > int(size / qrx::kFrameOverhead))
        std::abort(); // every frame takes at least its overhead in the file
    if (!read.error.isEmpty() || read.frames.isEmpty() || !oneConnection(read.frames))
        return 0;
    qrx::pcap::Writer writer;
    QByteArray again = qrx::pcap::Writer::fileHeader();
    for (const auto &f : read.frames)
        again += writer.frame(0, f.sender, f.host, f.controller, qrx::encodeFrame(f.code, f.payload));
    const qrx::pcap::Recording back = qrx::pcap::read(again);
    if (!back.error.isEmpty() || back.frames.size() != read.frames.size())
        std::abort();
    for (int i = 0; i < back.frames.size(); ++i) {
        if (back.frames[i].code != read.frames[i].code || back.frames[i].payload != read.frames[i].payload ||
            back.frames[i].sender != read.frames[i].sender)
            std::abort();
    }
    return 0;
}
