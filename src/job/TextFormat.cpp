#include "job/TextFormat.h"

#include <array>
#include <cstdio>

namespace qrx {

const char *const kUnknownCommandText = "#UNKNOWN COMMAND!!";

std::string num(int value)
{
    return std::to_string(value);
}

std::string num(double value)
{
    // "%g" with the default precision of six is what an ostream writes.
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%g", value);
    return buffer;
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
