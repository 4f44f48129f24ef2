#pragma once
// Tolerant reading of instruction JSON, by the names the job model uses:
// the library's one reader (common/JsonRead.h) under them.

#include "common/JsonRead.h"

#include <json/value.h>
#include <string>

namespace qrx::jsonread {

inline const Json::Value &member(const Json::Value &json, const char *key) { return jsonMember(json, key); }

inline int toInt(const Json::Value &value) { return jsonNumber(value); }
inline double toDouble(const Json::Value &value) { return jsonRealValue(value); }
inline bool toBool(const Json::Value &value) { return jsonTruth(value); }
inline std::string toString(const Json::Value &value) { return jsonText(value); }

inline int readInt(const Json::Value &json, const char *key) { return toInt(member(json, key)); }
inline double readDouble(const Json::Value &json, const char *key) { return toDouble(member(json, key)); }
inline bool readBool(const Json::Value &json, const char *key) { return toBool(member(json, key)); }
inline std::string readString(const Json::Value &json, const char *key) { return toString(member(json, key)); }

} // namespace qrx::jsonread
