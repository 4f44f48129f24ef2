#pragma once
// The words of one subcommand: its positional words and its --options, with
// readers that throw a usage Failure naming what was wrong.

#include <map>
#include <set>
#include <string>
#include <vector>

namespace qrxcli {

class Args
{
public:
    // Splits words into positional words and options. valueOptions take the
    // next word as their value ("--for 2" or "--for=2"); flags take none.
    static Args parse(const std::vector<std::string> &words, const std::set<std::string> &valueOptions,
                      const std::set<std::string> &flags);

    std::size_t count() const { return m_words.size(); }
    const std::string &word(std::size_t index, const char *what) const;
    // Fails unless there are between min and max positional words.
    void expect(std::size_t min, std::size_t max, const char *synopsis) const;

    bool has(const std::string &option) const { return m_options.count(option) != 0; }
    std::string option(const std::string &option, const std::string &fallback) const;
    double number(const std::string &option, double fallback) const;

    static double toNumber(const std::string &text, const char *what);
    static long toInteger(const std::string &text, const char *what);

private:
    std::vector<std::string> m_words;
    std::map<std::string, std::string> m_options;
};

// Maps a name ("teach") or its number ("0") to the number of a small table
// of names indexed by value; fails with the list of names.
long choice(const std::string &text, const std::vector<std::string> &names, const char *what);
// The name of value in names, or "unknown".
std::string nameOf(long value, const std::vector<std::string> &names);

} // namespace qrxcli
