#pragma once
// Reading a received payload: the text up to its first NUL byte, parsed by
// jsoncpp. A payload that is not JSON reads as false and leaves the value null.

#include <QByteArray>
#include <json/value.h>

namespace qrx {

bool parsePayload(const QByteArray &payload, Json::Value &out);

} // namespace qrx
