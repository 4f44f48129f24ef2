#include "common/JsonRead.h"

#include <cmath>
#include <limits>

namespace qrx {

const Json::Value &jsonMember(const Json::Value &object, const char *key)
{
    static const Json::Value &null = *new Json::Value; // never destroyed: read by link threads at exit
    if (!object.isObject())
        return null;
    const Json::Value *found = object.find(key, key + std::char_traits<char>::length(key));
    return found ? *found : null;
}

double jsonRealValue(const Json::Value &value)
{
    if (value.isBool())
        return value.asBool() ? 1.0 : 0.0;
    if (value.isNumeric())
        return value.asDouble();
    return 0.0;
}

int jsonNumber(const Json::Value &value)
{
    if (value.isInt())
        return value.asInt();
    if (value.isBool())
        return value.asBool() ? 1 : 0;
    if (!value.isNumeric())
        return 0;
    const double real = value.asDouble();
    if (std::isnan(real))
        return 0;
    if (real >= double(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (real <= double(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return int(real);
}

int jsonInt(const Json::Value &object, const char *key)
{
    return jsonNumber(jsonMember(object, key));
}

double jsonReal(const Json::Value &object, const char *key)
{
    return jsonRealValue(jsonMember(object, key));
}

bool jsonTruth(const Json::Value &value)
{
    if (value.isBool())
        return value.asBool();
    return jsonNumber(value) != 0;
}

bool jsonBool(const Json::Value &object, const char *key)
{
    return jsonTruth(jsonMember(object, key));
}

std::string jsonText(const Json::Value &value)
{
    if (value.isString() || value.isNumeric() || value.isBool())
        return value.asString();
    return std::string();
}

int jsonIntOr(const Json::Value &object, const char *key, int fallback)
{
    const Json::Value &value = jsonMember(object, key);
    return value.isNumeric() || value.isBool() ? jsonNumber(value) : fallback;
}

double jsonRealOr(const Json::Value &object, const char *key, double fallback)
{
    const Json::Value &value = jsonMember(object, key);
    return value.isNumeric() ? jsonRealValue(value) : fallback;
}

QString jsonString(const Json::Value &object, const char *key)
{
    const Json::Value &value = jsonMember(object, key);
    if (!value.isString())
        return QString();
    const char *begin = nullptr;
    const char *end = nullptr;
    value.getString(&begin, &end);
    return QString::fromUtf8(begin, int(end - begin));
}

int jsonReals(const Json::Value &object, const char *key, double *out, int n)
{
    const Json::Value &array = jsonMember(object, key);
    if (!array.isArray())
        return 0;
    const Json::ArrayIndex size = array.size();
    int copied = 0;
    for (Json::ArrayIndex i = 0; i < size && copied < n; ++i)
        out[copied++] = jsonRealValue(array[i]);
    return copied;
}

} // namespace qrx
