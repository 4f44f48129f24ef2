#pragma once
// Tolerant reading of instruction JSON: a missing key, a non-object parent or
// a value of another kind reads as 0, 0.0, false or the empty string, and
// never throws.

#include <json/value.h>
#include <string>

namespace qrx::jsonread {

// The member, or a null value when json is not an object or lacks the key.
const Json::Value &member(const Json::Value &json, const char *key);

int toInt(const Json::Value &value);
double toDouble(const Json::Value &value);
bool toBool(const Json::Value &value);
std::string toString(const Json::Value &value);

inline int readInt(const Json::Value &json, const char *key) { return toInt(member(json, key)); }
inline double readDouble(const Json::Value &json, const char *key) { return toDouble(member(json, key)); }
inline bool readBool(const Json::Value &json, const char *key) { return toBool(member(json, key)); }
inline std::string readString(const Json::Value &json, const char *key) { return toString(member(json, key)); }

} // namespace qrx::jsonread
