#include "Options.h"

#include "StrictJson.h"

#include <cmath>
#include <set>

namespace qrxbridge {

namespace {

// One option's value as text, applied to the options; error text or empty.
using Setter = std::string (*)(Options &, const std::string &);

bool parsePort(const std::string &text, int &port)
{
    if (text.empty() || text.size() > 5 || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    port = std::stoi(text);
    return port >= 1 && port <= 65535;
}

// HOST[:PORT] into host and port (port untouched when not given).
bool splitHostPort(const std::string &text, std::string &host, int &port)
{
    const auto colon = text.rfind(':');
    host = text.substr(0, colon);
    if (colon != std::string::npos && !parsePort(text.substr(colon + 1), port))
        return false;
    return !host.empty() && host.find_first_of(" /:") == std::string::npos;
}

std::string setBroker(Options &o, const std::string &v)
{
    int port = 0;
    if (!splitHostPort(v, o.brokerHost, port))
        return "--broker wants HOST or HOST:PORT, not \"" + v + "\"";
    o.brokerPort = port;
    return {};
}

std::string setLevel(std::string &field, const char *what, const std::string &v)
{
    if (!isTopicLevel(v))
        return std::string(what) + " \"" + v + "\" is not 1 to 64 characters of A-Z a-z 0-9 _ . -";
    field = v;
    return {};
}

std::string setCell(Options &o, const std::string &v) { return setLevel(o.cell, "--cell", v); }
std::string setId(Options &o, const std::string &v) { return setLevel(o.id, "--id", v); }

std::string addController(Options &o, const std::string &v)
{
    const auto equals = v.find('=');
    ControllerAddress c;
    if (equals == std::string::npos || !isTopicLevel(v.substr(0, equals))
        || !splitHostPort(v.substr(equals + 1), c.ip, c.port))
        return "--controller wants NAME=IP[:PORT] with a NAME of A-Z a-z 0-9 _ . -, not \"" + v + "\"";
    c.name = v.substr(0, equals);
    o.controllers.push_back(c);
    return {};
}

std::string setUsername(Options &o, const std::string &v) { o.username = v; return {}; }
std::string setPasswordFile(Options &o, const std::string &v) { o.passwordFile = v; return {}; }
std::string setTlsCa(Options &o, const std::string &v) { o.tlsCa = v; return {}; }

std::string setRate(Options &o, const std::string &v)
{
    char *end = nullptr;
    const double rate = std::strtod(v.c_str(), &end);
    if (v.empty() || *end != '\0' || !std::isfinite(rate) || rate < 0.1 || rate > 50.0)
        return "--rate wants a number of messages a second from 0.1 to 50, not \"" + v + "\"";
    o.rate = rate;
    return {};
}

std::string setQueue(Options &o, const std::string &v)
{
    int limit = 0;
    if (!parsePort(v, limit) || limit > 1000)
        return "--queue wants a number from 1 to 1000, not \"" + v + "\"";
    o.queueLimit = limit;
    return {};
}

struct ValueOption
{
    const char *name;
    Setter set;
};

// The options that take a value; "config" is read before the others.
const ValueOption kValueOptions[] = {
    {"broker", setBroker},         {"cell", setCell},     {"id", setId},
    {"controller", addController}, {"username", setUsername},
    {"password-file", setPasswordFile}, {"tls-ca", setTlsCa},
    {"rate", setRate},             {"queue", setQueue},
};

const ValueOption *valueOption(const std::string &name)
{
    for (const auto &option : kValueOptions)
        if (name == option.name)
            return &option;
    return nullptr;
}

// A config file's members through the same setters as the command line.
std::string applyConfig(Options &o, const std::string &path, const std::string &text)
{
    Json::Value root;
    std::string error;
    if (!parseStrictJson(text, root, error) || !root.isObject())
        return "the config file " + path + " is not a JSON object: " + (error.empty() ? "another kind of value" : error);
    for (const auto &key : root.getMemberNames()) {
        const Json::Value &value = root[key];
        const std::string where = "in " + path + ", \"" + key + "\"";
        if (key == "allow-commands") {
            if (!value.isBool())
                return where + " must be true or false";
            o.allowCommands = value.asBool();
            continue;
        }
        const ValueOption *option = valueOption(key);
        if (!option)
            return where + " is not a field of the config";
        std::vector<Json::Value> items;
        if (key == "controller" && value.isArray())
            items.assign(value.begin(), value.end());
        else
            items.push_back(value);
        for (const auto &item : items) {
            if (!item.isString() && !item.isNumeric())
                return where + " must be text" + (key == "controller" ? " or a list of texts" : "");
            const std::string message = option->set(o, item.isString() ? item.asString() : jsonNumberText(item));
            if (!message.empty())
                return where + ": " + message;
        }
    }
    return {};
}

std::string finalCheck(const Options &o)
{
    if (o.cell.empty() || o.id.empty())
        return "--cell and --id are required";
    if (o.controllers.empty())
        return "at least one --controller NAME=IP[:PORT] is required";
    std::set<std::string> names;
    for (const auto &c : o.controllers) {
        if (c.name == "bridges")
            return "\"bridges\" is the bridges' own topic level and cannot name a controller";
        if (!names.insert(c.name).second)
            return "the controller name \"" + c.name + "\" is given twice";
    }
    if (!o.username.empty() != !o.passwordFile.empty())
        return "--username and --password-file go together";
    return {};
}

} // namespace

bool isTopicLevel(const std::string &text)
{
    return !text.empty() && text.size() <= 64
           && text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_.-")
                  == std::string::npos;
}

ParsedOptions parseOptions(const std::vector<std::string> &args, const FileReader &readFile)
{
    ParsedOptions parsed;
    std::vector<std::pair<std::string, std::string>> given; // name, value
    for (std::size_t i = 0; i < args.size(); ++i) {
        std::string name = args[i];
        if (name == "--help" || name == "-h") {
            parsed.help = true;
            return parsed;
        }
        if (name == "--allow-commands") {
            given.emplace_back("allow-commands", "");
            continue;
        }
        if (name.rfind("--", 0) != 0) {
            parsed.error = "unexpected argument \"" + name + "\"; see --help";
            return parsed;
        }
        name.erase(0, 2);
        std::string value;
        const auto equals = name.find('=');
        if (equals != std::string::npos) {
            value = name.substr(equals + 1);
            name.erase(equals);
        } else if (i + 1 < args.size()) {
            value = args[++i];
        } else {
            parsed.error = "--" + name + " wants a value";
            return parsed;
        }
        if (name != "config" && !valueOption(name)) {
            parsed.error = "unknown option --" + name + "; see --help";
            return parsed;
        }
        given.emplace_back(name, value);
    }
    for (const auto &[name, value] : given) {
        if (name != "config")
            continue;
        std::string text;
        if (!readFile(value, text)) {
            parsed.error = "cannot read the config file " + value;
            return parsed;
        }
        parsed.error = applyConfig(parsed.options, value, text);
        if (!parsed.error.empty())
            return parsed;
    }
    for (const auto &[name, value] : given) {
        if (name == "allow-commands")
            parsed.options.allowCommands = true;
        else if (name != "config")
            parsed.error = valueOption(name)->set(parsed.options, value);
        if (!parsed.error.empty())
            return parsed;
    }
    parsed.error = finalCheck(parsed.options);
    return parsed;
}

} // namespace qrxbridge
