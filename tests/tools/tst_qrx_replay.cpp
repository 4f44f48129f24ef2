// Recording and replay as a user runs them: qrx against the simulated
// controller with QRX_RECORD set, then `qrx-sim --replay` of that recording
// in the controller's place, and qrx again. The replayed session must look
// the same to the host, frame for frame, and where a host departs from the
// recording the replay must say so.

#include "QrxRun.h"
#include "link/PcapSession.h"
#include "sim/SimHandle.h"
#include "sim/files/FileService.h"
#include "support/Loopback.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using qrx::pcap::RecordedFrame;
using qrx::pcap::Sender;

namespace {

qrx::pcap::Recording readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, QStringLiteral("cannot open ") + path};
    return qrx::pcap::read(file.readAll());
}

// What the controller said on the main link, in order, without the
// heartbeat answers (their number depends on how long a run took).
QVector<QPair<quint16, QByteArray>> controllerSide(const qrx::pcap::Recording &recording)
{
    QVector<QPair<quint16, QByteArray>> said;
    for (const RecordedFrame &f : recording.frames) {
        if (f.sender == Sender::Controller && !f.onFileConnection() && f.code != 0x7267)
            said.append({f.code, f.payload});
    }
    return said;
}

} // namespace

class TestQrxReplay : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void replayedStatusPrintsTheSameText_data();
    void replayedStatusPrintsTheSameText();
    void unaskedReportsKeepTheirTimes();
    void downloadReplaysOverTheFileConnection();
    void departuresAreReported();
    void damagedRecordingPlaysItsFirstPart();

private:
    // qrx with args against the simulator, recorded into path.
    QrxRun recordQrx(const QString &path, const QStringList &args);
    // The simulator gives way to a replay of path on the same address.
    bool startReplay(const QString &path);
    QString replayErrors();

    QString m_address;
    QTemporaryDir m_dir;
    QScopedPointer<qrxsim::SimHandle> m_sim;
    QProcess m_replay;
    QString m_replayErr;
};

void TestQrxReplay::initTestCase()
{
    m_address = testsupport::loopbackAddress();
    QVERIFY(m_dir.isValid());
}

void TestQrxReplay::init()
{
    m_sim.reset(new qrxsim::SimHandle(m_address));
    QVERIFY(m_sim->start());
    m_replayErr.clear();
}

void TestQrxReplay::cleanup()
{
    m_sim.reset();
    if (m_replay.state() != QProcess::NotRunning) {
        m_replay.terminate();
        if (!m_replay.waitForFinished(10000))
            m_replay.kill();
        m_replay.waitForFinished(10000);
    }
}

QrxRun TestQrxReplay::recordQrx(const QString &path, const QStringList &args)
{
    qputenv("QRX_RECORD", QFile::encodeName(path));
    const QrxRun run = runQrx(m_address, args);
    qunsetenv("QRX_RECORD");
    return run;
}

bool TestQrxReplay::startReplay(const QString &path)
{
    m_sim.reset(); // the address and its ports are free again
    m_replay.setProgram(QStringLiteral(QRX_SIM_PATH));
    m_replay.setArguments({QStringLiteral("--address"), m_address, QStringLiteral("--replay"), path});
    m_replay.start();
    QDeadlineTimer deadline(20000);
    QByteArray out;
    while (!out.contains("replaying") && !deadline.hasExpired() && m_replay.state() != QProcess::NotRunning) {
        m_replay.waitForReadyRead(100);
        out += m_replay.readAllStandardOutput();
    }
    return out.contains("replaying");
}

QString TestQrxReplay::replayErrors()
{
    m_replayErr += QString::fromUtf8(m_replay.readAllStandardError());
    return m_replayErr;
}

void TestQrxReplay::replayedStatusPrintsTheSameText_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::newRow("status") << QStringList{QStringLiteral("status")};
    QTest::newRow("status as JSON") << QStringList{QStringLiteral("--json"), QStringLiteral("status")};
}

void TestQrxReplay::replayedStatusPrintsTheSameText()
{
    QFETCH(QStringList, args);
    // A controller that is not at rest, so that the text tells states apart.
    m_sim->withModel([](qrxsim::ControllerModel &m) {
        m.servoStatus = 3;
        m.operationMode = 1;
        m.speed = 37;
        const double at[7] = {12.5, -40.25, 3, 0, 90, -7.75, 0};
        std::copy(std::begin(at), std::end(at), std::begin(m.positionDeg));
    });
    const QString recorded = m_dir.filePath(QStringLiteral("recorded.pcap"));
    const QrxRun original = recordQrx(recorded, args);
    QCOMPARE(original.exitCode, 0);
    QVERIFY(original.out.contains(QLatin1String("37")));

    QVERIFY(startReplay(recorded));
    const QString replayed = m_dir.filePath(QStringLiteral("replayed.pcap"));
    const QrxRun again = recordQrx(replayed, args);
    QCOMPARE(again.exitCode, 0);
    QCOMPARE(again.out, original.out);
    // The host asked the same and heard the same, frame for frame.
    const auto first = readFile(recorded);
    const auto second = readFile(replayed);
    QCOMPARE(first.error, QString());
    QCOMPARE(second.error, QString());
    QVERIFY(controllerSide(first).size() > 10);
    QCOMPARE(controllerSide(second), controllerSide(first));
    QVERIFY2(!replayErrors().contains(QLatin1String("link 1:")), qPrintable(replayErrors()));
}

// The controller's own heartbeats (0x7266, every 50 ms here) come unasked:
// the replay sends them at their recorded times from the connection's start.
void TestQrxReplay::unaskedReportsKeepTheirTimes()
{
    m_sim->setControllerHeartbeat(50);
    const QString recorded = m_dir.filePath(QStringLiteral("beats.pcap"));
    QCOMPARE(recordQrx(recorded, {QStringLiteral("status")}).exitCode, 0);
    QVERIFY(startReplay(recorded));
    const QString replayed = m_dir.filePath(QStringLiteral("beats-again.pcap"));
    QCOMPARE(recordQrx(replayed, {QStringLiteral("status")}).exitCode, 0);

    // Offsets (ms) of the controller's heartbeats from the first frame.
    const auto beats = [](const qrx::pcap::Recording &r) {
        QVector<double> at;
        for (const RecordedFrame &f : r.frames) {
            if (f.sender == Sender::Controller && f.code == 0x7266)
                at.append(double(f.timeUs - r.frames.first().timeUs) / 1000.0);
        }
        return at;
    };
    const QVector<double> first = beats(readFile(recorded));
    const QVector<double> second = beats(readFile(replayed));
    QVERIFY2(first.size() >= 3, qPrintable(QString::number(first.size())));
    // The replayed session may end a little sooner or later than the
    // recorded one: the beats both sessions lasted for must agree.
    const int common = int(qMin(first.size(), second.size()));
    QVERIFY(common >= first.size() - 1);
    for (int i = 0; i < common; ++i)
        QVERIFY2(qAbs(second[i] - first[i]) < 150.0,
                 qPrintable(QStringLiteral("beat %1: %2 ms, recorded %3 ms").arg(i).arg(second[i]).arg(first[i])));
}

// A job download runs over the file connection (port 5000): the replay
// plays that connection too, and the host stores the same file again.
void TestQrxReplay::downloadReplaysOverTheFileConnection()
{
    QTemporaryDir controller;
    QVERIFY(QDir(controller.path()).mkpath(QStringLiteral("jobs/R2")));
    QByteArray job;
    for (int i = 0; i < 5000; ++i)
        job += char('A' + i % 26);
    QFile file(controller.path() + QStringLiteral("/jobs/R2/DOWN.JBR"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(job);
    file.close();
    const QString recorded = m_dir.filePath(QStringLiteral("download.pcap"));
    {
        qrxsim::FileServiceHandle files(*m_sim);
        QVERIFY(files.isListening());
        files.with([&](qrxsim::FileService &service) { service.jobDir = controller.path() + QStringLiteral("/jobs"); });
        QTemporaryDir host;
        const QrxRun run = recordQrx(recorded, {QStringLiteral("download"), QStringLiteral("--root"), host.path()});
        QVERIFY2(run.exitCode == 0, qPrintable(run.err));
    }
    int onFileConnection = 0;
    for (const RecordedFrame &f : readFile(recorded).frames)
        onFileConnection += f.onFileConnection() ? 1 : 0;
    QVERIFY(onFileConnection >= 4);

    QVERIFY(startReplay(recorded));
    QTemporaryDir host;
    const QrxRun run = runQrx(m_address, {QStringLiteral("download"), QStringLiteral("--root"), host.path()});
    QVERIFY2(run.exitCode == 0, qPrintable(run.err + replayErrors()));
    QFile stored(host.path() + QStringLiteral("/robotJob/R2/DOWN.JBR"));
    QVERIFY(stored.open(QIODevice::ReadOnly));
    QCOMPARE(stored.readAll(), job);
}

// A host that does something else than the recorded one is answered as far
// as the recording goes, and the replay says where the sessions part.
void TestQrxReplay::departuresAreReported()
{
    const QString recorded = m_dir.filePath(QStringLiteral("status.pcap"));
    QCOMPARE(recordQrx(recorded, {QStringLiteral("status")}).exitCode, 0);
    QVERIFY(startReplay(recorded));
    runQrx(m_address, {QStringLiteral("--timeout"), QStringLiteral("1"), QStringLiteral("speed"), QStringLiteral("55")});
    QTRY_VERIFY_WITH_TIMEOUT(replayErrors().contains(QLatin1String("where the recording has")), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(replayErrors().contains(QLatin1String("was never sent in the recording")), 20000);
    QCOMPARE(m_replay.state(), QProcess::Running);
}

// A recording cut short plays up to the cut: the replay names the fault and
// answers what it has. Cut inside the first position answer (0x2F08), it
// brings the host up to its position query, which then goes unanswered.
void TestQrxReplay::damagedRecordingPlaysItsFirstPart()
{
    const QString recorded = m_dir.filePath(QStringLiteral("whole.pcap"));
    QCOMPARE(recordQrx(recorded, {QStringLiteral("status")}).exitCode, 0);
    QFile whole(recorded);
    QVERIFY(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    int position = -1;
    for (int at = bytes.indexOf("Nf"); at >= 0 && position < 0; at = bytes.indexOf("Nf", at + 1)) {
        if (bytes.mid(at + 4, 2) == QByteArray("\x2f\x08"))
            position = at;
    }
    QVERIFY(position > 0);
    const QString cut = m_dir.filePath(QStringLiteral("cut.pcap"));
    QFile part(cut);
    QVERIFY(part.open(QIODevice::WriteOnly));
    part.write(bytes.left(position + 8));
    part.close();
    const auto read = readFile(cut);
    QVERIFY(read.error.contains(QLatin1String("is truncated")));

    QVERIFY(startReplay(cut));
    QTRY_VERIFY_WITH_TIMEOUT(
        replayErrors().contains(QStringLiteral("the %1 frames before it play").arg(read.frames.size())), 10000);
    const QrxRun run = runQrx(m_address, {QStringLiteral("--timeout"), QStringLiteral("1"), QStringLiteral("status")});
    QVERIFY(run.finished);
    QVERIFY2(run.err.contains(QLatin1String("timed out waiting for the position")), qPrintable(run.out + run.err));
    QCOMPARE(m_replay.state(), QProcess::Running);
}

QTEST_GUILESS_MAIN(TestQrxReplay)
#include "tst_qrx_replay.moc"
