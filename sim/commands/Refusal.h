#pragma once
// How the simulated controller refuses a command it cannot carry out: an
// error message 0x2B03 {"data": text} to the asking client, as a controller
// reports a refused move or job. The host passes it to its error callback;
// it wakes no waiting call.

#include "common/JsonRead.h"
#include "common/Payload.h"
#include "sim/Session.h"

#include <json/value.h>

namespace qrxsim {

inline void refuse(Session &session, const char *text)
{
    Json::Value v(Json::objectValue);
    v["data"] = text;
    session.replyJson(0x2B03, v);
}

// The JSON object of a request; an empty object when it is none.
inline Json::Value requestObject(const QByteArray &payload)
{
    Json::Value request;
    if (!qrx::parsePayload(payload, request) || !request.isObject())
        return Json::Value(Json::objectValue);
    return request;
}

// A number (or true/false) read by the library's tolerant reader, else the
// fallback.
inline int requestInt(const Json::Value &request, const char *key, int fallback = 0)
{
    return qrx::jsonIntOr(request, key, fallback);
}

inline double requestReal(const Json::Value &request, const char *key, double fallback = 0.0)
{
    return qrx::jsonRealOr(request, key, fallback);
}

} // namespace qrxsim
