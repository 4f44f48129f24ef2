// upload, download, export, import: files over the controller's file
// connection, with a progress bar on a terminal and plain lines otherwise.
// A transfer may take long; it is bounded by --timeout without progress.

#include "Bound.h"
#include "Commands.h"
#include "Report.h"
#include "qrx_host.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace qrxcli {

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kBarWidth = 30;

// What the progress callback (on the transferring thread) last saw.
struct Progress
{
    std::mutex mutex;
    Clock::time_point lastActivity = Clock::now();
    int filesDone = 0;
    long long bytesDone = 0;
};

Progress &progress()
{
    static Progress *p = new Progress; // used by a thread that may outlive main()
    return *p;
}

void onProgress(const char *file, long long done, long long total)
{
    Progress &p = progress();
    std::lock_guard<std::mutex> lock(p.mutex);
    p.lastActivity = Clock::now();
    const std::string name = file ? file : "";
    const bool finished = done >= total;
    if (jsonOutput()) {
        if (finished)
            std::cout << "{\"file\":" << jsonString(name) << ",\"bytes\":" << total << "}" << std::endl;
    } else if (::isatty(STDOUT_FILENO)) {
        const int filled = total > 0 ? int(done * kBarWidth / total) : kBarWidth;
        std::printf("\r%-32.32s [%s%s] %3d%% %lld/%lld", name.c_str(), std::string(std::size_t(filled), '#').c_str(),
                    std::string(std::size_t(kBarWidth - filled), ' ').c_str(),
                    total > 0 ? int(done * 100 / total) : 100, done, total);
        if (finished)
            std::printf("\n");
        std::fflush(stdout);
    } else if (finished) {
        std::cout << name << " " << total << " bytes" << std::endl;
    }
    if (finished) {
        ++p.filesDone;
        p.bytesDone += total;
    }
}

// Runs the transfer on a thread of its own; "timed out" when nothing moved
// for the wait bound.
void runTransfer(const std::function<void()> &transfer)
{
    qrx_set_transfer_progress(onProgress);
    auto done = std::make_shared<std::atomic<bool>>(false);
    std::thread([transfer, done] {
        transfer();
        *done = true;
    }).detach();
    for (;;) {
        if (*done)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        std::lock_guard<std::mutex> lock(progress().mutex);
        if (!*done && Clock::now() - progress().lastActivity > waitBound())
            fail(ExitTimedOut, "timed out: the transfer made no progress");
    }
    qrx_set_transfer_progress(nullptr);
}

// The outcome of the last transfer: failure text, or a summary.
void finish(long moved)
{
    char text[1024] = {};
    qrx_last_transfer_error(text, int(sizeof text));
    const int failed = qrx_last_transfer_failed();
    if (failed > 0 || moved < 0) {
        const std::string message = text[0] ? text : "the transfer failed";
        // The controller's refusals start with "控制器拒绝" (the controller refuses).
        fail(message.find("控制器拒绝") != std::string::npos ? ExitRefused : ExitFailed, message);
    }
    Progress &p = progress();
    std::lock_guard<std::mutex> lock(p.mutex);
    print(Report().integer("files", moved >= 0 ? moved : p.filesDone).integer("bytes", p.bytesDone));
}

// Job files live in <root>/robotJob/R1..R4: --root, else QRX_JOB_ROOT, else
// the current folder.
void chooseJobRoot(const Args &args)
{
    std::string root = args.option("root", "");
    if (root.empty() && !std::getenv("QRX_JOB_ROOT")) {
        char cwd[4096];
        if (::getcwd(cwd, sizeof cwd))
            root = cwd;
    }
    if (!root.empty())
        qrx_set_job_root(root.c_str());
}

} // namespace

void runUpload(const Args &args)
{
    args.expect(0, 0, "upload [--root DIR] [--pause MS]");
    chooseJobRoot(args);
    const std::string pause = args.option("pause", "");
    if (!pause.empty())
        qrx_set_transfer_pause(int(Args::toInteger(pause, "--pause")));
    runTransfer([] { upload_job(); });
    finish(progress().filesDone);
}

void runDownload(const Args &args)
{
    args.expect(0, 0, "download [--root DIR]");
    chooseJobRoot(args);
    runTransfer([] { download_job(); });
    finish(progress().filesDone);
}

void runExport(const Args &args)
{
    args.expect(2, 2, "export logs|eni|config DIR");
    const long kind = choice(args.word(0, "logs, eni or config"), {"logs", "eni", "config"}, "the export");
    const std::string folder = args.word(1, "DIR");
    auto moved = std::make_shared<int>(-1);
    runTransfer([kind, folder, moved] {
        *moved = kind == 0 ? qrx_export_logs(folder.c_str())
                           : kind == 1 ? qrx_export_eni(folder.c_str()) : qrx_export_config(folder.c_str());
    });
    finish(*moved);
}

void runImport(const Args &args)
{
    args.expect(2, 2, "import config FILE");
    choice(args.word(0, "config"), {"config"}, "the import");
    const std::string file = args.word(1, "FILE");
    auto moved = std::make_shared<int>(-1);
    runTransfer([file, moved] { *moved = qrx_import_config(file.c_str()); });
    finish(*moved);
}

} // namespace qrxcli
