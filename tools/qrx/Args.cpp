#include "Args.h"

#include "Exit.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>

namespace qrxcli {

Args Args::parse(const std::vector<std::string> &words, const std::set<std::string> &valueOptions,
                 const std::set<std::string> &flags)
{
    Args args;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string &w = words[i];
        // "-5" is a number, not an option.
        if (w.size() < 3 || w.compare(0, 2, "--") != 0) {
            args.m_words.push_back(w);
            continue;
        }
        std::string name = w.substr(2);
        std::string value;
        const std::size_t equals = name.find('=');
        const bool inlineValue = equals != std::string::npos;
        if (inlineValue) {
            value = name.substr(equals + 1);
            name = name.substr(0, equals);
        }
        if (flags.count(name) && !inlineValue) {
            args.m_options[name] = "";
        } else if (valueOptions.count(name)) {
            if (!inlineValue) {
                if (i + 1 >= words.size())
                    fail(ExitUsage, "--" + name + " needs a value");
                value = words[++i];
            }
            args.m_options[name] = value;
        } else {
            fail(ExitUsage, "unknown option --" + name);
        }
    }
    return args;
}

const std::string &Args::word(std::size_t index, const char *what) const
{
    if (index >= m_words.size())
        fail(ExitUsage, std::string("missing ") + what);
    return m_words[index];
}

void Args::expect(std::size_t min, std::size_t max, const char *synopsis) const
{
    if (m_words.size() < min || m_words.size() > max)
        fail(ExitUsage, std::string("usage: qrx ") + synopsis);
}

std::string Args::option(const std::string &name, const std::string &fallback) const
{
    const auto it = m_options.find(name);
    return it == m_options.end() ? fallback : it->second;
}

double Args::number(const std::string &name, double fallback) const
{
    const auto it = m_options.find(name);
    return it == m_options.end() ? fallback : toNumber(it->second, ("--" + name).c_str());
}

double Args::toNumber(const std::string &text, const char *what)
{
    char *end = nullptr;
    errno = 0;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || errno == ERANGE || !std::isfinite(value))
        fail(ExitUsage, std::string(what) + " is not a number: \"" + text + "\"");
    return value;
}

long Args::toInteger(const std::string &text, const char *what)
{
    char *end = nullptr;
    errno = 0;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno == ERANGE)
        fail(ExitUsage, std::string(what) + " is not a whole number: \"" + text + "\"");
    return value;
}

long choice(const std::string &text, const std::vector<std::string> &names, const char *what)
{
    for (std::size_t i = 0; i < names.size(); ++i)
        if (text == names[i] || text == std::to_string(i))
            return long(i);
    std::string list;
    for (const std::string &n : names)
        list += (list.empty() ? "" : ", ") + n;
    fail(ExitUsage, std::string(what) + " must be one of " + list + " (or 0.." + std::to_string(names.size() - 1) +
                        "), not \"" + text + "\"");
}

std::string nameOf(long value, const std::vector<std::string> &names)
{
    return value >= 0 && std::size_t(value) < names.size() ? names[std::size_t(value)] : "unknown";
}

} // namespace qrxcli
