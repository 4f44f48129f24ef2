// File transfer: upload_job, download_job and the qrx_ transfer extensions.
// Each call creates a TcpUpDownFile in the calling thread and blocks it while
// files move; the outcome of the last call is kept by the controller for
// qrx_last_transfer_*, beside its job root and progress callback.

#include "api/ApiState.h"
#include "api/qrx_host.h"
#include "common/Logging.h"
#include "link/TcpConnectModule.h"
#include "robot/Robot.h"
#include "transfer/TcpUpDownFile.h"
#include "transfer/TransferPaths.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cstring>

using namespace qrx::api;

namespace {

// The job root of the controller: its own, else the default one.
QString jobRootOf(const qrx::controller::Controller &controller)
{
    const QString own = controller.jobRoot();
    return own.isEmpty() ? qrx::transfer::jobRoot() : own;
}

// What the transfer needs of the robot's main link.
qrx::transfer::MainLink mainLinkOf(Robot *robot, qrx::controller::Controller &controller)
{
    return {robot->link()->ip(),
            [robot](quint16 command, const QByteArray &payload) { return robot->send(command, payload); },
            [robot] { robot->link()->setLastPingTime(QDateTime::currentDateTimeUtc()); }, &controller.uploading};
}

// Runs one transfer on a fresh object and keeps its outcome.
template <class Run>
int transfer(const ApiCall &call, Run &&run)
{
    Robot *robot = call.robot();
    qrx::controller::Controller &controller = *call.controller();
    TcpUpDownFile file(mainLinkOf(robot, controller));
    // The main link's file notifications reach the transfer in this thread.
    QObject::connect(robot, &Robot::robot_job_Sum_list, &file, &TcpUpDownFile::recvJobFileSumList);
    QObject::connect(robot, &Robot::robot_job_File_list, &file, &TcpUpDownFile::recvJobFileList);
    QObject::connect(robot, &Robot::robot_job_File_Info_Finish, &file, &TcpUpDownFile::recvJobFileInfoFinish);
    QObject::connect(robot, &Robot::robot_ControlLog_list, &file, &TcpUpDownFile::recvControlLogList);
    QObject::connect(robot, &Robot::robot_ControlENI_list, &file, &TcpUpDownFile::recvControlENIList);
    if (const int pause = controller.transferPauseMs.load(); pause >= 0)
        file.setPauseMs(pause);
    file.setJobRoot(jobRootOf(controller));
    if (const qrx_transfer_progress callback = controller.transferProgress.load()) {
        file.setProgress([callback](const QString &name, qint64 done, qint64 total) {
            callback(name.toUtf8().constData(), static_cast<long long>(done), static_cast<long long>(total));
        });
    }
    run(file);
    controller.setTransferOutcome(file.failedCount(), file.refusedByController(), file.lastFailure().toUtf8());
    return file.failedCount() ? -1 : file.filesDone();
}

// "R<n>/<name>" for every file of the local job folders, oldest first.
QStringList localJobFiles(const qrx::controller::Controller &controller)
{
    QStringList list;
    const QString root = jobRootOf(controller);
    for (int robot = 1; robot <= 4; ++robot) {
        const QDir dir(qrx::transfer::jobFolder(root, robot));
        const QFileInfoList entries = dir.entryInfoList(QDir::Files | QDir::NoSymLinks, QDir::Time | QDir::Reversed);
        for (const QFileInfo &entry : entries)
            list << QStringLiteral("R%1/").arg(robot) + entry.fileName();
    }
    return list;
}

QString folderArgument(const char *folder)
{
    return QString::fromUtf8(folder ? folder : "");
}

} // namespace

extern "C" {

void upload_job(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    const QStringList list = localJobFiles(*robotApiCall.controller());
    qCDebug(lcApi).noquote() << list.join(QStringLiteral(", "));
    transfer(robotApiCall, [&](TcpUpDownFile &file) { file.runUpload(list); });
}

void download_job(void)
{
    QRX_ROBOT_OR_RETURN(robot);
    transfer(robotApiCall, [robot](TcpUpDownFile &file) { file.runJobDownload(robot->currentRobot()); });
}

void qrx_set_job_root(const char *path)
{
    QRX_CONTROLLER_OR_RETURN(controller);
    controller->setJobRoot(folderArgument(path));
}

void qrx_set_transfer_progress(qrx_transfer_progress callback)
{
    QRX_CONTROLLER_OR_RETURN(controller);
    controller->transferProgress.store(callback);
}

void qrx_set_transfer_pause(int ms)
{
    QRX_CONTROLLER_OR_RETURN(controller);
    controller->transferPauseMs.store(std::max(ms, 0));
}

int qrx_last_transfer_failed(void)
{
    QRX_CONTROLLER_OR_RETURN(controller, 0);
    return controller->lastTransferFailed();
}

int qrx_last_transfer_refused(void)
{
    QRX_CONTROLLER_OR_RETURN(controller, 0);
    return controller->lastTransferRefused() ? 1 : 0;
}

int qrx_last_transfer_error(char *text, int size)
{
    QRX_CONTROLLER_OR_RETURN(controller, 0);
    const QByteArray lastFailureText = controller->lastTransferError();
    if (text && size > 0) {
        const int n = std::min(size - 1, int(lastFailureText.size()));
        std::memcpy(text, lastFailureText.constData(), size_t(n));
        text[n] = '\0';
    }
    return int(lastFailureText.size());
}

int qrx_export_logs(const char *folder)
{
    QRX_ROBOT_OR_RETURN(robot, -1);
    return transfer(robotApiCall, [&](TcpUpDownFile &file) {
        file.setTargetFolder(folderArgument(folder));
        file.runListExport(TcpUpDownFile::LogDownload);
    });
}

int qrx_export_eni(const char *folder)
{
    QRX_ROBOT_OR_RETURN(robot, -1);
    return transfer(robotApiCall, [&](TcpUpDownFile &file) {
        file.setTargetFolder(folderArgument(folder));
        file.runListExport(TcpUpDownFile::EniDownload);
    });
}

int qrx_export_config(const char *folder)
{
    QRX_ROBOT_OR_RETURN(robot, -1);
    const auto &entries =
        robot->robotCount < 2 ? robot->configCatalogue.singleRobot() : robot->configCatalogue.multiRobot();
    QStringList names;
    for (const auto &entry : entries)
        names << QStringLiteral("config/") + entry.first;
    return transfer(robotApiCall, [&](TcpUpDownFile &file) {
        file.setTargetFolder(folderArgument(folder));
        file.runNameDownload(TcpUpDownFile::ConfigDownload, names);
    });
}

int qrx_import_config(const char *path)
{
    QRX_ROBOT_OR_RETURN(robot, -1);
    const QString file = folderArgument(path);
    return transfer(robotApiCall, [&](TcpUpDownFile &upload) {
        upload.setRemotePrefix(QStringLiteral("config/"));
        upload.runUpload({file});
    });
}

} // extern "C"
