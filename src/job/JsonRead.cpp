#include "job/JsonRead.h"

namespace qrx::jsonread {

const Json::Value &member(const Json::Value &json, const char *key)
{
    static const Json::Value null;
    if (!json.isObject())
        return null;
    const Json::Value *found = json.find(key, key + std::char_traits<char>::length(key));
    return found ? *found : null;
}

int toInt(const Json::Value &value)
{
    return value.isConvertibleTo(Json::intValue) && !value.isString() ? value.asInt() : 0;
}

double toDouble(const Json::Value &value)
{
    return value.isNumeric() || value.isBool() ? value.asDouble() : 0.0;
}

bool toBool(const Json::Value &value)
{
    return value.isNumeric() || value.isBool() ? value.asBool() : false;
}

std::string toString(const Json::Value &value)
{
    if (value.isString())
        return value.asString();
    return value.isNumeric() || value.isBool() ? value.asString() : std::string();
}

} // namespace qrx::jsonread
