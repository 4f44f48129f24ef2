#include "Topics.h"

namespace qrxbridge {

bool Topics::parseCommand(const std::string &topic, std::string &name, std::string &verb) const
{
    if (topic.compare(0, m_prefix.size(), m_prefix) != 0)
        return false;
    const auto nameEnd = topic.find('/', m_prefix.size());
    if (nameEnd == std::string::npos || topic.compare(nameEnd, 5, "/cmd/") != 0)
        return false;
    name = topic.substr(m_prefix.size(), nameEnd - m_prefix.size());
    verb = topic.substr(nameEnd + 5);
    return !name.empty() && !verb.empty() && verb.find('/') == std::string::npos;
}

} // namespace qrxbridge
