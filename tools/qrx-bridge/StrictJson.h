#pragma once
// Strict JSON reading for what reaches the bridge from outside (commands,
// config files): one document, no comments, no duplicate keys, no NaN or
// Infinity words, nothing after the value.

#include <json/value.h>
#include <string>

namespace qrxbridge {

// false with error set to jsoncpp's own words (first line) when text is not
// one strict JSON document.
bool parseStrictJson(const std::string &text, Json::Value &root, std::string &error);

// A number member as text, integers without a fraction (for config values
// read by the same setters as the command line).
std::string jsonNumberText(const Json::Value &value);

} // namespace qrxbridge
