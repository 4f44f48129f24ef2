// qrx-bridge as a plant runs it: a real mosquitto broker with passwords and
// an ACL, simulated controllers (qrx-sim), two bridges of one cell on the
// one broker, and clients that read states and alarms and send commands.
// Controllers and the broker are killed and stopped on purpose.

#include "MqttProbe.h"
#include "support/Loopback.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <json/reader.h>
#include <map>
#include <memory>
#include <set>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr int kBrokerPort = 1883;
constexpr int kBrokerTlsPort = 8883;
const char *const kStateFields[] = {"cartesian", "coord", "joints", "line", "link", "mode", "running",
                                    "servo", "speed", "time", "tool", "type"};

Json::Value parse(const std::string &text)
{
    Json::Value value;
    Json::Reader().parse(text, value);
    return value;
}

// The last byte of the broker's address plus n: the controllers' addresses.
QString nextAddress(const QString &base, int n)
{
    QStringList bytes = base.split('.');
    bytes[3] = QString::number(bytes[3].toInt() + n);
    return bytes.join('.');
}

} // namespace

class TestBridgeMqtt : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void brokerRefusesStrangers();
    void bridgesAndStatesRetained();
    void commandAnsweredAndStateFollows();
    void verbsReachController_data();
    void verbsReachController();
    void badInputNeverReachesController_data();
    void badInputNeverReachesController();
    void refusedAlarmPublished();
    void servoAndJobs();
    void commandsOffByDefault();
    void requestsWithoutAnswerOrRetained();
    void silentControllerBusyOthersGoOn();
    void killedControllerShowsLinkLost();
    void brokerRestartRepublishes();
    void tlsToBroker();
    void serviceReadyAndWatchdog();
    void cleanStopAndWill();

private:
    void startBroker();
    void startSim(int n);
    void startBridge(const QString &id, const QStringList &controllers, bool allowCommands,
                     const QProcessEnvironment &extra = {});
    std::unique_ptr<MqttProbe> client(const QString &user);
    // The retained state of a controller as a newcomer reads it, once it
    // contains the text (waits up to timeout).
    std::string stateOnceIt(const char *name, const std::string &contains, std::chrono::milliseconds timeout);
    QByteArray simLog(int n) const;
    static int count(const QByteArray &log, const QByteArray &what) { return log.count(what); }

    bool makeCertificates();

    QTemporaryDir m_dir;
    QString m_address;
    bool m_tls = false; // the broker has a TLS listener too
    std::unique_ptr<QProcess> m_broker;
    std::map<int, std::unique_ptr<QProcess>> m_sims;
    std::map<QString, std::unique_ptr<QProcess>> m_bridges;
    std::unique_ptr<MqttProbe> m_operator;
};

void TestBridgeMqtt::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_dir.setAutoRemove(!qEnvironmentVariableIsSet("QRX_KEEP_TEST_LOGS")); // broker, bridge and controller logs
    m_address = testsupport::loopbackAddress();
    QVERIFY2(m_address.split('.')[3].toInt() <= 249, "the controllers take the five addresses after the broker's");

    // Three users: the bridges, an operator who may send commands, a reader.
    const QString passwd = m_dir.filePath("passwd");
    for (const char *user : {"bridge", "operator", "reader"}) {
        QStringList args{"-b", passwd, user, QString(user) + "-secret"};
        if (QString(user) == "bridge")
            args.prepend("-c");
        QCOMPARE(QProcess::execute(QRX_MOSQUITTO_PASSWD_PATH, args), 0);
    }
    QFile acl(m_dir.filePath("acl"));
    QVERIFY(acl.open(QIODevice::WriteOnly));
    acl.write("user bridge\ntopic readwrite qrx/#\ntopic write replies/#\n\n"
              "user operator\ntopic read qrx/#\ntopic write qrx/+/+/cmd/#\ntopic read replies/#\n\n"
              "user reader\ntopic read qrx/#\ntopic read replies/#\n");
    acl.close();
    QFile conf(m_dir.filePath("mosquitto.conf"));
    QVERIFY(conf.open(QIODevice::WriteOnly));
    conf.write(QStringLiteral("listener %1 %2\nallow_anonymous false\npassword_file %3\nacl_file %4\n"
                              "persistence false\nlog_dest stderr\n%5")
                   .arg(kBrokerPort)
                   .arg(m_address, passwd, acl.fileName(), getuid() == 0 ? "user root\n" : "")
                   .toUtf8());
    m_tls = makeCertificates();
    if (m_tls)
        conf.write(QStringLiteral("listener %1 %2\ncafile %3\ncertfile %4\nkeyfile %5\n")
                       .arg(kBrokerTlsPort)
                       .arg(m_address, m_dir.filePath("ca.pem"), m_dir.filePath("server.pem"),
                            m_dir.filePath("server.key"))
                       .toUtf8());
    conf.close();

    for (int n = 1; n <= 4; ++n)
        startSim(n);
    // Bridge a serves r1 to r3 and runs commands; bridge b serves r4 only
    // and refuses them: two bridges of one cell on one broker. They start
    // before the broker does and find it when it comes.
    // r5 never answers: nothing listens at its address. It is bridge a's,
    // beside live controllers: its repeated opens must not stop the others
    // from being served.
    startBridge("a", {"r1=" + nextAddress(m_address, 1), "r2=" + nextAddress(m_address, 2),
                      "r3=" + nextAddress(m_address, 3), "r5=" + nextAddress(m_address, 5)},
                true);
    startBridge("b", {"r4=" + nextAddress(m_address, 4)}, false);
    QTRY_VERIFY_WITH_TIMEOUT(QFile(m_dir.filePath("bridge-a.log")).size() > 0, 20000); // it has tried
    startBroker();
    m_operator = client("operator");
    QCOMPARE(m_operator->connectResult(), 0);
    QVERIFY(m_operator->subscribe("qrx/#"));
    for (const char *id : {"a", "b"})
        QVERIFY(!m_operator->waitOn(std::string("qrx/c1/bridges/") + id, "online", 20s).topic.empty());
}

bool TestBridgeMqtt::makeCertificates()
{
    // A CA of the test's own and the broker's certificate for its address.
    const auto openssl = [this](const QStringList &args) {
        QProcess p;
        p.setWorkingDirectory(m_dir.path());
        p.start("openssl", args);
        return p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    };
    return openssl({"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", "ca.key", "-out", "ca.pem", "-subj",
                    "/CN=qrx-test-ca", "-days", "2"})
           && openssl({"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", "server.key", "-out", "server.pem",
                       "-subj", "/CN=" + m_address, "-days", "2", "-CA", "ca.pem", "-CAkey", "ca.key", "-addext",
                       "subjectAltName=IP:" + m_address});
}

void TestBridgeMqtt::cleanupTestCase()
{
    m_operator.reset();
    for (auto &[id, bridge] : m_bridges)
        bridge->terminate();
    for (auto &[id, bridge] : m_bridges)
        bridge->waitForFinished(10000);
    m_bridges.clear();
    m_sims.clear(); // QProcess kills what still runs
    m_broker.reset();
}

void TestBridgeMqtt::startBroker()
{
    m_broker = std::make_unique<QProcess>();
    m_broker->setStandardOutputFile(m_dir.filePath("broker.log"), QIODevice::Append);
    m_broker->setStandardErrorFile(m_dir.filePath("broker.log"), QIODevice::Append);
    m_broker->start(QRX_MOSQUITTO_PATH, {"-c", m_dir.filePath("mosquitto.conf")});
    QVERIFY(m_broker->waitForStarted());
    // Up when a known user gets in.
    QTRY_VERIFY_WITH_TIMEOUT(client("reader")->connectResult() == 0, 20000);
}

void TestBridgeMqtt::startSim(int n)
{
    auto sim = std::make_unique<QProcess>();
    sim->setStandardOutputFile(m_dir.filePath(QString("sim%1.log").arg(n)));
    sim->setStandardErrorFile(m_dir.filePath(QString("sim%1.log").arg(n)));
    sim->start(QRX_SIM_PATH, {"--address", nextAddress(m_address, n), "--verbose", "--file-port", "0"});
    QVERIFY(sim->waitForStarted());
    m_sims[n] = std::move(sim);
    QTRY_VERIFY_WITH_TIMEOUT(simLog(n).contains("listening on"), 20000);
}

QByteArray TestBridgeMqtt::simLog(int n) const
{
    QFile log(m_dir.filePath(QString("sim%1.log").arg(n)));
    return log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
}

void TestBridgeMqtt::startBridge(const QString &id, const QStringList &controllers, bool allowCommands,
                                 const QProcessEnvironment &extra)
{
    QFile password(m_dir.filePath("bridge.password"));
    password.open(QIODevice::WriteOnly);
    password.write("bridge-secret\n");
    password.close();
    QStringList args{"--broker", m_address + ':' + QString::number(kBrokerPort), "--cell", "c1", "--id", id,
                     "--username", "bridge", "--password-file", password.fileName(), "--queue", "4"};
    for (const QString &c : controllers)
        args << "--controller" << c;
    if (allowCommands)
        args << "--allow-commands";
    if (id == "b") {
        // The same through a config file.
        QJsonObject config{{"broker", args[1]}, {"cell", "c1"}, {"id", id}, {"username", "bridge"},
                           {"password-file", password.fileName()}, {"queue", 4},
                           {"controller", QJsonArray::fromStringList(controllers)}, {"allow-commands", allowCommands}};
        QFile file(m_dir.filePath("b.json"));
        file.open(QIODevice::WriteOnly);
        file.write(QJsonDocument(config).toJson());
        file.close();
        args = QStringList{"--config", file.fileName()};
    }
    auto bridge = std::make_unique<QProcess>();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QRX_LANG", "en");
    for (const QString &key : extra.keys())
        env.insert(key, extra.value(key));
    bridge->setProcessEnvironment(env);
    bridge->setStandardOutputFile(m_dir.filePath("bridge-" + id + ".log"), QIODevice::Append);
    bridge->setStandardErrorFile(m_dir.filePath("bridge-" + id + ".log"), QIODevice::Append);
    bridge->start(QRX_BRIDGE_PATH, args);
    QVERIFY(bridge->waitForStarted());
    m_bridges[id] = std::move(bridge);
}

std::unique_ptr<MqttProbe> TestBridgeMqtt::client(const QString &user)
{
    return std::make_unique<MqttProbe>(m_address.toStdString(), kBrokerPort, user.toStdString(),
                                       user.isEmpty() ? std::string() : (user + "-secret").toStdString());
}

std::string TestBridgeMqtt::stateOnceIt(const char *name, const std::string &contains,
                                        std::chrono::milliseconds timeout)
{
    const auto reader = client("reader");
    const std::string topic = std::string("qrx/c1/") + name + "/state";
    reader->subscribe(topic);
    return reader->waitOn(topic, contains, timeout).payload;
}

void TestBridgeMqtt::brokerRefusesStrangers()
{
    QVERIFY(client("")->connectResult() > 0); // anonymous
    MqttProbe wrong(m_address.toStdString(), kBrokerPort, "reader", "guess");
    QVERIFY(wrong.connectResult() > 0);
    // The reader may read but not command: the broker refuses the publish.
    const auto reader = client("reader");
    QCOMPARE(reader->connectResult(), 0);
    QVERIFY(reader->publishAcked("qrx/c1/r1/cmd/speed", "{\"speed\":5}") >= 0x80);
    QCOMPARE(m_operator->publishAcked("qrx/c1/r1/cmd/speed", "{\"speed\":5}"), 0);
}

void TestBridgeMqtt::bridgesAndStatesRetained()
{
    // A client that comes later finds everything retained.
    const auto reader = client("reader");
    QVERIFY(reader->subscribe("qrx/c1/#"));
    for (const char *id : {"a", "b"})
        QVERIFY2(reader->waitOn(std::string("qrx/c1/bridges/") + id, "online", 20s).retained, id);
    for (const char *name : {"r1", "r2", "r3", "r4"}) {
        const std::string topic = std::string("qrx/c1/") + name + "/state";
        QVERIFY(reader->waitOn(topic, "", 20s).retained); // the first one, before any change
        const auto m = reader->waitOn(topic, "\"link\":true", 20s);
        QVERIFY2(!m.topic.empty(), name);
        const Json::Value state = parse(m.payload);
        QCOMPARE(state.getMemberNames(), std::vector<std::string>(std::begin(kStateFields), std::end(kStateFields)));
        QCOMPARE(state["joints"].size(), 6u);
        QCOMPARE(state["cartesian"].size(), 6u);
        QVERIFY(QDateTime::fromString(QString::fromStdString(state["time"].asString()), Qt::ISODateWithMs).isValid());
        QVERIFY(QString::fromStdString(state["time"].asString()).endsWith('Z'));
    }
    QVERIFY(reader->waitOn("qrx/c1/r5/state", "\"link\":false", 20s).retained);
}

void TestBridgeMqtt::commandAnsweredAndStateFollows()
{
    m_operator->clear();
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/speed", "{\"speed\":37}"), std::string("{\"ok\":true}"));
    QVERIFY(!m_operator->waitOn("qrx/c1/r1/state", "\"speed\":37", 20s).topic.empty());
    QTRY_VERIFY_WITH_TIMEOUT(simLog(1).contains("<- 0x2601 {\"robot\":1,\"speed\":37}"), 10000);
    // At most --rate (2) states a second: a burst of changes comes out spaced.
    m_operator->clear();
    for (int speed : {11, 12, 13, 14, 15})
        QCOMPARE(m_operator->request("qrx/c1/r1/cmd/speed", "{\"speed\":" + std::to_string(speed) + "}"),
                 std::string("{\"ok\":true}"));
    QVERIFY(!m_operator->waitOn("qrx/c1/r1/state", "\"speed\":15", 20s).topic.empty());
    std::vector<std::chrono::steady_clock::time_point> times;
    for (const auto &m : m_operator->messages())
        if (m.topic == "qrx/c1/r1/state")
            times.push_back(m.arrived);
    for (std::size_t i = 1; i < times.size(); ++i)
        QVERIFY(times[i] - times[i - 1] > 400ms); // 500 ms apart, less the broker's jitter
}

void TestBridgeMqtt::verbsReachController_data()
{
    // What each verb puts on the wire, as the controller receives it.
    QTest::addColumn<QString>("verb");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<bool>("refused"); // the servo is off
    QTest::newRow("mode") << "mode" << QByteArray(R"({"mode":1})") << QByteArray(R"(<- 0x2101 {"mode":1})") << false;
    QTest::newRow("coord") << "coord" << QByteArray(R"({"coord":2})") << QByteArray(R"(<- 0x2201 {"coord":2,"robot":1})") << false;
    QTest::newRow("aout") << "io" << QByteArray(R"({"aout":2,"value":2.5})")
                          << QByteArray(R"(<- 0x3607 {"port":2,"value":2.50})") << false;
    QTest::newRow("var") << "var" << QByteArray(R"({"name":"GI003","value":42})")
                         << QByteArray(R"(<- 0x5607 {"varName":"GI003","varType":2,"varValue":42.0})") << false;
    QTest::newRow("linear") << "move" << QByteArray(R"({"kind":"linear","pos":[1,2,3,4,5,6.5],"speed":9,"acc":20})")
                            << QByteArray(R"(<- 0x4502 {"acc":20,"coord":1,"dec":50,"pos":[1.0,2.0,3.0,4.0,5.0,6.50],"robot":1,"vel":9})") << true;
    QTest::newRow("pause") << "job" << QByteArray(R"({"action":"pause"})") << QByteArray(R"(<- 0x2401 {"robot":1,"type":1})") << false;
    QTest::newRow("stop") << "job" << QByteArray(R"({"action":"stop"})") << QByteArray(R"(<- 0x2503 {"robot":1})") << false;
}

void TestBridgeMqtt::verbsReachController()
{
    QFETCH(QString, verb);
    QFETCH(QByteArray, payload);
    QFETCH(QByteArray, frame);
    QFETCH(bool, refused);
    const std::string answer = m_operator->request("qrx/c1/r1/cmd/" + verb.toStdString(), payload.toStdString());
    QVERIFY2(refused ? answer.find(R"({"error":"the controller refused: )") == 0 : answer == R"({"ok":true})",
             answer.c_str());
    QTRY_VERIFY_WITH_TIMEOUT(simLog(1).contains(frame), 10000);
}

void TestBridgeMqtt::badInputNeverReachesController_data()
{
    QTest::addColumn<QString>("verb");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("error");
    QTest::newRow("malformed") << "move" << QByteArray("{\"kind\":\"joint\",") << "not valid JSON";
    QTest::newRow("NaN") << "move" << QByteArray("{\"kind\":\"joint\",\"pos\":[NaN,0,0,0,0,0],\"speed\":5}")
                         << "not valid JSON";
    QTest::newRow("missing") << "move" << QByteArray("{\"kind\":\"joint\",\"speed\":5}") << "\"pos\" is missing";
    QTest::newRow("out of range") << "move"
                                  << QByteArray("{\"kind\":\"linear\",\"pos\":[0,0,0,0,0,0],\"speed\":500}")
                                  << "\"speed\" must be a whole number from 1 to 100";
    QTest::newRow("unknown verb") << "teleport" << QByteArray("{}") << "unknown verb \"teleport\"";
    QTest::newRow("oversized") << "move" << QByteArray(70000, ' ') << "more than the 4096 allowed";
}

void TestBridgeMqtt::badInputNeverReachesController()
{
    QFETCH(QString, verb);
    QFETCH(QByteArray, payload);
    QFETCH(QString, error);
    const int movesBefore = count(simLog(1), "<- 0x450");
    const Json::Value answer = parse(m_operator->request("qrx/c1/r1/cmd/" + verb.toStdString(), payload.toStdString()));
    QCOMPARE(answer["ok"].asBool(), false);
    QVERIFY2(QString::fromStdString(answer["error"].asString()).contains(error), answer["error"].asCString());
    // A good request behind it reaches the controller, alone.
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/io", "{\"dout\":3,\"value\":1}"), std::string("{\"ok\":true}"));
    QTRY_VERIFY_WITH_TIMEOUT(count(simLog(1), "<- 0x3601 {\"port\":3,\"status\":1}") > 0, 10000);
    QCOMPARE(count(simLog(1), "<- 0x450"), movesBefore);
}

void TestBridgeMqtt::refusedAlarmPublished()
{
    // The servo is off: the controller refuses the move with an error, which
    // is the answer and comes out as an alarm too (QoS 1, not retained).
    m_operator->clear();
    const std::string answer =
        m_operator->request("qrx/c1/r1/cmd/move", "{\"kind\":\"joint\",\"pos\":[1,2,3,4,5,6],\"speed\":10}");
    QVERIFY2(answer.find(R"({"error":"the controller refused: move refused)") == 0, answer.c_str());
    const auto alarm = m_operator->waitOn("qrx/c1/r1/alarm", "move refused", 20s);
    QVERIFY(!alarm.topic.empty());
    QVERIFY(!alarm.retained);
    const Json::Value value = parse(alarm.payload);
    QCOMPARE(value["level"].asString(), std::string("error"));
    QCOMPARE(value.getMemberNames(), (std::vector<std::string>{"level", "text", "time"}));
    QVERIFY(m_operator->waitOn("qrx/c1/r2/alarm", "", 0ms).topic.empty()); // only r1's
}

void TestBridgeMqtt::servoAndJobs()
{
    // A job does not start while the servo is off: said, and nothing sent.
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/job", R"({"action":"run","name":"WELD_1"})"),
             std::string(R"({"error":"the servo is off","ok":false})"));
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/mode", R"({"mode":0})"), std::string(R"({"ok":true})"));
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/job", R"({"action":"continue"})"),
             std::string(R"({"error":"the controller is not in run mode","ok":false})"));
    QVERIFY(!simLog(1).contains("<- 0x2501"));
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/servo", R"({"on":true})"), std::string(R"({"ok":true})"));
    QVERIFY(!stateOnceIt("r1", "\"servo\":1", 20s).empty()); // what the controller answered
    // The controller holds no such job: its refusal is the answer.
    const std::string answer = m_operator->request("qrx/c1/r1/cmd/job", R"({"action":"run","name":"WELD_1"})");
    QVERIFY2(answer.find(R"({"error":"the controller refused: )") == 0, answer.c_str());
    QTRY_VERIFY_WITH_TIMEOUT(simLog(1).contains(R"(<- 0x2501 {"continueRun":0,"jobname":"WELD_1","line":1,"robot":1,"startOver":true})"),
                             10000);
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/servo", R"({"on":false})"), std::string(R"({"ok":true})"));
    QTRY_VERIFY_WITH_TIMEOUT(simLog(1).contains(R"(<- 0x2301 {"deadman":0})"), 10000);
}

void TestBridgeMqtt::commandsOffByDefault()
{
    const int before = count(simLog(4), "<- 0x2601");
    const Json::Value answer = parse(m_operator->request("qrx/c1/r4/cmd/speed", "{\"speed\":9}"));
    QCOMPARE(answer["ok"].asBool(), false);
    QVERIFY(QString::fromStdString(answer["error"].asString()).contains("--allow-commands"));
    QCOMPARE(count(simLog(4), "<- 0x2601"), before);
}

void TestBridgeMqtt::requestsWithoutAnswerOrRetained()
{
    const Json::Value retained =
        parse(m_operator->request("qrx/c1/r1/cmd/speed", "{\"speed\":21}", 20s, /*retain=*/true));
    QCOMPARE(retained["ok"].asBool(), false);
    QVERIFY(QString::fromStdString(retained["error"].asString()).contains("retained"));
    // A retained command on the broker is never run, not even after a reconnection.
    m_operator->publishAcked("qrx/c1/r1/cmd/speed", ""); // clears the retained message
    m_operator->send("qrx/c1/r1/cmd/speed", "{\"speed\":22}", false, /*withResponseTopic=*/false);
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/speed", "{\"speed\":23}"), std::string("{\"ok\":true}"));
    QTRY_VERIFY_WITH_TIMEOUT(simLog(1).contains("\"speed\":23"), 10000);
    QVERIFY(!simLog(1).contains("\"speed\":21"));
    QVERIFY(!simLog(1).contains("\"speed\":22"));
}

void TestBridgeMqtt::silentControllerBusyOthersGoOn()
{
    // r3 stops answering (its process frozen, its socket still open). Each
    // servo command waits out the library's bound; the queue (4) fills and
    // the rest are answered "busy" at once.
    QVERIFY(!stateOnceIt("r3", "\"link\":true", 20s).empty());
    m_operator->clear();
    ::kill(pid_t(m_sims[3]->processId()), SIGSTOP);
    std::set<std::string> sent;
    for (int i = 0; i < 12; ++i)
        sent.insert(m_operator->send("qrx/c1/r3/cmd/servo", "{\"on\":true}"));
    QVERIFY(!m_operator->waitOn(m_operator->responseTopic(), "busy", 20s).topic.empty());
    // Meanwhile r1 answers at once.
    const auto start = std::chrono::steady_clock::now();
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/speed", "{\"speed\":30}"), std::string("{\"ok\":true}"));
    QVERIFY(std::chrono::steady_clock::now() - start < 2s);
    // r3's lost link shows (the library closes a link silent for 7 s).
    QVERIFY(!m_operator->waitOn("qrx/c1/r3/state", "\"link\":false", 20s).topic.empty());
    ::kill(pid_t(m_sims[3]->processId()), SIGCONT);
    // Every request gets exactly one answer; all but the four waiting ones
    // and the running one (if the work thread took the first request before
    // the fifth came) were busy.
    std::map<std::string, std::vector<std::string>> answers;
    const auto collect = [&] {
        answers.clear();
        for (const auto &m : m_operator->messages())
            if (m.topic == m_operator->responseTopic() && sent.count(m.correlation))
                answers[m.correlation].push_back(m.payload);
        return answers.size() == sent.size();
    };
    QTRY_VERIFY_WITH_TIMEOUT(collect(), 60000);
    int busy = 0;
    for (const auto &[correlation, payloads] : answers) {
        QVERIFY2(payloads.size() == 1, (correlation + ": " + payloads[0] + " | " + payloads.back()).c_str());
        busy += payloads[0].find("\"error\":\"busy") != std::string::npos;
    }
    QVERIFY2(busy == 12 - 1 - 4 || busy == 12 - 4, std::to_string(busy).c_str());
}

void TestBridgeMqtt::killedControllerShowsLinkLost()
{
    QVERIFY(!stateOnceIt("r2", "\"link\":true", 20s).empty());
    m_operator->clear();
    m_sims[2]->kill();
    const auto killed = std::chrono::steady_clock::now();
    QVERIFY(!m_operator->waitOn("qrx/c1/r2/state", "\"link\":false", 10s).topic.empty());
    QVERIFY(std::chrono::steady_clock::now() - killed < 10s);
    QCOMPARE(m_operator->request("qrx/c1/r2/cmd/speed", "{\"speed\":5}"),
             std::string("{\"error\":\"no link to the controller\",\"ok\":false}"));
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/speed", "{\"speed\":6}"), std::string("{\"ok\":true}"));
    // Back again: the bridge's link reconnects on its own.
    startSim(2);
    QVERIFY(!m_operator->waitOn("qrx/c1/r2/state", "\"link\":true", 30s).topic.empty());
}

void TestBridgeMqtt::brokerRestartRepublishes()
{
    m_operator.reset();
    m_broker->kill();
    m_broker->waitForFinished();
    startBroker(); // no persistence: every retained message is gone
    m_operator = client("operator");
    QCOMPARE(m_operator->connectResult(), 0);
    QVERIFY(m_operator->subscribe("qrx/#"));
    std::vector<std::string> topics{"qrx/c1/bridges/a", "qrx/c1/bridges/b"};
    for (const char *name : {"r1", "r2", "r3", "r4"})
        topics.push_back(std::string("qrx/c1/") + name + "/state");
    for (const auto &topic : topics) // live or retained, as the reconnection and the subscription meet
        QVERIFY2(!m_operator->waitOn(topic, "", 60s).topic.empty(), topic.c_str());
    // Then a newcomer finds them all retained.
    const auto late = client("reader");
    QVERIFY(late->subscribe("qrx/c1/#"));
    for (const auto &topic : topics)
        QVERIFY2(late->waitFor([&](const MqttProbe::Message &m) { return m.topic == topic && m.retained; }, 10s)
                     .payload.size() > 0,
                 topic.c_str());
    QCOMPARE(late->waitOn("qrx/c1/bridges/a", "", 0s).payload, std::string("online"));
    QCOMPARE(m_operator->request("qrx/c1/r1/cmd/speed", "{\"speed\":7}", 30s), std::string("{\"ok\":true}"));
}

void TestBridgeMqtt::tlsToBroker()
{
    if (!m_tls)
        QSKIP("openssl could not make the test's certificates");
    // Same broker, its TLS listener, the test's CA.
    QFile password(m_dir.filePath("bridge.password"));
    QProcess bridge;
    bridge.setStandardOutputFile(m_dir.filePath("bridge-t.log"));
    bridge.setStandardErrorFile(m_dir.filePath("bridge-t.log"));
    bridge.start(QRX_BRIDGE_PATH, {"--broker", m_address + ':' + QString::number(kBrokerTlsPort), "--cell", "c1",
                                   "--id", "t", "--username", "bridge", "--password-file", password.fileName(),
                                   "--tls-ca", m_dir.filePath("ca.pem"), "--controller", "r8=" + nextAddress(m_address, 1)});
    QVERIFY(bridge.waitForStarted());
    QVERIFY(!m_operator->waitOn("qrx/c1/bridges/t", "online", 20s).topic.empty());
    QVERIFY(!m_operator->waitOn("qrx/c1/r8/state", "\"link\":true", 20s).topic.empty());
    bridge.terminate();
    QVERIFY(bridge.waitForFinished(10000));
    QVERIFY(!m_operator->waitOn("qrx/c1/bridges/t", "offline", 10s).topic.empty());
}

void TestBridgeMqtt::serviceReadyAndWatchdog()
{
    // systemd's side of Type=notify and WatchdogSec, played by a datagram socket.
    const QString path = m_dir.filePath("notify");
    const int fd = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    QVERIFY(fd >= 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, QFile::encodeName(path).constData(), sizeof address.sun_path);
    QCOMPARE(::bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    const timeval bound{20, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &bound, sizeof bound);
    QProcessEnvironment env;
    env.insert("NOTIFY_SOCKET", path);
    env.insert("WATCHDOG_USEC", "400000");
    startBridge("c", {"r9=" + nextAddress(m_address, 1)}, false, env);
    QByteArray said;
    char datagram[256];
    while (said.count("WATCHDOG=1") < 3) {
        const ssize_t n = ::recv(fd, datagram, sizeof datagram, 0);
        if (n <= 0)
            break;
        said.append(datagram, int(n)).append('\n');
    }
    ::close(fd);
    QVERIFY2(said.startsWith("READY=1"), said.constData());
    QCOMPARE(said.count("WATCHDOG=1"), 3); // every 200 ms, half the period
    m_bridges["c"]->terminate();
    QVERIFY(m_bridges["c"]->waitForFinished(10000));
}

void TestBridgeMqtt::cleanStopAndWill()
{
    m_operator->clear();
    m_bridges["b"]->terminate(); // a clean stop says goodbye
    QVERIFY(m_bridges["b"]->waitForFinished(10000));
    QCOMPARE(m_bridges["b"]->exitCode(), 0);
    QVERIFY(!m_operator->waitOn("qrx/c1/bridges/b", "offline", 10s).topic.empty());
    m_bridges["a"]->kill(); // a dead one leaves its will within the keep-alive
    QVERIFY(!m_operator->waitOn("qrx/c1/bridges/a", "offline", 30s).topic.empty());
    const auto late = client("reader");
    QVERIFY(late->subscribe("qrx/c1/bridges/+"));
    QVERIFY(late->waitOn("qrx/c1/bridges/a", "offline", 10s).retained);
}

QTEST_GUILESS_MAIN(TestBridgeMqtt)
#include "tst_bridge_mqtt.moc"
