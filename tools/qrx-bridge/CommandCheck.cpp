#include "Command.h"

#include "StrictJson.h"
#include "common/GlobalVarName.h"

#include <QString>
#include <climits>
#include <cmath>
#include <set>

namespace qrxbridge {

namespace {

// Reads the members of one request, remembering the first problem and the
// members it read, so that members nobody reads can be named.
class Fields
{
public:
    explicit Fields(const Json::Value &root) : m_root(root) {}

    bool has(const char *key) const { return m_root.isMember(key); }

    void integer(const char *key, int low, int high, int &out, bool required = true)
    {
        const Json::Value *v = take(key, required);
        if (!v)
            return;
        if (!v->isInt() || v->asInt() < low || v->asInt() > high)
            fail(quoted(key) + " must be a whole number from " + std::to_string(low) + " to " + std::to_string(high));
        else
            out = v->asInt();
    }

    void real(const char *key, double &out)
    {
        const Json::Value *v = take(key, true);
        if (!v)
            return;
        if (!v->isNumeric() || !std::isfinite(v->asDouble()))
            fail(quoted(key) + " must be a finite number");
        else
            out = v->asDouble();
    }

    void boolean(const char *key, bool &out)
    {
        const Json::Value *v = take(key, true);
        if (!v)
            return;
        if (!v->isBool())
            fail(quoted(key) + " must be true or false");
        else
            out = v->asBool();
    }

    void text(const char *key, std::string &out)
    {
        const Json::Value *v = take(key, true);
        if (!v)
            return;
        if (!v->isString())
            fail(quoted(key) + " must be text");
        else
            out = v->asString();
    }

    template <std::size_t N>
    void reals(const char *key, std::array<double, N> &out)
    {
        const Json::Value *v = take(key, true);
        if (!v)
            return;
        bool good = v->isArray() && v->size() == N;
        for (Json::ArrayIndex i = 0; good && i < N; ++i) {
            good = (*v)[i].isNumeric() && std::isfinite((*v)[i].asDouble()) && std::fabs((*v)[i].asDouble()) <= 1e6;
            out[i] = good ? (*v)[i].asDouble() : 0.0;
        }
        if (!good)
            fail(quoted(key) + " must be a list of " + std::to_string(N) + " finite numbers (at most 1000000 each)");
    }

    // One of the words; its index in out.
    template <class Enum, std::size_t N>
    void word(const char *key, const std::array<const char *, N> &words, Enum &out)
    {
        std::string given;
        text(key, given);
        if (!m_error.empty() || !m_root.isMember(key))
            return;
        for (std::size_t i = 0; i < N; ++i)
            if (given == words[i]) {
                out = Enum(i);
                return;
            }
        std::string list;
        for (std::size_t i = 0; i < N; ++i)
            list += (i ? (i + 1 == N ? " or " : ", ") : "") + quoted(words[i]);
        fail(quoted(key) + " must be " + list);
    }

    void fail(const std::string &message)
    {
        if (m_error.empty())
            m_error = message;
    }

    // The first problem, or a member that nothing read.
    std::string error() const
    {
        if (!m_error.empty())
            return m_error;
        for (const auto &key : m_root.getMemberNames())
            if (!m_read.count(key))
                return "unknown field " + quoted(key);
        return {};
    }

private:
    static std::string quoted(const std::string &key) { return '"' + key + '"'; }

    const Json::Value *take(const char *key, bool required)
    {
        m_read.insert(key);
        if (!m_root.isMember(key)) {
            if (required)
                fail(quoted(key) + " is missing");
            return nullptr;
        }
        return &m_root[key];
    }

    const Json::Value &m_root;
    std::set<std::string> m_read;
    std::string m_error;
};

void checkServo(Fields &f, Command &c) { f.boolean("on", c.on); }
void checkMode(Fields &f, Command &c) { f.integer("mode", 0, 2, c.value); }
void checkCoord(Fields &f, Command &c) { f.integer("coord", 0, 3, c.value); }
void checkSpeed(Fields &f, Command &c) { f.integer("speed", 1, 100, c.value); }

void checkMove(Fields &f, Command &c)
{
    f.word("kind", std::array<const char *, 2>{"joint", "linear"}, c.linear);
    f.reals("pos", c.pos);
    f.integer("speed", 1, 100, c.value);
    c.coord = c.linear ? 1 : 0;
    f.integer("coord", 0, 3, c.coord, false);
    f.integer("acc", 1, 100, c.acc, false);
    f.integer("dec", 1, 100, c.dec, false);
}

void checkIo(Fields &f, Command &c)
{
    c.analog = f.has("aout");
    if (c.analog == f.has("dout")) {
        f.fail("give either \"dout\" or \"aout\" with a port from 1 to 16");
        return;
    }
    f.integer(c.analog ? "aout" : "dout", 1, 16, c.port);
    if (c.analog) {
        f.real("value", c.number);
    } else {
        int status = 0;
        f.integer("value", 0, 1, status);
        c.number = status;
    }
}

void checkVar(Fields &f, Command &c)
{
    f.text("name", c.name);
    const auto name = qrx::GlobalVarName::parse(QString::fromStdString(c.name));
    if (f.has("name") && (c.name.size() != 5 || name.type == qrx::GlobalVarName::Other || !name.indexValid)) {
        f.fail("\"name\" must be GB, GI or GD followed by three digits, as GI003");
        return;
    }
    if (name.type == qrx::GlobalVarName::Bool) {
        int bit = 0;
        f.integer("value", 0, 1, bit);
        c.number = bit;
    } else if (name.type == qrx::GlobalVarName::Int) {
        int whole = 0;
        f.integer("value", INT_MIN, INT_MAX, whole);
        c.number = whole;
    } else {
        f.real("value", c.number);
    }
}

bool isJobName(const std::string &name)
{
    if (name.empty() || name.size() > 64)
        return false;
    for (const unsigned char ch : name)
        if (ch < 0x20 || ch == 0x7f || ch == '/' || ch == '\\')
            return false;
    return true;
}

void checkJob(Fields &f, Command &c)
{
    f.word("action", std::array<const char *, 4>{"run", "pause", "continue", "stop"}, c.action);
    if (c.action != Command::Run)
        return;
    f.text("name", c.name);
    if (f.has("name") && !isJobName(c.name))
        f.fail("\"name\" must be 1 to 64 bytes without control characters, / or \\");
}

struct VerbCheck
{
    const char *verb;
    Command::Verb kind;
    void (*check)(Fields &, Command &);
};

const VerbCheck kVerbs[] = {
    {"servo", Command::Servo, checkServo}, {"mode", Command::Mode, checkMode},
    {"coord", Command::Coord, checkCoord}, {"speed", Command::Speed, checkSpeed},
    {"move", Command::Move, checkMove},    {"io", Command::Io, checkIo},
    {"var", Command::Var, checkVar},       {"job", Command::Job, checkJob},
};

} // namespace

CheckedCommand checkCommand(const std::string &verb, const std::string &payload)
{
    CheckedCommand result;
    const VerbCheck *entry = nullptr;
    for (const auto &candidate : kVerbs)
        if (verb == candidate.verb)
            entry = &candidate;
    if (!entry) {
        result.error = "unknown verb \"" + verb + "\"; the verbs are servo, mode, coord, speed, move, io, var and job";
        return result;
    }
    if (payload.size() > kMaxPayload) {
        result.error = "the payload has " + std::to_string(payload.size()) + " bytes, more than the "
                       + std::to_string(kMaxPayload) + " allowed";
        return result;
    }
    Json::Value root;
    std::string error;
    if (!parseStrictJson(payload, root, error)) {
        result.error = "the payload is not valid JSON: " + error;
        return result;
    }
    if (!root.isObject()) {
        result.error = "the payload must be a JSON object";
        return result;
    }
    Fields fields(root);
    result.command.verb = entry->kind;
    entry->check(fields, result.command);
    result.error = fields.error();
    return result;
}

} // namespace qrxbridge
