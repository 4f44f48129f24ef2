#pragma once
// qrx-sim's command-line options of the file service (port 5000):
// --job-dir, --log-dir, --eni-dir, --config-dir and --file-port.

#include <QCommandLineParser>
#include <QHostAddress>

namespace qrxsim {

class Simulator;
class FileService;

void addFileOptions(QCommandLineParser &parser);
// Starts the file service beside the frame port; null (and a line on
// standard error) when its port cannot be bound; the simulator goes on.
FileService *startFileService(Simulator &simulator, const QCommandLineParser &parser, const QHostAddress &address);

} // namespace qrxsim
