#pragma once
// qrx-bridge's options, from the command line and from a JSON file with the
// same fields ("broker", "cell", "id", "controller", "username",
// "password-file", "tls-ca", "rate", "allow-commands", "queue"). A file is
// read first; options given on the command line replace its values, and
// --controller adds to its controllers. Pure: the caller reads the file.

#include <functional>
#include <string>
#include <vector>

namespace qrxbridge {

struct ControllerAddress
{
    std::string name; // the topic level qrx/<cell>/<name>/...
    std::string ip;
    int port = 6001;
};

struct Options
{
    std::string brokerHost = "localhost";
    int brokerPort = 0; // 0: 1883, or 8883 with TLS
    std::string cell;
    std::string id;
    std::vector<ControllerAddress> controllers;
    std::string username;
    std::string passwordFile;
    std::string tlsCa;
    double rate = 2.0;          // state messages per controller and second, at most
    bool allowCommands = false;
    int queueLimit = 8;         // commands waiting per controller before "busy"

    int effectiveBrokerPort() const { return brokerPort > 0 ? brokerPort : (tlsCa.empty() ? 1883 : 8883); }
};

struct ParsedOptions
{
    Options options;
    bool help = false;
    std::string error; // empty when the options are usable
};

// Reads a file's whole text; false when it cannot be read.
using FileReader = std::function<bool(const std::string &path, std::string &text)>;

ParsedOptions parseOptions(const std::vector<std::string> &args, const FileReader &readFile);

// The text of --help: usage and the topics.
std::string helpText();

// True for a usable topic level: 1 to 64 characters of A-Z a-z 0-9 _ . -
bool isTopicLevel(const std::string &text);

} // namespace qrxbridge
