#pragma once
// The state of one read of a job file: the scanner and the parser of the
// job language (JobScanner.l, JobGrammar.y) fill the program through this
// object, so two threads can read two files at once, each with its own
// driver.

#include "job/JobProgram.h"

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace qrx {

// The text of a token: a view into the buffer of the read.
struct JobTokenValue
{
    const char *text;
    int length;
    int line; // the line counter when the token was scanned
    std::string_view view() const { return std::string_view(text, std::size_t(length)); }
};

class JobReadDriver
{
public:
    // Diagnostics go to `out` in the loader's texts.
    explicit JobReadDriver(std::ostream &out);

    // Reads a whole job file text. The program, or null after a failure
    // (reported on `out`); nothing of a failed read is kept.
    std::unique_ptr<JobProgram> read(std::string_view text);

    // Where the last failure was: the line of the token that failed (0 for
    // the first line; the last line when the file ended too early) and the
    // message; -1 and empty after a successful read. (The report on `out`
    // gives the scanner's line counter, which has already moved past a line
    // end that failed.)
    int errorLine() const { return m_errorLine; }
    const std::string &errorMessage() const { return m_errorMessage; }
    // The message with what the parser met: `syntax error at "FOO 1"`,
    // `... at the end of the line`, `... at the end of the file`.
    std::string errorDescription() const;
    // Positions named by instructions but not declared: (line, name).
    const std::vector<std::pair<int, std::string>> &missingPositions() const { return m_missing; }

    // For the scanner and the grammar.
    int lineNo = 0;
    std::string_view token; // the current token, for the error report
    enum class TokenKind { Text, LineEnd, FileEnd };
    TokenKind tokenKind = TokenKind::Text; // what the scanner returned last
    int tokenLine = 0;                     // and on which line
    void error(const char *message);
    void error(const char *message, int line); // a line other than the counter's
    void setName(std::string_view name);
    void addValue(std::string_view text, bool number) { m_values.push_back({text, number}); }
    bool addRecord(std::string_view name, int line);
    bool addVariable(int kind, std::string_view name, std::string_view value); // 0 int, 1 float, 2 bool
    void setHeader(int key, std::string_view value); // 0 robot type, 1 double robot, 2 version, 3 date
    bool addInstruction(std::string_view text, int line);

private:
    struct Value
    {
        std::string_view text;
        bool number;
    };

    void report(const char *message, int line); // the loader's text on m_out

    std::ostream &m_out;
    std::unique_ptr<JobProgram> m_program;
    std::vector<Value> m_values;
    int m_errorLine = -1;
    std::string m_errorMessage;
    TokenKind m_errorKind = TokenKind::Text;
    std::string m_errorToken;
    std::vector<std::pair<int, std::string>> m_missing;
};

} // namespace qrx
