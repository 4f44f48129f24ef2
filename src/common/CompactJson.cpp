#include "common/CompactJson.h"

#include <charconv>
#include <cstring>

namespace qrx {

std::string formatReal(double value)
{
    // "%#.12f", but independent of the C locale: a host whose locale
    // writes a decimal comma must still send "2.50" to the controller.
    char buffer[400];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer - 1, value,
                                      std::chars_format::fixed, 12);
    *result.ptr = '\0';
    const std::size_t length = std::strlen(buffer);
    if (length == 0 || buffer[length - 1] != '0')
        return buffer;

    // Walk back over the trailing zeros to the last non-zero character.
    std::size_t lastNonZero = length - 1;
    while (lastNonZero > 0 && buffer[lastNonZero] == '0')
        --lastNonZero;
    // Only cut when everything between the decimal point and the end is a
    // digit; anything else found first keeps the text unchanged.
    for (std::size_t i = lastNonZero + 1; i-- > 0;) {
        const char c = buffer[i];
        if (c == '.') {
            buffer[lastNonZero + 2] = '\0';
            return buffer;
        }
        if (c < '0' || c > '9')
            return buffer;
    }
    return buffer;
}

namespace {

void writeString(std::string &out, const char *begin, const char *end)
{
    static const char hex[] = "0123456789abcdef";
    out += '"';
    for (const char *p = begin; p != end; ++p) {
        const unsigned char c = static_cast<unsigned char>(*p);
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\b': out += "\\b"; break;
        case '\f': out += "\\f"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (c < 0x20) {
                out += "\\u00";
                out += hex[c >> 4];
                out += hex[c & 0xF];
            } else {
                out += static_cast<char>(c);
            }
        }
    }
    out += '"';
}

void write(std::string &out, const Json::Value &value)
{
    switch (value.type()) {
    case Json::nullValue:
        out += "null";
        break;
    case Json::intValue:
        out += std::to_string(value.asLargestInt());
        break;
    case Json::uintValue:
        out += std::to_string(value.asLargestUInt());
        break;
    case Json::realValue:
        out += formatReal(value.asDouble());
        break;
    case Json::booleanValue:
        out += value.asBool() ? "true" : "false";
        break;
    case Json::stringValue: {
        const char *begin = nullptr;
        const char *end = nullptr;
        if (value.getString(&begin, &end))
            writeString(out, begin, end);
        else
            out += "\"\"";
        break;
    }
    case Json::arrayValue: {
        out += '[';
        const Json::ArrayIndex size = value.size();
        for (Json::ArrayIndex i = 0; i < size; ++i) {
            if (i)
                out += ',';
            write(out, value[i]);
        }
        out += ']';
        break;
    }
    case Json::objectValue: {
        // jsoncpp keeps members in a map ordered by key bytes.
        out += '{';
        bool first = true;
        for (auto it = value.begin(); it != value.end(); ++it) {
            if (!first)
                out += ',';
            first = false;
            const char *keyEnd = nullptr;
            const char *key = it.memberName(&keyEnd);
            writeString(out, key, keyEnd);
            out += ':';
            write(out, *it);
        }
        out += '}';
        break;
    }
    }
}

} // namespace

std::string compactJson(const Json::Value &value)
{
    std::string out;
    write(out, value);
    return out;
}

QByteArray jsonPayload(const Json::Value &value)
{
    std::string text = compactJson(value);
    text += '\n';
    return QByteArray(text.data(), static_cast<int>(text.size()));
}

} // namespace qrx
