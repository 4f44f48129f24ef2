#pragma once
// Several simulated controllers in one qrx-sim process (--count N): each
// listens on its own address, N consecutive addresses from the first, with
// its own model, file service and position stream.

#include <QCommandLineParser>
#include <QHostAddress>
#include <QTextStream>

#include <memory>
#include <vector>

namespace qrxsim {

class Simulator;
class PositionStream;

struct FleetOptions
{
    bool verbose = false;
    int heartbeatMs = 0;
    int positionReports = 0;
};

class Fleet
{
public:
    Fleet();
    ~Fleet();
    // Starts count controllers from first, first+1, ... on port; prints one
    // "qrx-sim listening on A:P" line each. False (and nothing kept
    // listening) when one cannot listen.
    bool start(const QHostAddress &first, quint16 port, int count, const FleetOptions &options,
               const QCommandLineParser &parser, QTextStream &out);
    void shutdown();

private:
    struct Member;
    std::vector<std::unique_ptr<Member>> m_members;
};

} // namespace qrxsim
