#include "sim/files/FileOptions.h"

#include "sim/Simulator.h"
#include "sim/files/FileService.h"

#include <QTextStream>

namespace qrxsim {

namespace {
const char *const kFolders[][2] = {
    {"job-dir", "Job folder, one sub-folder per robot (R1..R4): uploads land there, downloads come from there."},
    {"log-dir", "Folder whose files are the controller's log files."},
    {"eni-dir", "Folder whose files are the controller's ENI files."},
    {"config-dir", "Folder of the controller's configuration files."},
};
} // namespace

void addFileOptions(QCommandLineParser &parser)
{
    for (const auto &folder : kFolders)
        parser.addOption({QString::fromLatin1(folder[0]), QString::fromLatin1(folder[1]), QStringLiteral("DIR")});
    parser.addOption({QStringLiteral("file-port"), QStringLiteral("Port of the file service (default 5000)."),
                      QStringLiteral("P"), QStringLiteral("5000")});
}

FileService *startFileService(Simulator &simulator, const QCommandLineParser &parser, const QHostAddress &address)
{
    auto *service = new FileService(simulator, &simulator);
    service->jobDir = parser.value(QStringLiteral("job-dir"));
    service->logDir = parser.value(QStringLiteral("log-dir"));
    service->eniDir = parser.value(QStringLiteral("eni-dir"));
    service->configDir = parser.value(QStringLiteral("config-dir"));
    if (!service->listen(address, quint16(parser.value(QStringLiteral("file-port")).toUInt()))) {
        QTextStream(stderr) << "qrx-sim: the file service cannot listen; files are not served\n";
        delete service;
        return nullptr;
    }
    return service;
}

} // namespace qrxsim
