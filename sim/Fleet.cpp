#include "sim/Fleet.h"

#include "sim/PositionStream.h"
#include "sim/Simulator.h"
#include "sim/files/FileOptions.h"

namespace qrxsim {

struct Fleet::Member
{
    Simulator simulator;
    std::unique_ptr<PositionStream> positions;
};

Fleet::Fleet() = default;

Fleet::~Fleet()
{
    shutdown();
}

bool Fleet::start(const QHostAddress &first, quint16 port, int count, const FleetOptions &options,
                  const QCommandLineParser &parser, QTextStream &out)
{
    for (int i = 0; i < count; ++i) {
        const QHostAddress address(first.toIPv4Address() + quint32(i));
        auto member = std::make_unique<Member>();
        Simulator &simulator = member->simulator;
        simulator.setVerbose(options.verbose);
        simulator.recorder().setEnabled(false); // nobody reads it here
        if (!simulator.listen(address, port)) {
            shutdown();
            return false;
        }
        simulator.setControllerHeartbeat(options.heartbeatMs);
        startFileService(simulator, parser, address);
        simulator.model().job.folder = parser.value(QStringLiteral("job-dir")).toStdString(); // jobs run from there
        member->positions = std::make_unique<PositionStream>(simulator, options.positionReports);
        out << "qrx-sim listening on " << address.toString() << ':' << simulator.port() << Qt::endl;
        m_members.push_back(std::move(member));
    }
    return true;
}

void Fleet::shutdown()
{
    for (auto &member : m_members)
        member->simulator.shutdown();
    m_members.clear();
}

} // namespace qrxsim
