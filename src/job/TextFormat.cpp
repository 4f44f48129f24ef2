#include "job/TextFormat.h"

#include <array>
#include <charconv>

namespace qrx {

const char *const kUnknownCommandText = "#UNKNOWN COMMAND!!";

std::string num(int value)
{
    return std::to_string(value);
}

std::string num(double value)
{
    // General format with six significant digits, as an ostream writes by
    // default; to_chars ignores the C locale, which a Qt application sets
    // from the environment (a decimal comma would break the job file).
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 6);
    return std::string(buffer, result.ptr);
}

std::string num(bool value)
{
    return value ? "1" : "0";
}

const std::string &speedUnitText(int unit)
{
    static const std::array<std::string, 3> units = {" cm/s", " mm/s", " %"};
    static const std::string none;
    return unit >= 0 && unit < int(units.size()) ? units[std::size_t(unit)] : none;
}

} // namespace qrx
