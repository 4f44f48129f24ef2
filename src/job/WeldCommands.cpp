#include "job/WeldCommands.h"

#include "job/RenderHelpers.h"

namespace qrx {

using namespace render;

const FieldList<ARCCommand> &ARCCommand::fields()
{
    using C = ARCCommand;
    static const FieldList<C> list = {
        {"voltage", &C::voltage}, {"current", &C::current}, {"arcsetRamp", &C::arcsetRamp},
        {"arcsetTime_ms", &C::arcsetTime_ms}, {"arcsetDistance", &C::arcsetDistance},
        {"arcParameterId", &C::arcParameterId}, {"feedtime", &C::feedtime}, {"positionId", &C::m_positionId},
        {"refpPointNum", &C::refpPointNum}, {"autoCorrection", &C::autoCorrection},
        {"correctionSpeed", &C::correctionSpeed}, {"RobotPos", &C::robotPos},
        {"generatingOfArcCurrent", &C::generatingOfArcCurrent},
        {"generatingOfArcVoltage", &C::generatingOfArcVoltage},
        {"generatingOfArcTime", &C::generatingOfArcTime}, {"weldCurrent", &C::weldCurrent},
        {"weldVoltage", &C::weldVoltage}, {"anamorphismFlag", &C::anamorphismFlag},
        {"startUpAgainFlag", &C::startUpAgainFlag}, {"generatingOfArcAgainFlag", &C::generatingOfArcAgainFlag},
        {"quenchingOfArcCurrent", &C::quenchingOfArcCurrent},
        {"quenchingOfArcVoltage", &C::quenchingOfArcVoltage}, {"quenchingOfArcTime", &C::quenchingOfArcTime},
        {"quenchingAnamorphismFlag", &C::quenchingAnamorphismFlag},
        {"preventStickingWireFlag", &C::preventStickingWireFlag}, {"useTemp", &C::useTemp},
    };
    return list;
}

std::string ARCCommand::body() const
{
    switch (type) {
    case 23: return lead(23, " ID=") + num(arcParameterId) + " TEMP=" + num(useTemp);
    case 24: return lead(24, " ID=") + num(arcParameterId) + " TEMP=" + num(useTemp);
    case 25:
        return lead(25, " V= ") + num(voltage) + " A= " + num(current) + " T = " + num(arcsetTime_ms);
    case 26: return lead(26, " #") + num(arcParameterId);
    case 27: return lead(27, " ") + num(arcParameterId);
    case 70: return lead(70, " ") + num(refpPointNum) + " " + m_positionId;
    case 176: return lead(176, " T = ") + num(feedtime);
    case 177: return lead(177, " ID = ") + num(arcParameterId);
    default: return {};
    }
}

const FieldList<TIGWeldCommand> &TIGWeldCommand::fields()
{
    using C = TIGWeldCommand;
    static const FieldList<C> list = {
        {"timeOFTIG", &C::timeOFTIG}, {"typeOFTIG", &C::typeOFTIG}, {"l1", &C::l1}, {"l2", &C::l2}};
    return list;
}

std::string TIGWeldCommand::body() const
{
    switch (type) {
    case 67:
        if (typeOFTIG == 0)
            return lead(67, " ") + "L1 = " + num(l1) + " L2 = " + num(l2);
        return lead(67, " ") + "T = " + num(timeOFTIG);
    case 68: return lead(68);
    default: return {};
    }
}

const FieldList<LASERCommand> &LASERCommand::fields()
{
    static const FieldList<LASERCommand> list = {{"ID", &LASERCommand::ID}};
    return list;
}

std::string LASERCommand::body() const
{
    switch (type) {
    case 61: return lead(61, " ") + "ID = " + num(ID);
    case 62: return lead(62);
    default: return {};
    }
}

const FieldList<ARCTRACKCommand> &ARCTRACKCommand::fields()
{
    static const FieldList<ARCTRACKCommand> list = {
        {"ID", &ARCTRACKCommand::ID}, {"isArcTracking", &ARCTRACKCommand::isArcTracking}};
    return list;
}

std::string ARCTRACKCommand::body() const
{
    switch (type) {
    case 158: return lead(158, " ID = ", isArcTracking == 0 ? 0 : 1) + num(ID);
    case 159: return lead(159, " ID = ") + num(ID);
    default: return {};
    }
}

const FieldList<ARCBUILTINCommand> &ARCBUILTINCommand::fields()
{
    static const FieldList<ARCBUILTINCommand> list = {
        {"ID", &ARCBUILTINCommand::ID}, {"Value", &ARCBUILTINCommand::Value}};
    return list;
}

std::string ARCBUILTINCommand::body() const
{
    if (type != 170)
        return {};
    return lead(170, " ") + "ID = " + num(ID) + " " + num(Value);
}

const FieldList<TRACKCommand> &TRACKCommand::fields()
{
    using C = TRACKCommand;
    static const FieldList<C> list = {{"ID", &C::ID}, {"segmentParam", &C::segmentParam}, {"delay", &C::delay}};
    return list;
}

std::string TRACKCommand::body() const
{
    if (type != 85 && type != 86)
        return {};
    return lead(type, " ID = ") + num(ID);
}

const FieldList<SeamFindCommand> &SeamFindCommand::fields()
{
    using C = SeamFindCommand;
    static const FieldList<C> list = {
        {"m_searchNetID", &C::m_searchNetID}, {"m_searchProID", &C::m_searchProID},
        {"m_searchCorrect", &C::m_searchCorrect}, {"m_searchFeaturePA", &C::m_searchFeaturePA},
        {"m_searchFeaturePB", &C::m_searchFeaturePB}, {"m_searchFeaturePC", &C::m_searchFeaturePC},
        {"m_searchWorkPieNum", &C::m_searchWorkPieNum}, {"m_searchtaskNum", &C::m_searchtaskNum},
        {"m_searchUserCoord", &C::m_searchUserCoord}, {"m_searchToolCoord", &C::m_searchToolCoord},
    };
    return list;
}

std::string SeamFindCommand::body() const
{
    const std::string id = num(m_searchNetID);
    switch (type) {
    case 134:
        return lead(134, " ID = ") + id + " PRO = " + num(m_searchProID) + " CORR = "
            + num(m_searchCorrect);
    case 135:
        return lead(135, " ID = ") + id + " POINT = " + num(m_searchFeaturePA) + " PART = "
            + num(m_searchWorkPieNum) + " TASK = " + num(m_searchtaskNum);
    case 136:
        return lead(136, " ID = ") + id + " POINTA = " + num(m_searchFeaturePA) + " POINTB = "
            + num(m_searchFeaturePB) + " POINTC = " + num(m_searchFeaturePC);
    case 137: return lead(137, " ID = ") + id + " USER = " + num(m_searchUserCoord);
    case 138: return lead(138, " ID = ") + id + " TOOL = " + num(m_searchToolCoord);
    case 139: return lead(139, " ID = ") + id;
    default: return {};
    }
}

SEARCHCommand::SEARCHCommand(int type)
    : FieldCommand(type),
      paraAcc(std::make_unique<ParaAccCommand>()),
      paraPl(std::make_unique<ParaPlCommand>()),
      paraV(std::make_unique<ParaVCommand>())
{
}

const FieldList<SEARCHCommand> &SEARCHCommand::fields()
{
    using C = SEARCHCommand;
    static const FieldList<C> list = {
        {"position1Id", &C::position1Id}, {"position2Id", &C::position2Id}, {"position3Id", &C::position3Id},
        {"position4Id", &C::position4Id}, {"position5Id", &C::position5Id}, {"position6Id", &C::position6Id},
        {"positionOutId", &C::positionOutId}, {"length", &C::length}, {"ID", &C::ID},
        {"tableID", &C::tableID}, {"senseType", &C::senseType}, {"pointEffet", &C::pointEffet},
        {"artifactType", &C::artifactType}, {"calculType", &C::calculType}, {"coordNum", &C::coordNum},
        {"searchParacoordinate", &C::searchParacoordinate}, {"velocity", &C::velocity}, {"pl", &C::pl},
        {"acc", &C::acc}, {"delay", &C::delay}, {"posidtype", &C::posidtype}, {"posidname", &C::posidname},
        {"ParaACC", "acc", &C::paraAcc}, {"ParaPL", "pl", &C::paraPl}, {"ParaV", "velocity", &C::paraV},
        {"RobotPos", &C::robotPos},
    };
    return list;
}

std::string SEARCHCommand::body() const
{
    const std::string &where = target(posidtype, posidname, position1Id);
    const std::string motion = textOf(paraV) + textOf(paraPl) + textOf(paraAcc);
    switch (type) {
    case 151: return lead(151, " ID = ") + num(ID);
    case 152: return lead(152, " ID = ") + num(ID) + " " + where + motion;
    case 153:
        return lead(153, " ") + where + " TYPE = " + num(senseType) + " ID = " + num(ID) + motion;
    case 154: return lead(154, " ") + positionOutId;
    case 155: return lead(155);
    case 156: return lead(156, " PART = ") + num(artifactType) + " " + positionOutId;
    case 157: return lead(157, " ID = ") + num(ID);
    default: return {};
    }
}

const FieldList<PathCommand> &PathCommand::fields()
{
    using C = PathCommand;
    static const FieldList<C> list = {
        {"initialPath", &C::initialPath}, {"xOffset", &C::xOffset}, {"yOffset", &C::yOffset},
        {"zOffset", &C::zOffset}, {"aOffset", &C::aOffset}, {"bOffset", &C::bOffset}, {"cOffset", &C::cOffset},
        {"targetPath", &C::targetPath}, {"varName", &C::varName}, {"usePath", &C::usePath},
    };
    return list;
}

std::string PathCommand::body() const
{
    switch (type) {
    case 178: return lead(178);
    case 179: return lead(179);
    case 180: return lead(180, " ") + varName;
    case 181:
        return lead(181, " WELDPATH") + num(initialPath) + " WELDPATH" + num(targetPath) + " "
            + num(xOffset) + " " + num(yOffset) + " " + num(zOffset) + " " + num(aOffset) + " "
            + num(bOffset) + " " + num(cOffset);
    case 182: return lead(182);
    default: return {};
    }
}

const FieldList<SCREWCommand> &SCREWCommand::fields()
{
    using C = SCREWCommand;
    static const FieldList<C> list = {
        {"screwID", &C::screwID}, {"screwType", &C::screwType}, {"varType", &C::varType},
        {"varName", &C::varName}, {"maxSpinTime", &C::maxSpinTime},
    };
    return list;
}

std::string SCREWCommand::body() const
{
    const char *mode = pick(screwType, {{0, " TIGHT "}, {1, " UNSCREW "}, {2, " FREE "}});
    if (type != 143 || !mode)
        return {};
    return lead(143, " ID = ") + num(screwID) + mode + varName + " " + num(maxSpinTime);
}

const FieldList<POLISHCommand> &POLISHCommand::fields()
{
    using C = POLISHCommand;
    static const FieldList<C> list = {
        {"polishID", &C::polishID}, {"times", &C::times}, {"angle", &C::angle}, {"time", &C::time}};
    return list;
}

std::string POLISHCommand::body() const
{
    switch (type) {
    case 131:
        return lead(131, " ID = ") + num(polishID) + " TIMES = " + num(times) + " ANGLE = "
            + num(angle) + " " + num(time);
    case 132: return lead(132, " ID = ") + num(polishID);
    default: return {};
    }
}

} // namespace qrx
