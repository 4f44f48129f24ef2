#include "StrictJson.h"

#include "common/CompactJson.h"

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
    const auto end = errors.find('\n', errors.find('\n') + 1);
    error = errors.substr(0, end);
    for (char &c : error)
        if (c == '\n')
            c = ' ';
    while (!error.empty() && error.back() == ' ')
        error.pop_back();
    return false;
}

std::string jsonNumberText(const Json::Value &value)
{
    return qrx::compactJson(value.isIntegral() ? Json::Value(value.asLargestInt()) : value);
}

} // namespace qrxbridge
