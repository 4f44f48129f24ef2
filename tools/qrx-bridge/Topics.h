#pragma once
// The bridge's topic names, all under qrx/<cell>/:
//   qrx/<cell>/<name>/state        retained state of a controller
//   qrx/<cell>/<name>/alarm        its error, warning and info messages
//   qrx/<cell>/<name>/cmd/<verb>   requests to it (MQTT 5)
//   qrx/<cell>/bridges/<id>        "online" / "offline" of a bridge

#include <string>

namespace qrxbridge {

class Topics
{
public:
    explicit Topics(std::string cell) : m_prefix("qrx/" + cell + '/') {}

    std::string state(const std::string &name) const { return m_prefix + name + "/state"; }
    std::string alarm(const std::string &name) const { return m_prefix + name + "/alarm"; }
    std::string bridge(const std::string &id) const { return m_prefix + "bridges/" + id; }
    // The subscription that takes one controller's commands (only its own:
    // other bridges serve the other controllers of the cell).
    std::string commands(const std::string &name) const { return m_prefix + name + "/cmd/+"; }

    // Name and verb of a command topic; false for any other topic.
    bool parseCommand(const std::string &topic, std::string &name, std::string &verb) const;

private:
    std::string m_prefix;
};

} // namespace qrxbridge
