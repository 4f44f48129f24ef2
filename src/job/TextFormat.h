#pragma once
// Number and unit texts of job-file lines. Numbers look as a standard output
// stream writes them by default: integers in decimal, doubles with at most
// six significant digits and no trailing zeros (50.0 -> "50", 0.5 -> "0.5").

#include <string>

namespace qrx {

std::string num(int value);
std::string num(double value);
std::string num(bool value); // "1" or "0"

// The speed-unit table, indexed by m_vUnit: 0 " cm/s", 1 " mm/s", 2 " %".
// Any other index has no text (empty).
const std::string &speedUnitText(int unit);

// A line of an unknown subtype.
extern const char *const kUnknownCommandText; // "#UNKNOWN COMMAND!!"

} // namespace qrx
