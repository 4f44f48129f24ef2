// The report table without a socket: each row hands one payload to the row
// of its code, with the state set up first, and checks every field of the
// state afterwards (those named must hold the value given, all others must
// be as they were), whether the report was taken and wakes the waiters, the
// log lines, the request it makes, the host message it carries and the
// signals it emits, all of them, exactly.

#include "link/LinkTypes.h"
#include "robot/ReportTable.h"
#include "robot/RobotSignals.h"
#include "robot/RobotState.h"

#include <QSignalSpy>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

// ---- the state as named text fields ---------------------------------------

struct Field
{
    std::function<QString()> get;
    std::function<void(const QString &)> set;
};
using Fields = QMap<QString, Field>;

QString number(double v)
{
    return QString::number(v, 'g', 15);
}

template <typename T>
void scalar(Fields &f, const QString &name, std::atomic<T> &v)
{
    f[name] = {[&v] { return number(double(v.load())); }, [&v](const QString &s) { v.store(T(s.toDouble())); }};
}

template <typename T>
void array(Fields &f, const QString &name, T *v, int n)
{
    for (int i = 0; i < n; ++i) {
        T &at = v[i];
        f[QStringLiteral("%1[%2]").arg(name).arg(i)] = {[&at] { return number(double(at)); },
                                                        [&at](const QString &s) { at = T(s.toDouble()); }};
    }
}

#define SCALARS(X)                                                                                            \
    X(servoStatus) X(operationMode) X(modeReceived) X(modeRepeated) X(replyFlag) X(coordinate)               \
    X(coordinateGate) X(speed) X(currentTool) X(deadman) X(deadmanMode) X(deadmanPortOne) X(deadmanPortTwo)  \
    X(teachType) X(runningStatus) X(jobStatus) X(jobContinueRun) X(currentRunLine) X(globalVarValue)         \
    X(continuousMotionMode) X(robotCount) X(robotType) X(axisCount) X(lastToolNum) X(dhResult)               \
    X(zeroCalibrationSuccess) X(jogging) X(externalAxisJog) X(currentUserFrame) X(positionerAxisCount)       \
    X(robotOverride) X(robotDefault) X(ready) X(modeNotificationForced)

#define ARRAYS(X)                                                                                             \
    X(robotServoStatus, 4) X(currentPosition, 6) X(jointPosition, 6) X(cartesianPosition, 6)                  \
    X(syncPosition, 5) X(dout, 16) X(din, 16) X(aout, 16) X(ain, 16) X(globalInt, 1000) X(globalReal, 1000)  \
    X(globalBool, 1000) X(globalPosition, 14) X(motorVel[0], 7) X(motorVel[1], 7) X(motorVelSync[0], 5)      \
    X(motorVelSync[1], 5) X(motorTorque[0], 7) X(motorTorque[1], 7) X(motorTorqueSync[0], 5)                 \
    X(motorTorqueSync[1], 5) X(motorTheoTorque[0], 7) X(motorTheoTorque[1], 7) X(motorOverload, 7)           \
    X(motorOverloadSync, 5) X(singleCycle, 7) X(fourPointData, 9) X(fourPointResult, 5)

Fields fieldsOf(qrx::RobotState &s)
{
    Fields f;
#define ADD_SCALAR(name) scalar(f, QStringLiteral(#name), s.name);
#define ADD_ARRAY(name, n) array(f, QStringLiteral(#name), s.name, n);
    SCALARS(ADD_SCALAR)
    ARRAYS(ADD_ARRAY)
#undef ADD_SCALAR
#undef ADD_ARRAY
    for (int tool = 0; tool < qrx::RobotState::kToolCount; ++tool)
        array(f, QStringLiteral("toolParameters[%1]").arg(tool), s.toolParameters[tool], 6);
    f[QStringLiteral("servoSlaveLabels")] = {[&s] { return s.servoSlaveLabels.join(QLatin1Char('|')); },
                                             [&s](const QString &t) { s.servoSlaveLabels = t.split(QLatin1Char('|')); }};
    f[QStringLiteral("lastMessage")] = {[&s] { return QString::fromStdString(s.lastMessageText); },
                                        [&s](const QString &t) { s.lastMessageText = t.toStdString(); }};
    return f;
}

// "name=value name=value"
QMap<QString, QString> assignments(const QString &text)
{
    QMap<QString, QString> out;
    for (const QString &pair : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const int eq = pair.indexOf(QLatin1Char('='));
        out[pair.left(eq)] = pair.mid(eq + 1);
    }
    return out;
}

QMap<QString, QString> snapshot(const Fields &fields)
{
    QMap<QString, QString> out;
    for (auto it = fields.begin(); it != fields.end(); ++it)
        out[it.key()] = it->get();
    return out;
}

// ---- the signals as text ---------------------------------------------------

QString argText(const QVariant &v)
{
    const int type = v.userType();
    if (type == QMetaType::QByteArray) {
        const QByteArray bytes = v.toByteArray();
        for (const char c : bytes) {
            if (uchar(c) < 0x20 && c != '\n')
                return QStringLiteral("0x") + QString::fromLatin1(bytes.toHex());
        }
        return QLatin1Char('\'') + QString::fromUtf8(bytes).replace(QLatin1Char('\n'), QLatin1String("\\n")) +
               QLatin1Char('\'');
    }
    if (type == QMetaType::QString)
        return QLatin1Char('"') + v.toString() + QLatin1Char('"');
    if (type == QMetaType::Bool)
        return v.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (type == qMetaTypeId<OperationMode>())
        return QString::number(int(v.value<OperationMode>()));
    if (type == qMetaTypeId<schar>())
        return QString::number(int(v.value<schar>()));
    if (type == QMetaType::QStringList)
        return QLatin1Char('"') + v.toStringList().join(QLatin1Char('|')) + QLatin1Char('"');
    if (type == qMetaTypeId<RobotType>())
        return QString::number(int(v.value<RobotType>()));
    if (type == QMetaType::UChar)
        return QString::number(int(v.value<uchar>()));
    if (type == qMetaTypeId<QVector<double>>()) {
        QStringList values;
        for (double d : v.value<QVector<double>>())
            values << number(d);
        return QLatin1Char('[') + values.join(QLatin1Char(',')) + QLatin1Char(']');
    }
    return v.toString();
}

// Spies on every signal of a RobotSignals object.
class Emissions
{
public:
    explicit Emissions(RobotSignals *to)
    {
        const QMetaObject &meta = RobotSignals::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QMetaMethod method = meta.method(i);
            if (method.methodType() == QMetaMethod::Signal)
                m_spies.emplace_back(new QSignalSpy(to, method));
        }
    }

    // "name(arg,arg)" per emission, sorted.
    QStringList texts() const
    {
        QStringList out;
        for (const auto &spy : m_spies) {
            const QByteArray signature = spy->signal();
            const QString name = QString::fromLatin1(signature.left(signature.indexOf('(')));
            for (const QList<QVariant> &args : *spy) {
                QStringList parts;
                for (const QVariant &arg : args)
                    parts << argText(arg);
                out << name + QLatin1Char('(') + parts.join(QLatin1Char(',')) + QLatin1Char(')');
            }
        }
        out.sort();
        return out;
    }

private:
    std::vector<std::unique_ptr<QSignalSpy>> m_spies;
};

struct Case
{
    int code;
    QByteArray payload;
    QString preset;      // fields set before the report
    QString changed;     // fields that must hold these values after it (all others unchanged)
    bool taken = true;
    bool wakes = true;
    QStringList emits;   // every signal emitted, "name(args)"
    QStringList lines;   // log lines
    QString asks;        // the request made: "0x3C0B {...}"
    QString message;     // the host message: "level text"
};

} // namespace
Q_DECLARE_METATYPE(Case)

class tst_Decoders : public QObject
{
    Q_OBJECT

    static void add(const char *name, const Case &c) { QTest::newRow(name) << c; }

private Q_SLOTS:
    void initTestCase()
    {
        qrx::registerLinkMetaTypes();
        qRegisterMetaType<QVector<double>>("QVector<double>");
        qRegisterMetaType<schar>("schar");
        qRegisterMetaType<RobotType>("RobotType");
    }

    void report_data();
    void report();
};

void tst_Decoders::report_data()
{
    QTest::addColumn<Case>("c");
    const QString servoLine = QStringLiteral("接收伺服状态 mode=%1 robot=%2 status=%3");

    // ---- servo 0x2003 {"mode","robot","status"}; preset servoStatus 9 ------
    add("servo, teach, current robot, status 3",
        {0x2003, R"({"mode":0,"robot":1,"status":3})", "servoStatus=9", "servoStatus=3", true, true,
         {"robot_servo_changed(0x000103)"}, {servoLine.arg(0).arg(1).arg(3)}});
    add("servo, teach, other robot",
        {0x2003, R"({"mode":0,"robot":2,"status":3})", "servoStatus=9", "", true, true,
         {"robot_servo_changed(0x000203)"}, {servoLine.arg(0).arg(2).arg(3)}});
    add("servo, teach, other robot, off",
        {0x2003, R"({"mode":0,"robot":2,"status":0})", "servoStatus=9", "", true, true,
         {"robot_servo_changed(0x000200)", "show_hide_Axis_widget(0)"}, {servoLine.arg(0).arg(2).arg(0)}});
    add("servo, remote, other robot",
        {0x2003, R"({"mode":0,"robot":2,"status":1})", "operationMode=1 servoStatus=9", "servoStatus=1", true, true,
         {"robot_servo_changed(0x000201)", "show_hide_Axis_widget(0)"}, {servoLine.arg(0).arg(2).arg(1)}});
    add("servo, multi, robot 2",
        {0x2003, R"({"mode":1,"robot":2,"status":3})", "operationMode=1", "servoStatus=3 robotServoStatus[1]=3", true,
         true, {"robot_servo_changed(0x010203)", "show_hide_Axis_widget(0)", "updateR2MotButtonText()"},
         {servoLine.arg(1).arg(2).arg(3)}});
    add("servo, multi, robot 4, teach",
        {0x2003, R"({"mode":1,"robot":4,"status":1})", "", "robotServoStatus[3]=1", true, true,
         {"robot_servo_changed(0x010401)", "show_hide_Axis_widget(0)", "updateR4MotButtonText()"},
         {servoLine.arg(1).arg(4).arg(1)}});
    add("servo, multi, robot 5",
        {0x2003, R"({"mode":1,"robot":5,"status":1})", "operationMode=2", "servoStatus=1", true, true,
         {"robot_servo_changed(0x010501)", "show_hide_Axis_widget(0)"}, {servoLine.arg(1).arg(5).arg(1)}});
    add("servo, no status", {0x2003, R"({"mode":1,"robot":1})", "", "", false});
    add("servo, a string", {0x2003, R"("status")", "", "", false});

    // ---- mode 0x2103 {"mode"} -------------------------------------------------
    add("mode, teach from remote",
        {0x2103, R"({"mode":0})", "ready=1 operationMode=1", "operationMode=0 modeReceived=1 replyFlag=1", true, true,
         {"robot_mode_changed(0)"}, {"接收当前工作模式: 示教模式"}, "0x2105 "});
    add("mode, remote",
        {0x2103, R"({"mode":1})", "ready=1", "operationMode=1 modeReceived=1 replyFlag=1", true, true,
         {"robot_mode_changed(1)"}, {"接收当前工作模式: 远程模式"}});
    add("mode, run: its line is not written",
        {0x2103, R"({"mode":2})", "ready=1", "operationMode=2 modeReceived=1 replyFlag=1", true, true,
         {"robot_mode_changed(2)"}});
    add("mode, repeated",
        {0x2103, R"({"mode":2})", "ready=1 operationMode=2", "modeRepeated=1 modeReceived=1 replyFlag=1", true, true});
    add("mode, repeated, forced",
        {0x2103, R"({"mode":2})", "ready=1 operationMode=2 modeNotificationForced=1",
         "modeRepeated=1 modeReceived=1 replyFlag=1 modeNotificationForced=0", true, true, {"robot_mode_changed(2)"}});
    add("mode 3 ignored, no wake", {0x2103, R"({"mode":3})", "ready=1 operationMode=1", "", false, false});
    add("mode -1 ignored, no wake", {0x2103, R"({"mode":-1})", "ready=1", "", false, false});
    add("mode, not ready, no wake", {0x2103, R"({"mode":2})", "", "", false, false});
    add("mode, not ready, garbage, no wake", {0x2103, "not json", "", "", false, false});
    add("mode, ready, garbage wakes", {0x2103, "not json", "ready=1", "", false, true});

    // ---- coordinate 0x2203 {"coord","robot"}; preset coordinate 9 ----------
    add("coordinate, joint",
        {0x2203, R"({"coord":0,"robot":1})", "coordinate=9", "coordinate=0", true, true,
         {"robot_coord_changed(0)"}, {"接收机器人1当前坐标系为关节坐标系"}});
    add("coordinate, tool, robot 2 current",
        {0x2203, R"({"coord":2,"robot":2})", "coordinate=9 robotOverride=2", "coordinate=2", true, true,
         {"robot_coord_changed(2)"}, {"接收机器人2当前坐标系为工具坐标系"}});
    add("coordinate, user asks for the user frame",
        {0x2203, R"({"coord":3,"robot":3})", "robotOverride=3", "coordinate=3", true, true,
         {"robot_coord_changed(3)"}, {"接收机器人3当前坐标系为用户坐标系"}, "0x3C0B {\"robot\":3}\n"});
    add("coordinate, gate 6 lets through",
        {0x2203, R"({"coord":1,"robot":1})", "coordinateGate=6", "coordinate=1", true, true,
         {"robot_coord_changed(1)"}, {"接收机器人1当前坐标系为直角坐标系"}});
    add("coordinate, other robot", {0x2203, R"({"coord":1,"robot":2})", "coordinate=9", "", false});
    add("coordinate, gate 7", {0x2203, R"({"coord":3,"robot":1})", "coordinateGate=7", "", false});
    add("coordinate, an array", {0x2203, "[1,3]", "", "", false});

    // ---- speed 0x2603 {"robot","speed"} ---------------------------------------
    add("speed 101, joint", {0x2603, R"({"speed":101})", "", "speed=101", true, true,
                             {"robot_speed_changed(101)"}, {"接收当前速度为0.1°"}});
    add("speed 101, Cartesian", {0x2603, R"({"speed":101})", "coordinate=1", "speed=101", true, true,
                                 {"robot_speed_changed(101)"}, {"接收当前速度为1mm"}});
    add("speed 102, tool", {0x2603, R"({"speed":102})", "coordinate=2", "speed=102", true, true,
                            {"robot_speed_changed(102)"}, {"接收当前速度为0.1mm"}});
    add("speed 103, joint", {0x2603, R"({"speed":103})", "", "speed=103", true, true,
                             {"robot_speed_changed(103)"}, {"接收当前速度为0.001°"}});
    add("speed 103, user", {0x2603, R"({"speed":103})", "coordinate=3", "speed=103", true, true,
                            {"robot_speed_changed(103)"}, {"接收当前速度为0.01mm"}});
    add("speed 55 percent", {0x2603, R"({"robot":1,"speed":55})", "", "speed=55", true, true,
                             {"robot_speed_changed(55)"}, {"接收当前速度为55%"}});
    add("speed 200 wraps as a signed byte", {0x2603, R"({"speed":200})", "", "speed=200", true, true,
                                             {"robot_speed_changed(-56)"}, {"接收当前速度为200%"}});
    add("speed, a number", {0x2603, "101", "", "", false});

    // ---- tool, deadman, teach type, robots ------------------------------------
    add("tool 3", {0x380C, R"({"curToolNum":3,"robot":1})", "", "currentTool=3", true, true,
                   {"robot_tool_changed(3)"}, {"接收当前工具手为3"}});
    add("no tool", {0x380C, R"({"curToolNum":0,"robot":1})", "currentTool=4", "currentTool=0", true, true,
                    {"robot_tool_changed(0)"}, {"接收当前无工具手"}});
    add("tool of another robot", {0x380C, R"({"curToolNum":6,"robot":2})", "currentTool=4", "", false});
    add("tool, string members", {0x380C, R"({"curToolNum":"x","robot":"1"})", "", "", false});
    add("deadman", {0x2303, R"({"deadman":1})", "", "deadman=1", true, true, {"deadmanStateChange(1)"},
                    {"接收当前控制器工作模式deadman=1"}});
    add("deadman, empty", {0x2303, "", "deadman=1", "", false});
    add("deadman hard-wired",
        {0x2306, R"({"deadmanMode":1,"deadmanPortOne":5,"deadmanPortTwo":6})", "",
         "deadmanMode=1 deadmanPortOne=5 deadmanPortTwo=6", true, true, {"deadmanModeChange(true,5,6)"}});
    add("deadman on the pendant", {0x2306, R"({"deadmanPortTwo":0})", "deadmanMode=3", "deadmanMode=0", true, true,
                                   {"deadmanModeChange(false,0,0)"}});
    add("jog teaching", {0x2106, R"({"teachType":0})", "teachType=1", "teachType=0", true, true,
                         {"signal_updateTeachtype(\"点动\")"}});
    add("drag teaching", {0x2106, R"({"teachType":1})", "", "teachType=1", true, true,
                          {"signal_updateTeachtype(\"拖拽\")"}});
    add("robot count", {0x2E06, R"({"sum":3})", "", "robotCount=3", true, true, {"robot_change_RobotSum(3)"},
                        {"接收机器人数量 = 3"}});
    add("robot count, keyless", {0x2E06, R"({"num":3})", "", "", false});
    add("current robot", {0x5003, R"({"mode":1,"robot":2})", "robotOverride=0", "robotOverride=2 robotDefault=2",
                          true, true, {"robot_change_CurRobot(1,2)"}});

    // ---- positions --------------------------------------------------------------
    add("position, Cartesian",
        {0x2F08, R"({"coord":1,"pos":[1.5,-2.25,3,400.125,5,6,7],"posDeg":[10,20,30,40,50,60,70],"robot":1})", "",
         "currentPosition[0]=1.5 currentPosition[1]=-2.25 currentPosition[2]=3 currentPosition[3]=400.125 "
         "currentPosition[4]=5 currentPosition[5]=6 cartesianPosition[0]=1.5 cartesianPosition[1]=-2.25 "
         "cartesianPosition[2]=3 cartesianPosition[3]=400.125 cartesianPosition[4]=5 cartesianPosition[5]=6", true,
         true, {"receive_moreRobot_CurPosition('1 1 10.0000 20.0000 30.0000 40.0000 50.0000 60.0000 70.0000',"
                "'1 1 1.5000 -2.2500 3.0000 400.1250 5.0000 6.0000 7.0000')"}});
    add("position, joint, short",
        {0x2F08, R"({"coord":0,"pos":[9,8],"robot":2})", "",
         "currentPosition[0]=9 currentPosition[1]=8 jointPosition[0]=9 jointPosition[1]=8", true, true,
         {"receive_moreRobot_CurPosition('2 0','2 0 9.0000 8.0000')"}});
    add("position, user frame: only the current one",
        {0x2F08, R"({"coord":3,"pos":[6]})", "", "currentPosition[0]=6", true, true,
         {"receive_moreRobot_CurPosition('0 3','0 3 6.0000')"}});
    add("position, not JSON", {0x2F08, R"({"pos":[1,2)", "", "", false});
    add("position, members of other kinds",
        {0x2F08, R"({"robot":[1],"coord":{},"pos":{"0":5},"posDeg":"x"})", "", "", true, true,
         {"receive_moreRobot_CurPosition('0 0','0 0')"}});
    add("position stream relayed decoded",
        {0x2A03, R"({"configuration":5,"coord":2,"posDeg":[1.5,2,3,4,5,6,-7],"robot":2})", "", "", false, false,
         {"robot_position_update([1.5,2,3,4,5,6,-7],2,2)"}});
    add("position stream without its configuration", {0x2A03, R"({"coord":2,"posDeg":[1],"robot":2})", "", "",
                                                      false, false});
    add("external axes",
        {0x7013, R"({"coord":0,"pos":[1.5,2.5,3.5,4.5,5.5,6.5],"robot":1})", "",
         "syncPosition[0]=1.5 syncPosition[1]=2.5 syncPosition[2]=3.5 syncPosition[3]=4.5 syncPosition[4]=5.5"});

    // ---- IO: port n at n-1, the payload shown as received ---------------------
    add("digital outputs", {0x3603, R"({"status":[1,0,1]})", "dout[1]=7", "dout[0]=1 dout[1]=0 dout[2]=1", true, true,
                            {"robot_dout_display('{\"status\":[1,0,1]}')"}});
    add("digital inputs", {0x3606, R"({"status":[0,1]})", "", "din[1]=1", true, true,
                           {"robot_din_display('{\"status\":[0,1]}')"}});
    add("analog outputs", {0x3609, R"({"status":[2.5]})", "", "aout[0]=2.5", true, true,
                           {"robot_aout_display('{\"status\":[2.5]}')"}});
    add("analog inputs, long array",
        {0x360B, R"({"status":[0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,9,7]})", "", "ain[15]=9", true, true,
         {"robot_ain_display('{\"status\":[0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,9,7]}')"}});
    add("digital outputs, wrong kind", {0x3603, R"({"status":"on"})", "", "", true, true,
                                        {"robot_dout_display('{\"status\":\"on\"}')"}});
    add("digital outputs, keyless", {0x3603, R"({"robot":1})", "", "", false});

    // ---- motor figures, cycle, variables -----------------------------------
    add("motor speed",
        {0x2A05, R"({"maxVel":[2],"maxVelSync":[4],"vel":[1],"velSync":[3]})", "",
         "motorVel[0][0]=1 motorVel[1][0]=2 motorVelSync[0][0]=3 motorVelSync[1][0]=4", true, true,
         {"robot_tool_receiveMotorSpeed('{\"maxVel\":[2],\"maxVelSync\":[4],\"vel\":[1],\"velSync\":[3]}')"}});
    add("motor torque",
        {0x2A07, R"({"maxTheoTorq":[6],"maxTorq":[2],"maxTorqSync":[4],"theoTorq":[5],"torq":[1],"torqSync":[3]})",
         "", "motorTorque[0][0]=1 motorTorque[1][0]=2 motorTorqueSync[0][0]=3 motorTorqueSync[1][0]=4 "
             "motorTheoTorque[0][0]=5 motorTheoTorque[1][0]=6", true, true,
         {"robot_tool_receiveMotorTorque('{\"maxTheoTorq\":[6],\"maxTorq\":[2],\"maxTorqSync\":[4],\"theoTorq\":[5],"
          "\"torq\":[1],\"torqSync\":[3]}')",
          "robot_tool_receiveMotorTorqueTheo('{\"maxTheoTorq\":[6],\"maxTorq\":[2],\"maxTorqSync\":[4],"
          "\"theoTorq\":[5],\"torq\":[1],\"torqSync\":[3]}')"}});
    add("motor load", {0x2A0B, R"({"motorOverload":[10,20],"motorOverloadSync":[1]})", "",
                       "motorOverload[0]=10 motorOverload[1]=20 motorOverloadSync[0]=1", true, true,
                       {"signal_robotReceivedMotorLoad('{\"motorOverload\":[10,20],\"motorOverloadSync\":[1]}')"}});
    add("motor load, keyless", {0x2A0B, R"({"robot":1})", "", "", false});
    add("single cycle", {0x330A, R"({"value":[0.5,1]})", "", "singleCycle[0]=0.5 singleCycle[1]=1", true, true,
                         {"robot_singlevalue('{\"value\":[0.5,1]}')"}});
    add("global real", {0x560C, R"({"varName":"GD012","varType":3,"varValue":2.75})", "",
                        "globalVarValue=2.75 globalReal[12]=2.75", true, true,
                        {"robot_get_oneglobalVariant('{\"varName\":\"GD012\",\"varType\":3,\"varValue\":2.75}')"}});
    add("global int", {0x560C, R"({"varName":"GI999","varType":2,"varValue":-42})", "",
                       "globalVarValue=-42 globalInt[999]=-42", true, true,
                       {"robot_get_oneglobalVariant('{\"varName\":\"GI999\",\"varType\":2,\"varValue\":-42}')"}});
    add("global bool", {0x560C, R"({"varName":"GB001","varType":1,"varValue":5})", "",
                        "globalVarValue=5 globalBool[1]=1", true, true,
                        {"robot_get_oneglobalVariant('{\"varName\":\"GB001\",\"varType\":1,\"varValue\":5}')"}});
    add("global, name without an index", {0x560C, R"({"varName":"GI","varType":2,"varValue":3})", "",
                                          "globalVarValue=3", true, true,
                                          {"robot_get_oneglobalVariant('{\"varName\":\"GI\",\"varType\":2,\"varValue\":3}')"}});
    add("continuous motion open", {0x50B3, R"({"open":true})", "", "continuousMotionMode=1"});
    add("continuous motion closed", {0x50B3, R"({"open":false})", "continuousMotionMode=1", "continuousMotionMode=0"});

    // ---- jobs -------------------------------------------------------------------
    add("running state", {0x3D03, R"({"robot":1,"status":2})", "", "runningStatus=2", true, true,
                          {"pro_run_status('12')"}, {"接收机器人运行状态 robot=1 status=2"}});
    add("running and job status",
        {0x4919, R"({"continueRun":1,"robot":2,"status":1})", "", "runningStatus=1 jobStatus=1 jobContinueRun=1", true,
         true, {"pro_run_status('21')", "robot_job_status(2,1,1)", "robotp_jstatus(2,1)"},
         {"接收机器人运行状态 robot=2 status=1", "收到机器人运行状态 robot=2 status=1"}});
    add("job status without a status",
        {0x9103, R"({"continueRun":1,"robot":2})", "jobStatus=4", "jobStatus=0 jobContinueRun=1", true, true,
         {"robot_job_status(2,0,1)", "robotp_jstatus(2,0)"}, {"收到机器人运行状态 robot=2 status=0"}});
    add("job line", {0x3504, R"({"num":37})", "", "currentRunLine=37", true, true,
                     {"robot_JobfiletoLine('{\"num\":37}')"}});
    add("step end", {0x3501, R"({"jobname":"焊接1","num":14,"robot":2})", "", "", true, true,
                     {"robot_step_end(2,\"焊接1\",14)"}});
    add("breakpoint line", {0x3502, R"({"num":17,"robot":2})", "", "", true, true, {"robot_BWB_command(2,17)"}});
    add("cycle index", {0x5013, R"({"count":20,"index":4,"robot":3})", "", "", true, true,
                        {"RobotCycleIndex(3,20,4)", "robot_cycletimes_update(20)", "sPBtnState(3)"}});
    add("current run line relayed", {0x9106, QByteArray("{\"line\":7}\n\0tail", 16), "", "", false, false,
                                     {"signal_curRunLine(0x7b226c696e65223a377d0a007461696c)"}});
    add("job file list complete", {0x5535, "", "", "", false, false, {"robot_job_File_Info_Finish()"}});

    // ---- reports without their keys: nothing changes, the waiters wake -----
    const char *const keyless[][2] = {
        {"0x2003", R"({"x":1})"},         {"0x2103", R"({"robot":1})"},   {"0x2203", R"({"robot":1})"},
        {"0x2603", R"({"robot":1})"},     {"0x5003", R"({"mode":0})"},    {"0x2F08", R"({"coord":0,"robot":1})"},
        {"0x3D03", R"({"robot":1})"},     {"0x3504", R"({"line":3})"},    {"0x560C", R"({"robot":1})"},
        {"0x3501", R"({"x":1})"},         {"0x3502", R"({"x":1})"},       {"0x5013", R"({"x":1})"},
        {"0x4919", R"({"robot":1})"},     {"0x50B3", R"({"x":1})"},       {"0x7013", R"({"robot":1})"},
        {"0x2E03", R"({"robot":1})"},     {"0x3807", R"({"note":"x"})"},  {"0x3C0C", R"({"x":0})"},
        {"0x3B03", R"({"AxisNum":3})"},   {"0x2606", R"({"robot":1})"},   {"0x2803", R"({"robot":1})"},
        {"0x260C", R"({"robot":1})"},     {"0x3E05", R"({"robot":1})"},   {"0x3A03", R"({"robot":1})"},
        {"0x3804", R"({"robot":1})"},     {"0x7106", R"({"robot":1})"},   {"0x4003", R"({"robot":1})"},
        {"0x2F16", R"({"robot":1})"},     {"0x3803", R"({"robot":1})"},   {"0x7103", R"({"robot":1})"},
        {"0x710B", R"({"robot":1})"},     {"0x3813", R"({"robot":1})"},   {"0x7208", R"({"robot":1})"},
        {"0x7204", R"({"robot":1})"},     {"0x7206", R"({"robot":1})"},   {"0x7104", R"({"robot":1})"},
        {"0x3C09", R"({"robot":1})"},     {"0x3C0F", R"({"robot":1})"},   {"0x5719", R"({"robot":1})"},
        {"0x5033", R"({"robot":1})"},     {"0x7017", R"({"robot":1})"},   {"0x5606", R"({"robot":1})"},
        {"0x3E03", R"({"robot":1})"},     {"0x2E0F", R"({"robot":1})"},
    };
    for (const auto &k : keyless) {
        const QByteArray name = QByteArray("keyless ") + k[0] + ' ' + k[1];
        QTest::newRow(name.constData()) << Case{QByteArray(k[0]).toInt(nullptr, 16), k[1], "ready=1", "", false};
    }

    // ---- controller messages: no wake -----------------------------------------
    add("error", {0x2B03, R"({"data":"急停按下","type":8193})", "", "lastMessage=急停按下", true, false, {}, {}, {},
                  "0 错误： 急停按下"});
    add("warning, a number", {0x2B04, R"({"data":404})", "", "lastMessage=404", true, false, {}, {}, {},
                              "1 警告： 404"});
    add("information, null", {0x2B05, R"({"data":null})", "lastMessage=x", "lastMessage=", true, false, {}, {}, {},
                               "2 消息： "});
    add("error, type only", {0x2B03, R"({"type":24592})", "", "", false, false});
    add("servo error of the current robot",
        {0x2B03, R"({"data":"机器人2伺服错误","type":24592})", "robotOverride=2", "lastMessage=机器人2伺服错误", true,
         false, {"robot_servo_err_info(\"机器人2伺服错误\")"}, {}, {}, "0 错误： 机器人2伺服错误"});
    add("servo error of another robot",
        {0x2B03, R"({"data":"机器人2伺服错误","type":24592})", "", "lastMessage=机器人2伺服错误", true, false, {}, {},
         {}, "0 错误： 机器人2伺服错误"});
    add("servo error, other type",
        {0x2B03, R"({"data":"机器人1伺服错误","type":24593})", "", "lastMessage=机器人1伺服错误", true, false, {}, {},
         {}, "0 错误： 机器人1伺服错误"});

    // ---- robot type and kinematics -------------------------------------------
    add("robot type, four-axis", {0x2E03, R"({"type":4})", "", "robotType=10 axisCount=4", true, true,
                                  {"robot_change_CurRobotType(10)"}, {"接收机器人型号四轴机器人"}});
    add("robot type, delta keeps the axes", {0x2E03, R"({"type":20})", "axisCount=5", "robotType=20", true, true,
                                             {"robot_change_CurRobotType(20)"}, {"接收机器人型号delta机器人"}});
    add("robot type, seven axes: no line", {0x2E03, R"({"type":12})", "", "robotType=17 axisCount=7", true, true,
                                            {"robot_change_CurRobotType(17)"}});
    // Every wire code after a seven-axis model: the type, the axes, the line.
    struct TypeRow
    {
        int wire, type, axes;
        const char *line;
    };
    const TypeRow types[] = {
        {1, 1, 6, "接收机器人型号 六轴机器人"},       {2, 6, 4, "接收机器人型号四轴SCARA机器人"},
        {3, 8, 4, "接收机器人型号四轴码垛机器人"},     {5, 18, 1, "接收机器人型号一轴机器人"},
        {6, 5, 5, "接收机器人型号五轴机器人"},         {7, 2, 6, "接收机器人型号UR机器人"},
        {8, 16, 2, "接收机器人型号二轴SCARA机器人"},   {9, 13, 3, nullptr},
        {10, 14, 3, nullptr},                          {11, 15, 3, nullptr},
        {13, 7, 4, "接收机器人型号SCARA异型一机器人"}, {14, 9, 4, "接收机器人型号四轴码垛异形一机器人"},
        {15, 3, 6, "接收机器人型号六轴喷涂机器人"},   {16, 11, 4, "接收机器人型号四轴直角机器人"},
        {17, 12, 4, "接收机器人型号四轴极坐标异型机器人"}, {18, 4, 6, "接收机器人型号 六轴异型一"},
        {19, 19, 5, "接收机器人型号龙门焊接机器人"},   {0, 0, 7, nullptr},
        {21, 0, 7, nullptr},                           {-1, 0, 7, nullptr},
    };
    for (const TypeRow &t : types) {
        const QByteArray name = "robot type, wire " + QByteArray::number(t.wire);
        QTest::newRow(name.constData())
            << Case{0x2E03, "{\"type\":" + QByteArray::number(t.wire) + "}", "robotType=17 axisCount=7",
                    QStringLiteral("robotType=%1 axisCount=%2").arg(t.type).arg(t.axes), true, true,
                    {QStringLiteral("robot_change_CurRobotType(%1)").arg(t.type)},
                    t.line ? QStringList{QString::fromUtf8(t.line)} : QStringList()};
    }
    add("robot type, not JSON", {0x2E03, "type=7", "robotType=8 axisCount=4", "", false});
    add("joint parameters",
        {0x3B03, R"({"Joint":{"AxisDirection":-1,"AxisNum":3,"BackLash":0.01,"DeRatedVel":2500,"Direction":1,)"
                 R"("EncoderResolution":17,"MaxAcc":2.5,"MaxDeRotSpeed":3400,"MaxDecel":3.5,"MaxRotSpeed":3500,)"
                 R"("NegSWLimit":-170,"PosSWLimit":170,"RatedDeRotSpeed":2900,"RatedRotSpeed":3000,"RatedVel":3000,)"
                 R"("ReducRatio":101}})",
         "", "", true, true,
         {"robot_joint_para(3,'{\"Joint\":{\"AxisDirection\":-1,\"AxisNum\":3,\"BackLash\":0.01,\"DeRatedVel\":2500,"
          "\"Direction\":1,\"EncoderResolution\":17,\"MaxAcc\":2.5,\"MaxDeRotSpeed\":3400,\"MaxDecel\":3.5,"
          "\"MaxRotSpeed\":3500,\"NegSWLimit\":-170,\"PosSWLimit\":170,\"RatedDeRotSpeed\":2900,"
          "\"RatedRotSpeed\":3000,\"RatedVel\":3000,\"ReducRatio\":101}}')"},
         {"接收关节参数数据 joint=3 posSWLimit=170 negSWLimit=-170 ratedvel=3000 DeRatedVel=2500 maxRotSpeed=3500 "
          "maxDeRotSpeed=3400 maxAcc=2.5 maxDecel=3.5 reducRatio=101 encoderResolution=17 ratedrotspeed=3000 "
          "ratedderotspeed=2900 backlash=0.01 direction=1 AxisDirection=-1"}});
    add("Cartesian jog limits", {0x2609, R"({"MaxAcc":100,"MaxSpeed":250})", "", "", true, true,
                                 {"robot_rectInchSpeed_data_check('{\"MaxAcc\":100,\"MaxSpeed\":250}')"}});
    add("interpolation", {0x2803, R"({"interpolationMethod":1,"stopTime":10})", "", "", true, true,
                          {"robot_interpolationMode_data_check('{\"interpolationMethod\":1,\"stopTime\":10}')"},
                          {"接收机器人插补方式 interpolationMethod=1"}});
    add("sensitivity", {0x260C, R"({"Sensitivity":3})", "", "", true, true,
                        {"robot_sensitivity_data_check('{\"Sensitivity\":3}')"}, {"接收点动灵敏度 Sensitivity=3"}});
    add("DH values ignored for the one-axis model, not JSON", {0x3E05, "Link=1", "robotType=18", "", false, false});
    add("joint jog limits", {0x2606, R"({"AxisNum":2,"MaxSpeed":30})", "", "", true, true,
                             {"robot_jointInchSpeed_data_check(2,'{\"AxisNum\":2,\"MaxSpeed\":30}')"},
                             {"接收关节轴最大点动速度 AxisNum=2 MaxSpeed=30 MaxAcc=0"}});
    add("positioner axes", {0x700B, R"({"AxisNum":2})", "", "positionerAxisCount=2", true, true,
                            {"robot_tool_receiveOutterAxisCount(2)", "signal_syncPositionerNum('{\"AxisNum\":2}')"},
                            {"接收变位机轴数 2"}});
    add("positioner axes, keyless: handed on all the same", {0x700B, R"({"robot":1})", "", "", true, true,
                                                             {"signal_syncPositionerNum('{\"robot\":1}')"}});
    add("DH ignored for the one-axis model, no wake", {0x3A03, R"({"pitch":2.5})", "robotType=18", "", false, false});

    // ---- tools, user frames, calibration ---------------------------------------
    add("tool parameters",
        {0x3807, R"({"note":"n","toolDeg":[1,2,3,4,5,6],"toolNum":2})", "",
         "lastToolNum=2 toolParameters[2][0]=1 toolParameters[2][1]=2 toolParameters[2][2]=3 toolParameters[2][3]=4 "
         "toolParameters[2][4]=5 toolParameters[2][5]=6", true, true,
         {"robot_tool_count_check(2,[1,2,3,4,5,6],'{\"note\":\"n\",\"toolDeg\":[1,2,3,4,5,6],\"toolNum\":2}')"},
         {"接收工具手参数 toolNum=2 x=1 y=2 z=3 A=4 B=5 C=6 note=n"}});
    add("tool 32 is no tool of the table", {0x3807, R"({"toolDeg":[1],"toolNum":32})", "", "lastToolNum=32", true, true,
                                            {"robot_tool_count_check(32,[1,0,0,0,0,0],'{\"toolDeg\":[1],\"toolNum\":32}')"},
                                            {"接收工具手参数 toolNum=32 x=1 y=0 z=0 A=0 B=0 C=0 note="}});
    add("tool 5, the whole record",
        {0x3807, "{\"note\":\"焊枪\",\"payload_mass\":2.5,\"toolDeg\":[10.5,-20.25,300.0,0.0,90.0,-45.5],\"toolNum\":5}",
         "", "lastToolNum=5 toolParameters[5][0]=10.5 toolParameters[5][1]=-20.25 toolParameters[5][2]=300 "
             "toolParameters[5][4]=90 toolParameters[5][5]=-45.5", true, true,
         {"robot_tool_count_check(5,[10.5,-20.25,300,0,90,-45.5],'{\"note\":\"焊枪\",\"payload_mass\":2.5,"
          "\"toolDeg\":[10.5,-20.25,300.0,0.0,90.0,-45.5],\"toolNum\":5}')"},
         {"接收工具手参数 toolNum=5 x=10.5 y=-20.25 z=300 A=0 B=90 C=-45.5 note=焊枪"}});
    add("tool parameters, not JSON", {0x3807, "\xff\xfe not json", "lastToolNum=17", "", false});
    add("four-point data, scalar length",
        {0x7208, R"({"dtheta":2.5,"length":7.5,"result":0,"status":[1]})", "fourPointData[1]=9 fourPointData[6]=9",
         "fourPointData[0]=1 fourPointData[1]=0 fourPointData[5]=7.5 fourPointData[6]=0 fourPointData[8]=2.5", true,
         true, {"robot_received4Point('{\"dtheta\":2.5,\"length\":7.5,\"result\":0,\"status\":[1]}')"}});
    add("DH calculation not applied", {0x7206, R"({"apply":0})", "dhResult=1", "dhResult=0", true, true,
                                       {"robot_receivedresultForDH('{\"apply\":0}')"}});
    add("zero point with its axis", {0x3303, R"({"axis":3})", "", "zeroCalibrationSuccess=1", true, true,
                                     {"robot_zero_success('{\"axis\":3}')"}, {"接收零点标定成功"}});
    add("current user frame", {0x3C0C, R"({"curUserNum":4})", "", "currentUserFrame=4", true, true,
                               {"robot_usercoords_inuse(4)"}, {"接收切换用户坐标 userNum=4"}});
    add("four-point data",
        {0x7208, R"({"dtheta":1,"length":[4,5,6],"result":1,"status":[1,1,0,0]})", "",
         "fourPointData[0]=1 fourPointData[1]=1 fourPointData[4]=1 fourPointData[5]=4 fourPointData[6]=5 "
         "fourPointData[7]=6 fourPointData[8]=1", true, true,
         {"robot_received4Point('{\"dtheta\":1,\"length\":[4,5,6],\"result\":1,\"status\":[1,1,0,0]}')"}});
    add("four-point result, one length", {0x7204, R"({"length":7,"result":1})", "fourPointResult[2]=9",
                                          "fourPointResult[0]=1 fourPointResult[1]=7 fourPointResult[2]=0", true, true,
                                          {"robot_count_successFor4('{\"length\":7,\"result\":1}')"}});
    add("DH calculation applied", {0x7206, R"({"apply":true})", "", "dhResult=1", true, true,
                                   {"robot_receivedresultForDH('{\"apply\":true}')"}});
    add("zero point, empty payload", {0x3303, "", "", "zeroCalibrationSuccess=1", true, true,
                                      {"robot_zero_success('')"}, {"接收零点标定成功"}});
    add("tool calibration failed", {0x3804, R"({"result":0})", "", "", true, true, {"robot_count_success(0)"},
                                    {"接收工具手标定失败"}});
    add("20-point result", {0x7104, R"({"distance":0.5,"result":1})", "", "", true, true,
                            {"robot_count_successFor20(1,0.5)"}, {"接收工具手标定计算成功,结果值为0.5"}});
    add("tool calibration state", {0x3816, R"({"status":2})", "", "", true, true,
                                   {"signal_toolStatus('{\"status\":2}')"}});
    add("tool calibration state, not JSON", {0x7108, "status", "", "", false, true});

    // ---- process messages -----------------------------------------------------
    add("global position", {0x5606, R"({"posName":"GP001","posValue":[1,2,3],"robot":1})", "globalPosition[5]=9",
                            "globalPosition[0]=1 globalPosition[1]=2 globalPosition[2]=3 globalPosition[5]=0", true,
                            true, {"robot_rec_globalPosition('{\"posName\":\"GP001\",\"posValue\":[1,2,3],\"robot\":1}')"}});
    add("servo list", {0x2E0F, R"({"IONum":1,"servoNum":2})", "", "servoSlaveLabels=伺服-1|伺服-2|IO-1", true, true,
                       {"signal_updateRobotServoList()"}});
    add("robot list", {0x3E03, R"({"listnum":2,"nameList":["自定义","R6","R4"]})", "", "", true, true,
                       {"receivePresentRobotList(\"R6|自定义\")"}});
    add("unsafe external axes", {0x2F16, R"({"isSync":0,"robot":3,"safePos":1})", "", "", true, true, {},
                                 {"机器人3 外部轴不在安全位置  )!"}});
    add("Modbus and IO", {0x5033, R"({"ExternIOConnect":1,"ModbusConnect":0})", "", "", true, true,
                          {"robot_Modbus_Io_State(0,1)"}});

    // ---- relays: the payload byte for byte, no wake -------------------------
    add("controller version", {0x3403, "{\"version\":\"控制器 V3.2\"}\n", "", "", false, false,
                               {"robot_Rec_ControlVersion('{\"version\":\"控制器 V3.2\"}\\n')"}});
    add("weld monitor", {0x4016, R"({"I":120.5})", "", "", false, false,
                         {"robot_receiveWeldMonitor('{\"I\":120.5}')"}});
}

void tst_Decoders::report()
{
    QFETCH(Case, c);
    const qrx::ReportRow *row = qrx::findReportRow(quint16(c.code));
    QVERIFY(row);

    qrx::RobotState state;
    const Fields fields = fieldsOf(state);
    const QMap<QString, QString> preset = assignments(c.preset);
    for (auto it = preset.begin(); it != preset.end(); ++it) {
        QVERIFY2(fields.contains(it.key()), qPrintable(it.key()));
        fields[it.key()].set(it.value());
    }
    const QMap<QString, QString> before = snapshot(fields);

    RobotSignals to;
    const Emissions emissions(&to);
    const qrx::Change change = qrx::decodeReport(*row, c.payload, state);
    const bool wakes = qrx::notifyReport(*row, change, to, c.payload);

    QMap<QString, QString> expected = before;
    const QMap<QString, QString> changed = assignments(c.changed);
    for (auto it = changed.begin(); it != changed.end(); ++it) {
        QVERIFY2(fields.contains(it.key()), qPrintable(it.key()));
        expected[it.key()] = it.value();
    }
    const QMap<QString, QString> after = snapshot(fields);
    for (auto it = expected.begin(); it != expected.end(); ++it)
        QVERIFY2(after[it.key()] == it.value(),
                 qPrintable(QStringLiteral("%1 = %2, expected %3").arg(it.key(), after[it.key()], it.value())));

    QCOMPARE(change.taken, c.taken);
    QCOMPARE(wakes, c.wakes);
    QStringList emits = c.emits;
    emits.sort();
    QCOMPARE(emissions.texts(), emits);
    QCOMPARE(change.lines, c.lines);
    const QString asks = change.request ? QStringLiteral("0x") + QString::number(change.request, 16).toUpper() +
                                              QLatin1Char(' ') + QString::fromUtf8(change.requestPayload)
                                        : QString();
    QCOMPARE(asks, c.asks);
    const QString message = change.messageLevel >= 0
                                ? QString::number(change.messageLevel) + QLatin1Char(' ') + QString::fromUtf8(change.message)
                                : QString();
    QCOMPARE(message, c.message);
}

QTEST_GUILESS_MAIN(tst_Decoders)
#include "tst_decoders.moc"
