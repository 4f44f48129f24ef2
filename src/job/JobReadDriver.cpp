#include "job/JobReadDriver.h"

#include "job/InstructionTable.h"
#include "job/LineForms.h"

#include <charconv>
#include <cstdlib>
#include <limits>
#include <stdexcept>

typedef void *yyscan_t;
int qrxjobparse(qrx::JobReadDriver &driver, yyscan_t scanner);
int qrxjoblex_init_extra(qrx::JobReadDriver *driver, yyscan_t *scanner);
int qrxjoblex_destroy(yyscan_t scanner);
struct yy_buffer_state;
yy_buffer_state *qrxjob_scan_bytes(const char *bytes, int length, yyscan_t scanner);

namespace qrx {

namespace {

bool toDouble(std::string_view text, double &value)
{
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

} // namespace

JobReadDriver::JobReadDriver(std::ostream &out)
    : m_out(out)
{
}

std::unique_ptr<JobProgram> JobReadDriver::read(std::string_view text)
{
    m_program = std::make_unique<JobProgram>();
    m_program->instructions.clear(); // NOP and END come from the file
    m_values.clear();
    m_missing.clear();
    m_errorLine = -1;
    m_errorMessage.clear();
    lineNo = 0;
    token = {};
    tokenKind = TokenKind::Text;
    tokenLine = 0;
    m_errorToken.clear();
    if (text.size() > std::size_t(std::numeric_limits<int>::max() / 2)) {
        error("memory exhausted");
        m_program.reset();
        return nullptr;
    }
    yyscan_t scanner = nullptr;
    int result = 1;
    if (qrxjoblex_init_extra(this, &scanner) == 0) {
        try {
            qrxjob_scan_bytes(text.data(), int(text.size()), scanner);
            result = qrxjobparse(*this, scanner);
        } catch (const std::exception &) {
            // a fatal scanner error, already written
            result = 1;
        }
        qrxjoblex_destroy(scanner);
    }
    if (result != 0 || m_program->instructions.size() < 2) {
        if (m_errorLine < 0) {
            m_errorLine = tokenLine;
            m_errorMessage = "syntax error";
            m_errorKind = tokenKind;
            m_errorToken = std::string(token);
        }
        m_program.reset();
        return nullptr;
    }
    return std::move(m_program);
}

void JobReadDriver::error(const char *message)
{
    report(message, lineNo);
    m_errorLine = tokenLine;
    m_errorKind = tokenKind;
    m_errorToken = std::string(token);
}

void JobReadDriver::error(const char *message, int line)
{
    report(message, line);
    m_errorLine = line;
    m_errorKind = TokenKind::Text;
    m_errorToken.clear();
}

std::string JobReadDriver::errorDescription() const
{
    if (!m_errorToken.empty() && m_errorToken.back() == '\r')
        return m_errorMessage + " at a carriage return (lines end with a line feed alone)";
    if (!m_errorToken.empty())
        return m_errorMessage + " at \"" + m_errorToken + '"';
    if (m_errorKind == TokenKind::LineEnd)
        return m_errorMessage + " at the end of the line";
    if (m_errorKind == TokenKind::FileEnd)
        return m_errorMessage + " at the end of the file";
    return m_errorMessage;
}

void JobReadDriver::report(const char *message, int line)
{
    m_errorMessage = message ? message : "";
    m_out << "[KVRSM]Parse error:";
    if (message)
        m_out << message;
    m_out << " at line no: " << line << '\n';
    if (!token.empty())
        m_out << "text : " << token << '\n';
    m_out.flush();
}

void JobReadDriver::setName(std::string_view name)
{
    m_program->name = std::string(name);
}

bool JobReadDriver::addRecord(std::string_view name, int line)
{
    std::vector<Value> values;
    values.swap(m_values);
    if (values.size() == 1) { // a named value
        m_program->namedValues[std::string(name)] = std::string(values.front().text);
        return true;
    }
    if (values.size() != std::size_t(RobotPos::kCoordinates)) {
        const std::string message = "position " + std::string(name) + " has " + std::to_string(values.size())
            + " coordinates, not " + std::to_string(RobotPos::kCoordinates);
        error(message.c_str(), line);
        return false;
    }
    auto position = std::make_unique<RobotPos>();
    position->key = std::string(name);
    position->ctype = 1; // the file holds only positions of written types
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i].number && toDouble(values[i].text, position->data[i]))
            continue;
        position->paraVarData[i] = std::make_unique<ParaVarCommand>();
        position->paraVarData[i]->value = 1;
        position->paraVarData[i]->varname = std::string(values[i].text);
    }
    m_program->positions.insert(std::move(position));
    return true;
}

bool JobReadDriver::addVariable(int kind, std::string_view name, std::string_view value)
{
    double number = 0.0;
    if (!toDouble(value, number)) {
        error("syntax error");
        return false;
    }
    const std::string key(name);
    if (kind == 0)
        m_program->intVariables[key] = int(std::strtol(std::string(value).c_str(), nullptr, 10));
    else if (kind == 1)
        m_program->floatVariables[key] = number;
    else
        m_program->boolVariables[key] = number != 0.0;
    return true;
}

void JobReadDriver::setHeader(int key, std::string_view value)
{
    std::string &target = key == 0 ? m_program->robotType
        : key == 1                 ? m_program->doubleRobot
        : key == 2                 ? m_program->version
                                   : m_program->date;
    target = std::string(value);
}

bool JobReadDriver::addInstruction(std::string_view line, int lineNumber)
{
    if (line == "NOP" || line == "END") {
        m_program->instructions.push_back(std::make_unique<DummyCommand>(31, std::string(line)));
        return true;
    }
    if (line == "#UNKNOWN COMMAND!!" || line == "#UNKNOWN COMMAND!! DISABLE") {
        auto placeholder = std::make_unique<DummyCommand>(31);
        placeholder->logout = line.size() > 18;
        m_program->instructions.push_back(std::move(placeholder));
        return true;
    }
    std::string missing;
    auto command = parseInstructionLine(line, typesOfLine(line), &m_program->positions, &missing);
    if (!command) {
        error("syntax error", lineNumber);
        m_errorToken = std::string(line);
        return false;
    }
    if (!missing.empty()) {
        m_out << missing << "] NOT FOUND!" << '\n';
        m_missing.emplace_back(lineNumber, missing);
    }
    m_program->instructions.push_back(std::move(command));
    return true;
}

} // namespace qrx
