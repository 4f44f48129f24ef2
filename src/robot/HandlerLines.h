#pragma once
// Log lines of the decoders: a translated text
// of the Robot context whose placeholders take the values of payload
// members in turn. Members are read as reals (a missing one reads 0) and
// written as QString::arg writes a double, so an integer shows as "6".

#include <QString>
#include <initializer_list>
#include <json/value.h>

namespace qrx {

QString robotText(const char *text);

QString fillLine(const char *text, const Json::Value &object, std::initializer_list<const char *> keys);

// Writes the line to the robot log category, as it is.
void writeRobotLine(const QString &line);

} // namespace qrx
