// qrx-bridge at scale: 100 controllers on one bridge, states at 2 Hz.
//  - CPU and memory of the bridge process per controller, beside the same
//    bridge serving one controller (same run);
//  - latency from a state change in the simulated controller to the state
//    message at a subscriber, p50 and p99, beside a plain publish -> subscribe
//    round trip through the same broker (same run, same client library).
// 90 controllers stream position reports at 2 Hz (qrx-sim --count 90
// --position-reports 2, a process of its own); 10 more run in this process,
// where each latency sample is one report sent and timed here.
// Run: build/bench/bench_bridge [samples] (default 300).

#include "../tests/bridge/MqttProbe.h"
#include "sim/SimHandle.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <thread>
#include <unistd.h>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

const char *const kBroker = "127.11.0.1";
constexpr int kBrokerPort = 1883;
constexpr int kStreaming = 90;  // 127.11.1.1 ..
constexpr int kTimed = 10;      // 127.11.2.1 ..
constexpr int kRate = 2;

struct Usage
{
    double cpuSeconds = 0;
    long rssKiB = 0;
};

Usage usageOf(qint64 pid)
{
    Usage u;
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (stat.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> f = stat.readAll().split(')').last().split(' ');
        // after "pid (comm)": f[1] state, utime f[12], stime f[13]
        u.cpuSeconds = double(f.value(12).toLongLong() + f.value(13).toLongLong()) / double(sysconf(_SC_CLK_TCK));
    }
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (status.open(QIODevice::ReadOnly))
        for (const QByteArray &line : status.readAll().split('\n'))
            if (line.startsWith("VmRSS:"))
                u.rssKiB = line.mid(6).trimmed().split(' ').first().toLong();
    return u;
}

std::unique_ptr<QProcess> startBridge(const QStringList &controllers, const QString &id)
{
    QStringList args{"--broker", QStringLiteral("%1:%2").arg(kBroker).arg(kBrokerPort), "--cell", "bench", "--id", id,
                     "--rate", QString::number(kRate)};
    for (const QString &c : controllers)
        args << "--controller" << c;
    auto bridge = std::make_unique<QProcess>();
    bridge->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_LOGGING_RULES", "qrx.*=false");
    bridge->setProcessEnvironment(env);
    bridge->start(QRX_BRIDGE_PATH, args);
    bridge->waitForStarted();
    return bridge;
}

// Waits until every listed state topic says the link is up.
bool allLinked(MqttProbe &probe, const std::vector<std::string> &names, std::chrono::seconds bound)
{
    for (const std::string &name : names)
        if (probe.waitOn("qrx/bench/" + name + "/state", "\"link\":true", bound).topic.empty()) {
            std::fprintf(stderr, "bench_bridge: %s never linked\n", name.c_str());
            return false;
        }
    return true;
}

double percentile(std::vector<double> v, double p)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[std::min(v.size() - 1, std::size_t(p * double(v.size())))];
}

Json::Value report(double marker)
{
    Json::Value v(Json::objectValue);
    v["robot"] = 1;
    v["coord"] = 0;
    Json::Value pos(Json::arrayValue);
    for (int axis = 0; axis < 7; ++axis)
        pos.append(axis == 0 ? marker : 0.0);
    v["pos"] = pos;
    v["posDeg"] = pos;
    return v;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int samples = argc > 1 ? std::max(20, atoi(argv[1])) : 300;
    QTemporaryDir dir;
    QFile conf(dir.filePath("mosquitto.conf"));
    conf.open(QIODevice::WriteOnly);
    conf.write(QStringLiteral("listener %1 %2\nallow_anonymous true\npersistence false\nset_tcp_nodelay true\n%3")
                   .arg(kBrokerPort)
                   .arg(kBroker, getuid() == 0 ? "user root\n" : "")
                   .toUtf8());
    conf.close();
    QProcess broker;
    broker.start(QRX_MOSQUITTO_PATH, {"-c", conf.fileName()});
    broker.waitForStarted();
    std::unique_ptr<MqttProbe> probe;
    for (const auto start = Clock::now(); Clock::now() - start < 20s; std::this_thread::sleep_for(50ms))
        if ((probe = std::make_unique<MqttProbe>(kBroker, kBrokerPort, "", ""))->connectResult() == 0)
            break;
    if (!probe || probe->connectResult() != 0) {
        std::fprintf(stderr, "bench_bridge: no broker\n");
        return 1;
    }
    probe->subscribe("qrx/bench/#");
    probe->subscribe("bench/ping");

    QProcess streaming;
    streaming.start(QRX_SIM_PATH, {"--address", "127.11.1.1", "--count", QString::number(kStreaming),
                                   "--position-reports", QString::number(kRate), "--file-port", "0"});
    streaming.waitForStarted();
    std::vector<std::unique_ptr<qrxsim::SimHandle>> timed;
    QStringList controllers;
    std::vector<std::string> names;
    for (int i = 1; i <= kStreaming; ++i) {
        controllers << QStringLiteral("s%1=127.11.1.%1").arg(i);
        names.push_back("s" + std::to_string(i));
    }
    for (int i = 1; i <= kTimed; ++i) {
        timed.push_back(std::make_unique<qrxsim::SimHandle>(QStringLiteral("127.11.2.%1").arg(i)));
        if (!timed.back()->start())
            return 1;
        controllers << QStringLiteral("t%1=127.11.2.%1").arg(i);
        names.push_back("t" + std::to_string(i));
    }

    // Baseline bridge: one controller, idle.
    auto single = startBridge({controllers.first()}, "single");
    auto fleet = startBridge(controllers, "fleet");
    if (!allLinked(*probe, names, 60s))
        return 1;
    std::this_thread::sleep_for(3s); // settle: start-up reports, first publications
    const Usage singleUsage = usageOf(single->processId());

    // CPU over a window of steady 2 Hz streaming.
    const Usage before = usageOf(fleet->processId());
    const auto windowStart = Clock::now();
    probe->clear();
    std::this_thread::sleep_for(20s);
    const Usage after = usageOf(fleet->processId());
    const double window = std::chrono::duration<double>(Clock::now() - windowStart).count();
    int stateMessages = 0;
    for (const auto &m : probe->messages())
        stateMessages += m.topic.rfind("/state") == m.topic.size() - 6;

    // Latency: a report with a fresh value, timed from its hand-over to the
    // socket in the controller to its state message here.
    std::vector<double> bridgeMs, brokerMs;
    for (int i = 0; i < samples; ++i) {
        const int which = i % kTimed;
        const double marker = 1000.5 + i; // written 1000.50, 1001.50, ...
        char needle[64];
        std::snprintf(needle, sizeof needle, "\"joints\":[%.1f", marker);
        const std::string topic = "qrx/bench/t" + std::to_string(which + 1) + "/state";
        probe->clear();
        const auto sent = Clock::now();
        timed[std::size_t(which)]->sendJson(0x2F08, report(marker));
        const auto got = probe->waitOn(topic, needle, 5s);
        if (got.topic.empty()) {
            std::fprintf(stderr, "bench_bridge: sample %d lost (%s)\n", i, needle);
            continue;
        }
        bridgeMs.push_back(std::chrono::duration<double, std::milli>(got.arrived - sent).count());
        // Each controller changes at most every 600 ms: never held back by --rate.
        std::this_thread::sleep_for(60ms);

        probe->clear();
        const auto pinged = Clock::now();
        probe->publishAcked("bench/ping", std::to_string(i));
        const auto echo = probe->waitOn("bench/ping", std::to_string(i), 5s);
        if (!echo.topic.empty())
            brokerMs.push_back(std::chrono::duration<double, std::milli>(echo.arrived - pinged).count());
    }

    const double cpuShare = (after.cpuSeconds - before.cpuSeconds) / window;
    const int total = kStreaming + kTimed;
    std::printf("bench_bridge: %d controllers, --rate %d, %.0f s window, %d state messages (%.1f/s)\n", total, kRate,
                window, stateMessages, stateMessages / window);
    std::printf("  CPU   fleet bridge %.2f %% of a core = %.4f %% per controller (goal < 0.1 %%)\n", cpuShare * 100,
                cpuShare * 100 / total);
    std::printf("  RSS   fleet bridge %ld KiB; one-controller bridge %ld KiB; (%ld KiB per added controller)\n",
                after.rssKiB, singleUsage.rssKiB, (after.rssKiB - singleUsage.rssKiB) / (total - 1));
    std::printf("  latency report -> subscriber: p50 %.2f ms, p99 %.2f ms (%zu samples)\n", percentile(bridgeMs, 0.5),
                percentile(bridgeMs, 0.99), bridgeMs.size());
    std::printf("  baseline publish -> subscribe, same broker: p50 %.2f ms, p99 %.2f ms (%zu samples)\n",
                percentile(brokerMs, 0.5), percentile(brokerMs, 0.99), brokerMs.size());
    std::printf("  added by the library and bridge: p50 %.2f ms, p99 %.2f ms (goal < 5 ms at p99)\n",
                percentile(bridgeMs, 0.5) - percentile(brokerMs, 0.5),
                percentile(bridgeMs, 0.99) - percentile(brokerMs, 0.99));

    for (auto *p : {single.get(), fleet.get()}) {
        p->terminate();
        p->waitForFinished(10000);
    }
    streaming.terminate();
    streaming.waitForFinished(10000);
    probe.reset();
    broker.terminate();
    broker.waitForFinished(10000);
    return 0;
}
