#pragma once
// Compact JSON text as the controller expects it.
//
// jsoncpp parses every payload, but its writers format reals differently
// from the controller, so the text is written here:
//  - object members in ascending key order (byte order), no spaces;
//  - reals as "%#.12f" with the trailing zeros cut so that exactly one
//    character stays after the last non-zero digit (1.5 -> "1.50",
//    2 -> "2.0", 0.125 -> "0.1250", -0.5 -> "-0.50");
//  - integers as integers, unsigned too; true, false, null;
//  - strings as raw UTF-8, escaping only the quote, the backslash and the
//    control characters below 0x20.
// All functions are pure.

#include <QByteArray>
#include <json/value.h>
#include <string>

namespace qrx {

// One real number in the controller's text form (also used for the
// position records of job files).
std::string formatReal(double value);

// The value as compact JSON text, without a line feed.
std::string compactJson(const Json::Value &value);

// The payload of a command: compact JSON text followed by one line feed,
// as UTF-8 bytes.
QByteArray jsonPayload(const Json::Value &value);

} // namespace qrx
