#pragma once
// The one tolerant JSON reader of the library and the simulator: reading
// the members of a received payload, an instruction's parameters or a
// request, a missing member, or one of another kind, reads as 0, 0.0, false
// or the empty string (or the caller's fallback); numbers are converted
// without ever throwing (jsoncpp's asInt() throws on a string or on a real
// outside the int range). An integer read of a real truncates towards zero
// and clamps to the int range; true and false read as 1 and 0.

#include <QString>
#include <initializer_list>
#include <string>
#include <json/value.h>

namespace qrx {

// The member itself; a shared null value when it is missing or the object
// is none.
const Json::Value &jsonMember(const Json::Value &object, const char *key);

int jsonInt(const Json::Value &object, const char *key);
double jsonReal(const Json::Value &object, const char *key);
bool jsonBool(const Json::Value &object, const char *key);
QString jsonString(const Json::Value &object, const char *key);

// Copies the leading elements of the array member into out, element by
// element, at most n of them; returns how many were copied. Elements that
// are not numbers read as 0.0. A missing member copies nothing.
int jsonReals(const Json::Value &object, const char *key, double *out, int n);

// The same for a value that is not an object member.
int jsonNumber(const Json::Value &value);
double jsonRealValue(const Json::Value &value);
// true for true and for a non-zero number.
bool jsonTruth(const Json::Value &value);
// A string as it is, a number or true/false as its JSON text, else empty.
std::string jsonText(const Json::Value &value);

// A member that is a number (or true/false), else the fallback.
int jsonIntOr(const Json::Value &object, const char *key, int fallback);
double jsonRealOr(const Json::Value &object, const char *key, double fallback);

// True when the value is an object that holds at least one of the keys (a
// list or an array of key names) as a member that is not null.
template <typename Keys>
bool hasAnyKey(const Json::Value &object, const Keys &keys)
{
    if (!object.isObject())
        return false;
    for (const char *key : keys) {
        if (!jsonMember(object, key).isNull())
            return true;
    }
    return false;
}

inline bool hasAnyKey(const Json::Value &object, std::initializer_list<const char *> keys)
{
    return hasAnyKey<std::initializer_list<const char *>>(object, keys);
}

} // namespace qrx
