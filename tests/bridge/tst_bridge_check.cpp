// qrx-bridge's parts that need neither a broker nor a controller: options,
// topic names, the check of commands, the published texts and the queue.

#include "Command.h"
#include "Options.h"
#include "PublishedJson.h"
#include "Topics.h"
#include "WorkQueue.h"

#include <QtTest>
#include <atomic>
#include <map>
#include <memory>
#include <thread>

using namespace qrxbridge;

namespace {

std::map<std::string, std::string> g_files;

bool readFake(const std::string &path, std::string &text)
{
    const auto it = g_files.find(path);
    if (it == g_files.end())
        return false;
    text = it->second;
    return true;
}

ParsedOptions parse(const QString &line)
{
    std::vector<std::string> args;
    for (const QString &word : line.split(' ', Qt::SkipEmptyParts))
        args.push_back(word.toStdString());
    return parseOptions(args, readFake);
}

} // namespace

class TestBridgeCheck : public QObject
{
    Q_OBJECT

private slots:
    void options_data();
    void options();
    void configFile();
    void commandTopics_data();
    void commandTopics();
    void commands_data();
    void commands();
    void commandValues();
    void stateText();
    void queueBoundAndOrder();
};

void TestBridgeCheck::options_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("error"); // a part of the error, empty for none
    const QString base = "--cell c1 --id b1 --controller r1=127.0.0.1";
    QTest::newRow("minimal") << base << "";
    QTest::newRow("all") << base + " --broker mq:1884 --controller r2=10.0.0.2:7000 --rate 5 --allow-commands "
                                    "--username u --password-file /p --tls-ca /ca --queue 3"
                         << "";
    QTest::newRow("no cell") << "--id b1 --controller r1=1.2.3.4" << "--cell and --id are required";
    QTest::newRow("no controller") << "--cell c1 --id b1" << "at least one --controller";
    QTest::newRow("wildcard cell") << "--cell c+ --id b1 --controller r1=1.2.3.4" << "--cell \"c+\"";
    QTest::newRow("slash in name") << "--cell c1 --id b1 --controller a/b=1.2.3.4" << "--controller wants";
    QTest::newRow("bad port") << base + " --broker mq:99999" << "--broker wants";
    QTest::newRow("twice") << base + " --controller r1=1.2.3.5" << "\"r1\" is given twice";
    QTest::newRow("bridges") << "--cell c1 --id b1 --controller bridges=1.2.3.4" << "\"bridges\"";
    QTest::newRow("rate NaN") << base + " --rate nan" << "--rate wants";
    QTest::newRow("rate zero") << base + " --rate 0" << "--rate wants";
    QTest::newRow("user alone") << base + " --username u" << "go together";
    QTest::newRow("unknown") << base + " --colour red" << "unknown option --colour";
    QTest::newRow("value missing") << base + " --rate" << "--rate wants a value";
    QTest::newRow("no config") << base + " --config /none.json" << "cannot read the config file";
}

void TestBridgeCheck::options()
{
    QFETCH(QString, line);
    QFETCH(QString, error);
    const ParsedOptions parsed = parse(line);
    QCOMPARE(QString::fromStdString(parsed.error).contains(error), true);
    QCOMPARE(parsed.error.empty(), error.isEmpty());
    if (line.contains("--queue")) {
        const Options &o = parsed.options;
        QCOMPARE(o.brokerHost, std::string("mq"));
        QCOMPARE(o.effectiveBrokerPort(), 1884);
        QCOMPARE(o.controllers.size(), std::size_t(2));
        QCOMPARE(o.controllers[1].ip, std::string("10.0.0.2"));
        QCOMPARE(o.controllers[1].port, 7000);
        QCOMPARE(o.controllers[0].port, 6001);
        QCOMPARE(o.rate, 5.0);
        QCOMPARE(o.queueLimit, 3);
        QVERIFY(o.allowCommands);
    }
}

void TestBridgeCheck::configFile()
{
    g_files["/b.json"] = R"({"broker":"mq","cell":"c1","id":"b1","controller":["r1=127.0.0.1","r2=127.0.0.2:6002"],
                           "rate":4,"allow-commands":true,"tls-ca":"/ca.pem"})";
    g_files["/typo.json"] = R"({"cell":"c1","alow-commands":true})";
    g_files["/dup.json"] = R"({"cell":"c1","cell":"c2"})";
    g_files["/kind.json"] = R"({"cell":"c1","allow-commands":"yes"})";

    // The command line replaces the file's values and adds controllers.
    const ParsedOptions parsed = parse("--config /b.json --cell c9 --controller r3=10.1.1.1");
    QVERIFY2(parsed.error.empty(), parsed.error.c_str());
    QCOMPARE(parsed.options.cell, std::string("c9"));
    QCOMPARE(parsed.options.controllers.size(), std::size_t(3));
    QCOMPARE(parsed.options.controllers[1].port, 6002);
    QCOMPARE(parsed.options.rate, 4.0);
    QVERIFY(parsed.options.allowCommands);
    QCOMPARE(parsed.options.effectiveBrokerPort(), 8883); // TLS without a port

    QVERIFY(parse("--config /typo.json").error.find("\"alow-commands\" is not a field") != std::string::npos);
    QVERIFY(parse("--config /dup.json").error.find("not a JSON object") != std::string::npos);
    QVERIFY(parse("--config /kind.json").error.find("must be true or false") != std::string::npos);
    QVERIFY(parse("--help --bogus").help);
}

void TestBridgeCheck::commandTopics_data()
{
    QTest::addColumn<QString>("topic");
    QTest::addColumn<QString>("name"); // empty: not a command topic
    QTest::addColumn<QString>("verb");
    QTest::newRow("command") << "qrx/c1/r1/cmd/move" << "r1" << "move";
    QTest::newRow("other cell") << "qrx/c2/r1/cmd/move" << "" << "";
    QTest::newRow("state") << "qrx/c1/r1/state" << "" << "";
    QTest::newRow("deeper") << "qrx/c1/r1/cmd/move/x" << "" << "";
    QTest::newRow("no verb") << "qrx/c1/r1/cmd/" << "" << "";
    QTest::newRow("no name") << "qrx/c1//cmd/servo" << "" << "";
}

void TestBridgeCheck::commandTopics()
{
    QFETCH(QString, topic);
    QFETCH(QString, name);
    QFETCH(QString, verb);
    const Topics topics("c1");
    std::string n, v;
    QCOMPARE(topics.parseCommand(topic.toStdString(), n, v), !name.isEmpty());
    if (!name.isEmpty()) {
        QCOMPARE(QString::fromStdString(n), name);
        QCOMPARE(QString::fromStdString(v), verb);
        QCOMPARE(topics.commands(n), std::string("qrx/c1/r1/cmd/+"));
    }
    QCOMPARE(topics.state("r1"), std::string("qrx/c1/r1/state"));
    QCOMPARE(topics.alarm("r1"), std::string("qrx/c1/r1/alarm"));
    QCOMPARE(topics.bridge("b1"), std::string("qrx/c1/bridges/b1"));
}

void TestBridgeCheck::commands_data()
{
    QTest::addColumn<QString>("verb");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("error"); // a part of the error, empty for none
    QTest::newRow("servo") << "servo" << QByteArray(R"({"on":true})") << "";
    QTest::newRow("servo number") << "servo" << QByteArray(R"({"on":1})") << "\"on\" must be true or false";
    QTest::newRow("mode") << "mode" << QByteArray(R"({"mode":2})") << "";
    QTest::newRow("mode 3") << "mode" << QByteArray(R"({"mode":3})") << "\"mode\" must be a whole number from 0 to 2";
    QTest::newRow("coord real") << "coord" << QByteArray(R"({"coord":1.5})") << "\"coord\" must be a whole number";
    QTest::newRow("speed 0") << "speed" << QByteArray(R"({"speed":0})") << "from 1 to 100";
    QTest::newRow("speed 101") << "speed" << QByteArray(R"({"speed":101})") << "from 1 to 100";
    QTest::newRow("speed text") << "speed" << QByteArray(R"({"speed":"20"})") << "must be a whole number";
    QTest::newRow("speed missing") << "speed" << QByteArray("{}") << "\"speed\" is missing";
    QTest::newRow("extra field") << "speed" << QByteArray(R"({"speed":5,"sped":6})") << "unknown field \"sped\"";
    QTest::newRow("move") << "move" << QByteArray(R"({"kind":"linear","pos":[1,2,3,4,5,6],"speed":20})") << "";
    QTest::newRow("move 5 axes") << "move" << QByteArray(R"({"kind":"joint","pos":[1,2,3,4,5],"speed":20})")
                                 << "\"pos\" must be a list of 6 finite numbers";
    QTest::newRow("move huge") << "move" << QByteArray(R"({"kind":"joint","pos":[1,2,3,4,5,1e7],"speed":20})")
                               << "\"pos\" must be";
    QTest::newRow("move text axis") << "move" << QByteArray(R"({"kind":"joint","pos":[1,2,3,4,5,"6"],"speed":20})")
                                    << "\"pos\" must be";
    QTest::newRow("move kind") << "move" << QByteArray(R"({"kind":"circle","pos":[1,2,3,4,5,6],"speed":20})")
                               << "\"kind\" must be \"joint\" or \"linear\"";
    QTest::newRow("move acc") << "move" << QByteArray(R"({"kind":"joint","pos":[0,0,0,0,0,0],"speed":9,"acc":0})")
                              << "\"acc\" must be";
    QTest::newRow("NaN") << "move" << QByteArray(R"({"kind":"joint","pos":[NaN,0,0,0,0,0],"speed":20})")
                         << "not valid JSON";
    QTest::newRow("overflow") << "io" << QByteArray(R"({"aout":1,"value":1e999})") << "";
    QTest::newRow("dout") << "io" << QByteArray(R"({"dout":16,"value":1})") << "";
    QTest::newRow("dout 17") << "io" << QByteArray(R"({"dout":17,"value":1})") << "\"dout\" must be";
    QTest::newRow("dout 2") << "io" << QByteArray(R"({"dout":1,"value":2})") << "\"value\" must be";
    QTest::newRow("both ports") << "io" << QByteArray(R"({"dout":1,"aout":1,"value":1})") << "either \"dout\" or";
    QTest::newRow("var GI") << "var" << QByteArray(R"({"name":"GI003","value":42})") << "";
    QTest::newRow("var GI real") << "var" << QByteArray(R"({"name":"GI003","value":4.5})") << "whole number";
    QTest::newRow("var GB 2") << "var" << QByteArray(R"({"name":"GB001","value":2})") << "from 0 to 1";
    QTest::newRow("var GD") << "var" << QByteArray(R"({"name":"GD010","value":-0.25})") << "";
    QTest::newRow("var lower") << "var" << QByteArray(R"({"name":"gi003","value":1})") << "\"name\" must be GB";
    QTest::newRow("var long") << "var" << QByteArray(R"({"name":"GI0031","value":1})") << "\"name\" must be GB";
    QTest::newRow("job run") << "job" << QByteArray(R"({"action":"run","name":"WELD_1"})") << "";
    QTest::newRow("job run no name") << "job" << QByteArray(R"({"action":"run"})") << "\"name\" is missing";
    QTest::newRow("job path") << "job" << QByteArray(R"({"action":"run","name":"../x"})") << "\"name\" must be";
    QTest::newRow("job stop") << "job" << QByteArray(R"({"action":"stop"})") << "";
    QTest::newRow("job stop named") << "job" << QByteArray(R"({"action":"stop","name":"A"})") << "unknown field";
    QTest::newRow("unknown verb") << "jog" << QByteArray("{}") << "unknown verb \"jog\"";
    QTest::newRow("not JSON") << "speed" << QByteArray("{speed:5}") << "not valid JSON";
    QTest::newRow("trailing") << "speed" << QByteArray(R"({"speed":5} {})") << "not valid JSON";
    QTest::newRow("duplicate") << "speed" << QByteArray(R"({"speed":5,"speed":100})") << "not valid JSON";
    QTest::newRow("array") << "speed" << QByteArray("[5]") << "must be a JSON object";
    QTest::newRow("empty") << "speed" << QByteArray() << "not valid JSON";
    QTest::newRow("oversized") << "speed" << QByteArray(R"({"speed":5})") + QByteArray(5000, ' ') << "5011 bytes";
}

void TestBridgeCheck::commands()
{
    QFETCH(QString, verb);
    QFETCH(QByteArray, payload);
    QFETCH(QString, error);
    const CheckedCommand checked = checkCommand(verb.toStdString(), payload.toStdString());
    // 1e999 is not a finite number; jsoncpp may refuse it already.
    if (QTest::currentDataTag() == QByteArray("overflow")) {
        QVERIFY(!checked.error.empty());
        return;
    }
    QVERIFY2(QString::fromStdString(checked.error).contains(error), checked.error.c_str());
    QCOMPARE(checked.error.empty(), error.isEmpty());
}

void TestBridgeCheck::commandValues()
{
    const Command move =
        checkCommand("move", R"({"kind":"linear","pos":[1,2,3,4,5,6.5],"speed":20,"dec":70})").command;
    QCOMPARE(move.verb, Command::Move);
    QVERIFY(move.linear);
    QCOMPARE(move.pos[5], 6.5);
    QCOMPARE(move.value, 20);
    QCOMPARE(move.coord, 1); // linear moves default to Cartesian
    QCOMPARE(move.acc, 50);
    QCOMPARE(move.dec, 70);
    QCOMPARE(checkCommand("move", R"({"kind":"joint","pos":[0,0,0,0,0,0],"speed":1})").command.coord, 0);

    const Command aout = checkCommand("io", R"({"aout":4,"value":2.5})").command;
    QVERIFY(aout.analog);
    QCOMPARE(aout.port, 4);
    QCOMPARE(aout.number, 2.5);

    const Command var = checkCommand("var", R"({"name":"GI003","value":-42})").command;
    QCOMPARE(var.name, std::string("GI003"));
    QCOMPARE(var.number, -42.0);

    const Command job = checkCommand("job", R"({"action":"continue"})").command;
    QCOMPARE(job.action, Command::Continue);
    QCOMPARE(checkCommand("servo", R"({"on":false})").command.on, false);
}

void TestBridgeCheck::stateText()
{
    ControllerState s;
    s.link = true;
    s.servo = 3;
    s.mode = 2;
    s.speed = 20;
    s.running = 2;
    s.line = 7;
    s.joints = {1.5, 0, 0, 0, 0, -90};
    const auto when = WallClock::time_point(std::chrono::milliseconds(1795896000123LL));
    QCOMPARE(isoTime(when), std::string("2026-11-28T20:00:00.123Z"));
    const std::string state = "{\"cartesian\":[0.0,0.0,0.0,0.0,0.0,0.0],\"coord\":0,"
                              "\"joints\":[1.50,0.0,0.0,0.0,0.0,-90.0],\"line\":7,\"link\":true,\"mode\":2,"
                              "\"running\":2,\"servo\":3,\"speed\":20,\"time\":\"2026-11-28T20:00:00.123Z\","
                              "\"tool\":0,\"type\":0}";
    QCOMPARE(stateJson(s, when), state);
    const std::string alarm =
        "{\"level\":\"warning\",\"text\":\"警告： \\\"hot\\\"\",\"time\":\"2026-11-28T20:00:00.123Z\"}";
    QCOMPARE(alarmJson(1, "警告： \"hot\"", when), alarm);
    QVERIFY(alarmJson(0, "x", when).find("\"level\":\"error\"") != std::string::npos);
    QCOMPARE(errorAnswer("busy"), std::string("{\"error\":\"busy\",\"ok\":false}"));
    QCOMPARE(okAnswer(), std::string("{\"ok\":true}"));

    ControllerState t = s;
    QVERIFY(t == s);
    t.cartesian[5] = 0.001;
    QVERIFY(t != s);
}

void TestBridgeCheck::queueBoundAndOrder()
{
    std::atomic<bool> started{false}, release{false};
    std::vector<int> order;
    std::atomic<int> idles{0};
    {
        WorkQueue queue(2, [&] { ++idles; }, std::chrono::milliseconds(10));
        // Ends the blocking work whatever happens below, before the queue goes.
        const std::unique_ptr<void, std::function<void(void *)>> releaseOnExit(&release, [&](void *) { release = true; });
        QVERIFY(queue.push([&] {
            started = true;
            while (!release)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            order.push_back(1);
        }));
        QTRY_VERIFY_WITH_TIMEOUT(started.load(), 5000);
        const int idlesBefore = idles.load();
        // The first one runs; two may wait; a third is refused at once.
        QVERIFY(queue.push([&] { order.push_back(2); }));
        QVERIFY(queue.push([&] { order.push_back(3); }));
        QVERIFY(!queue.push([&] { order.push_back(4); }));
        QCOMPARE(idles.load(), idlesBefore); // no idle work while a work runs
        release = true;
        QTRY_COMPARE_WITH_TIMEOUT(order.size(), std::size_t(3), 5000);
        QCOMPARE(order, (std::vector<int>{1, 2, 3}));
        QTRY_VERIFY_WITH_TIMEOUT(idles.load() >= idlesBefore + 3, 5000); // and again after
        QVERIFY(queue.push([] {}));
    }
}

QTEST_GUILESS_MAIN(TestBridgeCheck)
#include "tst_bridge_check.moc"
