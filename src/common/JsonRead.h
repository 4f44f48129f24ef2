#pragma once
// Reading the members of a received payload the way every handler does:
// a missing member, or one of another kind, reads as 0, 0.0, false or the
// empty string; numbers are converted without ever throwing (jsoncpp's
// asInt() throws on a string or on a real outside the int range).

#include <QString>
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

} // namespace qrx
