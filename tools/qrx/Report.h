#pragma once
// What a subcommand prints: named fields in order, written as aligned
// "name: value" lines, or as one JSON object with --json.

#include <string>
#include <utility>
#include <vector>

namespace qrxcli {

class Report
{
public:
    Report &number(const std::string &key, double value);
    Report &integer(const std::string &key, long value);
    Report &text(const std::string &key, const std::string &value);
    Report &flag(const std::string &key, bool value);
    Report &numbers(const std::string &key, const std::vector<double> &values);
    // A coded value: the text shows "name (code)", JSON carries both as
    // key (the code) and key_name.
    Report &coded(const std::string &key, long code, const std::string &name);

    std::string asText() const;
    std::string asJson() const; // one line, no trailing newline
    bool empty() const { return m_fields.empty(); }

private:
    struct Field
    {
        std::string key;
        std::string text;
        std::string json;
    };
    std::vector<Field> m_fields;
};

// Writes the report in the form --json selected, followed by a newline.
void print(const Report &report);
void setJsonOutput(bool on);
bool jsonOutput();

// A real number as text: shortest form that reads back the same value.
std::string formatNumber(double value);
std::string jsonString(const std::string &text);

} // namespace qrxcli
