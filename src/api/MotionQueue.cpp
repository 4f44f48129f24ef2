#include "api/MotionQueue.h"

#include "job/CommandFactory.h"
#include "job/FlowCommands.h"
#include "job/IoCommands.h"
#include "job/MoveCommand.h"
#include "job/WeldCommands.h"

#include <cstring>
#include <limits>
#include <memory>

namespace qrx::api {

namespace {

constexpr double kUnbounded = std::numeric_limits<double>::max();

// Allowed values of the constants a record carries.
struct Range
{
    double min;
    double max;
    bool holds(double v) const { return v >= min && v <= max; }
};

// Speed by unit: 0 cm/s, 1 mm/s, 2 percent.
const Range kSpeedByUnit[] = {{0.1, 1000.0}, {1.0, 10000.0}, {1.0, 100.0}};
const Range kPercent{1.0, 100.0};
const Range kBlending{0.0, 5.0};
const Range kNotNegative{0.0, kUnbounded};
const Range kAnything{-kUnbounded, kUnbounded};
const Range kSpeedUnit{0.0, 2.0};
const Range kTargetKind{0.0, 1.0};
const Range kPort{1.0, 16.0};
const Range kBit{0.0, 1.0};

// Type words and name prefixes of variables (longest prefixes first).
struct Word
{
    const char *text;
    VariableClass cls;
};
const Word kTypeWords[] = {
    {"INT", LocalInt}, {"GINT", GlobalInt}, {"BOOL", LocalBool}, {"GBOOL", GlobalBool},
};
const Word kPrefixes[] = {
    {"GI", GlobalInt}, {"GD", GlobalReal}, {"GB", GlobalBool}, {"I", LocalInt}, {"D", LocalReal},
};

// Text of a fixed-size field, up to its NUL or its end.
template <std::size_t N>
std::string text(const char (&field)[N])
{
    return std::string(field, strnlen(field, N));
}

bool startsWith(const std::string &s, const char *prefix)
{
    return s.compare(0, std::strlen(prefix), prefix) == 0;
}

// Collects the parameters that break their range.
class Checker
{
public:
    explicit Checker(QStringList *out) : m_out(out) {}

    void number(const char *what, double v, const Range &range)
    {
        if (!range.holds(v))
            fail(what);
    }
    // The value as it is, checked against its range on the way.
    template <class T>
    T value(const char *what, T v, const Range &range)
    {
        number(what, v, range);
        return v;
    }
    void fail(const char *what)
    {
        m_ok = false;
        if (m_out)
            *m_out << QString::fromLatin1(what);
    }
    bool ok() const { return m_ok; }

private:
    QStringList *m_out;
    bool m_ok = true;
};

// The class of a record's operand and its name; an operand that cannot be
// classified is reported as `what`.
VariableClass classify(const qrx_param &record, std::string &name, const char *what, Checker &check)
{
    name = text(record.varName);
    const VariableClass cls = classifyVariable(text(record.varType), name);
    if (cls == Unclassified)
        check.fail(what);
    return cls;
}

// A constant or a variable into a parameter object: value 0 and the number,
// or the variable's class and its name.
void setPara(ParaCommand &para, const qrx_param &record, const char *what, const Range &range, Checker &check)
{
    std::string name;
    const VariableClass cls = classify(record, name, what, check);
    if (cls == Unclassified)
        return;
    para.value = cls;
    if (cls == Constant) {
        check.number(what, record.value, range);
        para.data = record.value;
    } else {
        para.varname = name;
    }
}

std::unique_ptr<RobotPos> position(const qrx_position &record)
{
    auto pos = std::make_unique<RobotPos>();
    pos->key = text(record.name);
    pos->ctype = record.ctype;
    for (int i = 0; i < RobotPos::kCoordinates; ++i)
        pos->data[std::size_t(i)] = record.data[i];
    return pos;
}

void fillConditions(CommandConditionFINAL &tree, const qrx_condition_list &list, Checker &check)
{
    if (list.count < 0 || list.count > QRX_MAX_CONDITIONS) {
        check.fail("condition.count");
        return;
    }
    int group = -1;
    for (int i = 0; i < list.count; ++i) {
        const qrx_condition &c = list.conditions[i];
        if (c.group < 0 || c.group >= QRX_MAX_CONDITION_GROUPS || c.group < group || c.group > group + 1) {
            check.fail("condition.group");
            return;
        }
        if (c.group > group) {
            if (group >= 0)
                tree.logics.push_back(LogicSymbolClass{list.groupLogic[group]});
            tree.groups.emplace_back();
            group = c.group;
        } else {
            tree.groups.back().logics.push_back(LogicSymbolClass{c.logic});
        }
        CommandCondition condition;
        condition.keyType = c.keyType;
        condition.key = text(c.key);
        condition.inNumLeft = c.inNumLeft;
        condition.inNumRight = c.inNumRight;
        condition.logicType = c.logicType;
        condition.desType = c.desType;
        condition.desValue = text(c.desValue);
        condition.paramType = c.paramType;
        condition.paramName = text(c.paramName);
        condition.soueceType = c.soueceType;
        condition.soueceName = text(c.soueceName);
        tree.groups.back().conditions.push_back(std::move(condition));
    }
}

void fillMove(MoveCommand &m, const qrx_motion_record &record, Checker &check)
{
    const qrx_move_params &r = record.u.move;
    check.number("vUnit", r.vUnit, kSpeedUnit);
    const Range speed = kSpeedUnit.holds(r.vUnit) ? kSpeedByUnit[r.vUnit] : kAnything;
    setPara(*m.paraV, r.velocity, "velocity", speed, check);
    m.paraV->m_vUnit = r.vUnit;
    setPara(*m.paraAcc, r.acc, "acc", kPercent, check);
    setPara(*m.paraDec, r.dec, "dec", kPercent, check);
    setPara(*m.paraPl, r.pl, "pl", kBlending, check);
    setPara(*m.paraTime, r.time, "time", kNotNegative, check);
    setPara(*m.paraSpin, r.spin, "spin", kAnything, check);
    setPara(*m.paraSync, r.sync, "sync", kAnything, check);
    // The flat form beside the objects.
    m.velocity = m.paraV->data;
    m.vUnit = r.vUnit;
    m.acc = m.paraAcc->data;
    m.dec = m.paraDec->data;
    m.pl = m.paraPl->data;
    m.time = int(m.paraTime->data);
    m.spin = int(m.paraSpin->data);
    m.sync = int(m.paraSync->data);

    m.posidtype = check.value("posidtype", r.posidtype, kTargetKind);
    m.m_positionId = text(r.positionId);
    m.posidname = text(r.posidname);
    m.para = r.para;
    m.radius = r.radius;
    m.side = r.side;
    m.length = r.length;
    m.width = r.width;
    m.margin = r.margin;
    m.imovecoord = text(r.imovecoord);
    m.polish = r.polish;
    m.polishID = r.polishID;
    m.polishAngle = r.polishAngle;
    m.ctype = r.ctype;
    m.robotPos.own(position(r.pos));
}

void fillTimer(TimerCommand &t, const qrx_param &duration, Checker &check)
{
    setPara(*t.paraTime, duration, "duration", kNotNegative, check);
    t.duration = t.paraTime->data;
    t.desType = t.paraTime->value;
    t.desValue = t.paraTime->varname;
}

void fillTimerRecord(TimerCommand &t, const qrx_motion_record &record, Checker &check)
{
    fillTimer(t, record.u.timer.duration, check);
}

void fillWait(WaitCommand &w, const qrx_motion_record &record, Checker &check)
{
    const qrx_wait_params &r = record.u.wait;
    fillTimer(w, r.duration, check);
    fillConditions(w.waitConditionFinal, r.condition, check);
    w.now = check.value("now", r.now, kBit) != 0;
    w.m_filterTime = check.value("filterTime", r.filterTime, kNotNegative);
}

void fillIf(IFCommand &c, const qrx_motion_record &record, Checker &check)
{
    fillConditions(c.ifconditionArrayFINAL, record.u.block.condition, check);
}

void fillWhile(WHILECommand &c, const qrx_motion_record &record, Checker &check)
{
    fillConditions(c.whileconditionArrayFINAL, record.u.block.condition, check);
}

void fillCall(CallCommand &c, const qrx_motion_record &record, Checker &)
{
    c.lineNoToCall = record.u.call.lineNoToCall;
    c.jobName = text(record.u.call.jobName);
}

void fillIo(IOCommand &io, const qrx_motion_record &record, Checker &check)
{
    const qrx_io_params &r = record.u.io;
    io.group = r.group;
    io.groupValue = r.groupValue;
    io.groupType = r.groupType;
    if (!r.group)
        check.number("portId", r.portId, kPort);
    io.portId = r.portId;
    if (!r.group && record.type == 16)
        check.number("portValue", r.portValue, kBit);
    io.portValue = r.portValue;
    std::string name;
    const VariableClass cls = classify(r.valueVar, name, "valueVar", check);
    io.valueIsVariant = cls > Constant;
    io.varName = cls > Constant ? name : std::string();
    io.varType = cls > Constant ? cls : 0;
    io.rate = check.value("rate", r.rate, kNotNegative);
    io.sum = check.value("sum", r.sum, kNotNegative);
    io.time = check.value("time", r.time, kNotNegative);
    io.errorHanding = r.errorHanding;
}

void fillAito(AITOCommand &a, const qrx_motion_record &record, Checker &check)
{
    const qrx_aito_params &r = record.u.aito;
    if (record.type == 18) {
        check.number("ain", r.ain, kPort);
        check.number("aout", r.aout, kPort);
    }
    a.ain = r.ain;
    a.aout = r.aout;
    a.para1 = r.para1;
    a.para2 = r.para2;
    a.para3 = r.para3;
}

void fillArc(ARCCommand &a, const qrx_motion_record &record, Checker &check)
{
    const qrx_arc_params &r = record.u.arc;
    a.voltage = check.value("voltage", r.voltage, kNotNegative);
    a.current = check.value("current", r.current, kNotNegative);
    a.arcsetRamp = r.arcsetRamp;
    a.arcsetTime_ms = r.arcsetTime_ms;
    a.arcsetDistance = r.arcsetDistance;
    a.arcParameterId = r.arcParameterId;
    a.feedtime = r.feedtime;
    a.m_positionId = text(r.positionId);
    a.refpPointNum = r.refpPointNum;
    a.autoCorrection = r.autoCorrection;
    a.correctionSpeed = r.correctionSpeed;
    a.generatingOfArcCurrent = r.generatingOfArcCurrent;
    a.generatingOfArcVoltage = r.generatingOfArcVoltage;
    a.generatingOfArcTime = r.generatingOfArcTime;
    a.weldCurrent = r.weldCurrent;
    a.weldVoltage = r.weldVoltage;
    a.anamorphismFlag = r.anamorphismFlag;
    a.startUpAgainFlag = r.startUpAgainFlag;
    a.generatingOfArcAgainFlag = r.generatingOfArcAgainFlag;
    a.quenchingOfArcCurrent = r.quenchingOfArcCurrent;
    a.quenchingOfArcVoltage = r.quenchingOfArcVoltage;
    a.quenchingOfArcTime = r.quenchingOfArcTime;
    a.quenchingAnamorphismFlag = r.quenchingAnamorphismFlag;
    a.preventStickingWireFlag = r.preventStickingWireFlag;
    a.useTemp = r.useTemp != 0;
    if (r.hasPosition)
        a.robotPos.own(position(r.pos));
}

// Which member of the record a type reads, and how. Type 29 is absent: it
// makes no instruction.
using Fill = void (*)(Command &, const qrx_motion_record &, Checker &);

// Fills the instruction when it is of the class the record describes.
template <class C, void (*F)(C &, const qrx_motion_record &, Checker &)>
void as(Command &command, const qrx_motion_record &record, Checker &check)
{
    if (auto *typed = dynamic_cast<C *>(&command))
        F(*typed, record, check);
}

struct Filler
{
    int first;
    int last;
    Fill fill;
};
const Filler kFillers[] = {
    {1, 6, as<MoveCommand, fillMove>},
    {7, 7, as<TimerCommand, fillTimerRecord>},
    {8, 8, as<WaitCommand, fillWait>},
    {9, 12, as<IFCommand, fillIf>},
    {13, 14, as<WHILECommand, fillWhile>},
    {15, 15, as<CallCommand, fillCall>},
    {16, 17, as<IOCommand, fillIo>},
    {18, 19, as<AITOCommand, fillAito>},
    {20, 22, as<IOCommand, fillIo>},
    {23, 27, as<ARCCommand, fillArc>},
    {28, 28, as<MoveCommand, fillMove>},
};

const Filler *fillerFor(int type)
{
    for (const Filler &filler : kFillers) {
        if (type >= filler.first && type <= filler.last)
            return &filler;
    }
    return nullptr;
}

} // namespace

VariableClass classifyVariable(const std::string &word, const std::string &name)
{
    if (name.empty() || word == "CONST")
        return Constant;
    VariableClass cls = Unclassified;
    if (word.empty() || word == "AUTO") {
        for (const Word &prefix : kPrefixes) {
            if (startsWith(name, prefix.text)) {
                cls = prefix.cls;
                break;
            }
        }
    } else {
        for (const Word &typeWord : kTypeWords) {
            if (word == typeWord.text)
                cls = typeWord.cls;
        }
    }
    // The index: the name's last three characters, all digits.
    if (name.size() < 4)
        return Unclassified;
    for (std::size_t i = name.size() - 3; i < name.size(); ++i) {
        if (name[i] < '0' || name[i] > '9')
            return Unclassified;
    }
    return cls;
}

bool buildQueue(const qrx_motion_record *records, int count, Json::Value &data, QStringList *outOfRange)
{
    data = Json::Value(Json::arrayValue);
    Checker check(outOfRange);
    for (int i = 0; i < count; ++i) {
        const qrx_motion_record &record = records[i];
        const Filler *filler = fillerFor(record.type);
        if (!filler)
            continue;
        std::unique_ptr<Command> command = newCommand(record.type);
        if (!command)
            continue;
        command->logout = record.logout != 0;
        command->userParamInt = record.userParamInt;
        command->userParamString = text(record.userParamString);
        filler->fill(*command, record, check);
        data.append(command->toJson());
    }
    return check.ok();
}

} // namespace qrx::api
