#include "Report.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iostream>

namespace qrxcli {

namespace {

bool g_json = false;

std::string joined(const std::vector<double> &values, const char *separator)
{
    std::string out;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i)
            out += separator;
        out += formatNumber(values[i]);
    }
    return out;
}

} // namespace

std::string formatNumber(double value)
{
    if (!std::isfinite(value))
        return "0";
    // The shortest text that reads back as the same value.
    char buffer[64];
    const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, r.ptr);
}

std::string jsonString(const std::string &text)
{
    std::string out = "\"";
    for (const unsigned char c : text) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (c < 0x20) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
                out += escaped;
            } else {
                out += char(c);
            }
        }
    }
    return out + "\"";
}

Report &Report::number(const std::string &key, double value)
{
    m_fields.push_back({key, formatNumber(value), formatNumber(value)});
    return *this;
}

Report &Report::integer(const std::string &key, long value)
{
    m_fields.push_back({key, std::to_string(value), std::to_string(value)});
    return *this;
}

Report &Report::text(const std::string &key, const std::string &value)
{
    m_fields.push_back({key, value, jsonString(value)});
    return *this;
}

Report &Report::flag(const std::string &key, bool value)
{
    m_fields.push_back({key, value ? "yes" : "no", value ? "true" : "false"});
    return *this;
}

Report &Report::numbers(const std::string &key, const std::vector<double> &values)
{
    m_fields.push_back({key, joined(values, " "), "[" + joined(values, ",") + "]"});
    return *this;
}

Report &Report::coded(const std::string &key, long code, const std::string &name)
{
    m_fields.push_back({key, name + " (" + std::to_string(code) + ")", std::to_string(code)});
    m_fields.push_back({key + "_name", std::string(), jsonString(name)});
    return *this;
}

std::string Report::asText() const
{
    std::size_t width = 0;
    for (const Field &f : m_fields)
        if (!f.text.empty())
            width = std::max(width, f.key.size());
    std::string out;
    for (const Field &f : m_fields) {
        if (f.text.empty())
            continue;
        out += f.key + ":" + std::string(width - f.key.size() + 1, ' ') + f.text + "\n";
    }
    return out;
}

std::string Report::asJson() const
{
    std::string out = "{";
    for (std::size_t i = 0; i < m_fields.size(); ++i) {
        if (i)
            out += ",";
        out += jsonString(m_fields[i].key) + ":" + m_fields[i].json;
    }
    return out + "}";
}

void print(const Report &report)
{
    if (g_json)
        std::cout << report.asJson() << "\n";
    else
        std::cout << report.asText();
    std::cout.flush();
}

void setJsonOutput(bool on)
{
    g_json = on;
}

bool jsonOutput()
{
    return g_json;
}

} // namespace qrxcli
