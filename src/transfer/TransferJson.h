#pragma once
// The small JSON payloads of the file exchange: built compact with keys in
// order (one line feed at the end), and read leniently (a missing or
// non-text member reads as empty).

#include "common/CompactJson.h"

#include <QString>
#include <json/value.h>

#include <initializer_list>
#include <string>
#include <utility>

namespace qrx::transfer {

inline QByteArray jsonOf(std::initializer_list<std::pair<const char *, Json::Value>> members)
{
    Json::Value v(Json::objectValue);
    for (const auto &m : members)
        v[m.first] = m.second;
    return qrx::jsonPayload(v);
}

inline std::string utf8(const QString &s)
{
    return s.toUtf8().toStdString();
}

inline QString textOf(const Json::Value &v, const char *key)
{
    const Json::Value &member = v[key];
    return member.isString() ? QString::fromStdString(member.asString()) : QString();
}

// A message that carries "finish" ends its file, whatever the value, unless
// the value says no outright ("no" or false).
inline bool finishes(const Json::Value &v)
{
    if (!v.isObject() || !v.isMember("finish"))
        return false;
    const Json::Value &value = v["finish"];
    return !(value.isBool() && !value.asBool()) && !(value.isString() && value.asString() == "no");
}

} // namespace qrx::transfer
