#include "StrictJson.h"

#include "common/CompactJson.h"

#include <cctype>
#include <json/reader.h>
#include <memory>

namespace qrxbridge {

bool parseStrictJson(const std::string &text, Json::Value &root, std::string &error)
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder.settings_["allowSpecialFloats"] = false;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    std::string errors;
    if (reader->parse(text.data(), text.data() + text.size(), &root, &errors))
        return true;
    // jsoncpp: "* Line 1, Column 9\n  Syntax error: ...\n" -> "line 1, column 9: syntax error: ..."
    std::string words;
    bool blank = false;
    for (const char c : errors.substr(errors.rfind("* ", 0) == 0 ? 2 : 0)) {
        if (c == '\n' || c == ' ') {
            blank = !words.empty();
            continue;
        }
        if (blank)
            words += words.back() == ',' ? " " : (std::isdigit(static_cast<unsigned char>(words.back())) ? ": " : " ");
        blank = false;
        words += c;
    }
    error = words;
    return false;
}

std::string jsonNumberText(const Json::Value &value)
{
    return qrx::compactJson(value.isIntegral() ? Json::Value(value.asLargestInt()) : value);
}

} // namespace qrxbridge
