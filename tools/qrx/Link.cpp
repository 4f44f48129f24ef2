#include "Link.h"

#include "Bound.h"
#include "qrx_host.h"

#include <algorithm>
#include <mutex>

namespace qrxcli {

namespace {

// The error callback runs on the library's link thread, possibly while the
// process ends: the list is never destroyed.
struct Messages
{
    std::mutex mutex;
    std::vector<std::string> texts;
};

Messages &messages()
{
    static Messages *all = new Messages;
    return *all;
}

void onControllerMessage(const char *text)
{
    Messages &m = messages();
    std::lock_guard<std::mutex> lock(m.mutex);
    m.texts.emplace_back(text ? text : "");
}

// The prefix the library gives the controller's error messages.
const std::string kErrorPrefix = "错误： ";

// connect_robot bounds itself (five checks a second apart); a shorter
// --timeout does not cut it short.
constexpr std::chrono::milliseconds kConnectBound{6000};

} // namespace

void connectTo(const std::string &host)
{
    setErrorHandle(onControllerMessage);
    const bool within = runBounded(
        [host] { connect_robot(host.c_str()); },
        std::max(waitBound(), kConnectBound));
    if (!within || !connection_status())
        fail(ExitNotConnected, "not connected: no controller answered at " + host);
}

void disconnectLink()
{
    disconnect_robot();
}

std::size_t messageMark()
{
    Messages &m = messages();
    std::lock_guard<std::mutex> lock(m.mutex);
    return m.texts.size();
}

std::vector<std::string> messagesSince(std::size_t mark)
{
    Messages &m = messages();
    std::lock_guard<std::mutex> lock(m.mutex);
    if (mark >= m.texts.size())
        return {};
    return std::vector<std::string>(m.texts.begin() + long(mark), m.texts.end());
}

void settle()
{
    for (int i = 0; i < 2; ++i)
        bounded<int>("the controller's answer", [] { return get_robot_running_state(); });
}

void failIfRefused(std::size_t mark)
{
    for (const std::string &text : messagesSince(mark))
        if (text.compare(0, kErrorPrefix.size(), kErrorPrefix) == 0)
            fail(ExitRefused, "refused by the controller: " + text.substr(kErrorPrefix.size()));
}

} // namespace qrxcli
