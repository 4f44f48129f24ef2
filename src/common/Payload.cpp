#include "common/Payload.h"

#include <json/reader.h>
#include <cstring>
#include <exception>
#include <memory>

namespace qrx {

bool parsePayload(const QByteArray &payload, Json::Value &out)
{
    const char *begin = payload.constData();
    const void *nul = std::memchr(begin, '\0', static_cast<std::size_t>(payload.size()));
    const char *end = nul ? static_cast<const char *>(nul) : begin + payload.size();

    // Never destroyed: a link thread may still parse a report while the
    // process exits.
    static const Json::CharReaderBuilder &builder = *new Json::CharReaderBuilder([] {
        Json::CharReaderBuilder b;
        b["collectComments"] = false;
        // The CharReader's defaults take "[1,2,]" and "{\"a\":1,}"; neither
        // JSON nor Json::Reader does.
        b["allowTrailingCommas"] = false;
        return b;
    }());
    // One reader per thread: building one reads a dozen settings by name,
    // which costs more than parsing a short report. A parse never starts
    // another on the same thread, so the reader is never shared.
    thread_local const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    out = Json::Value();
    bool parsed = false;
    try {
        parsed = reader->parse(begin, end, &out, nullptr);
    } catch (const std::exception &) {
        // jsoncpp throws on nesting deeper than its stack limit; for the
        // link thread that is one more malformed payload.
        parsed = false;
    }
    if (!parsed) {
        out = Json::Value();
        return false;
    }
    return true;
}

} // namespace qrx
