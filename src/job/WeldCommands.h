#pragma once
// Welding, laser, seam search, weld paths, screwing and polishing.
//
// Line forms (fields in this order):
//   23  ARCON ID=<arcParameterId> TEMP=<useTemp 1/0>
//   24  ARCOFF ID=<arcParameterId> TEMP=<useTemp 1/0>
//   25  ARCSET V= <voltage> A= <current> T = <arcsetTime_ms>
//   26  WVON #<arcParameterId>            27 WVOFF <arcParameterId>
//   70  REFP <refpPointNum> <positionId>
//   176 FEEDWIRE T = <feedtime>           177 SPOTWELD ID = <arcParameterId>
//   67  TIGWELDON L1 = <l1> L2 = <l2>  (typeOFTIG 0)
//       TIGWELDON T = <timeOFTIG>      (typeOFTIG 1)       68 TIGWELDOFF
//   61  LASER_ON ID = <ID>                62 LASER_OFF
//   158 ARCTRACKON ID = <ID> | ARCVTRACKON ID = <ID>  (isArcTracking 0|1)
//   159 ARCTRACKOFF ID = <ID>
//   170 ARCBUILTIN ID = <ID> <Value>
//   85  LASERTRACK_ON ID = <ID>           86 LASERTRACK_OFF ID = <ID>
//   134 SEARCH_INITIALIZE ID = <net> PRO = <pro> CORR = <correct>
//   135 SEARCH_MEASURE ID = <net> POINT = <PA> PART = <workPieNum> TASK = <taskNum>
//   136 SEARCH_CORR ID = <net> POINTA = <PA> POINTB = <PB> POINTC = <PC>
//   137 SEARCH_CANCELCORR ID = <net> USER = <userCoord>
//   138 SEARCH_CALBR ID = <net> TOOL = <toolCoord>     139 SEARCH_OFF ID = <net>
//   151 SEARCH_START ID = <ID>
//   152 SEARCH_STATIC ID = <ID> <target><speed><PL><ACC>
//   153 SEARCH_DYNAMIC <target> TYPE = <senseType> ID = <ID><speed><PL><ACC>
//   154 SEARCH_OFFSET <positionOutId>     155 SEARCH_OFFSETEND
//   156 SEARCH_CALC PART = <artifactType> <positionOutId>
//   157 SEARCH_END ID = <ID>
//       (target: posidname for posidtype 1, else position1Id)
//   178 WELDPATHSTART   179 WELDPATHSTOP   180 WELDPATHCOUNT <varName>
//   181 WELDPATHOFFSET WELDPATH<initialPath> WELDPATH<targetPath> <x> <y> <z> <a> <b> <c>
//   182 STARTOFFSETWELD
//   143 SCREW ID = <screwID> TIGHT |UNSCREW |FREE <varName> <maxSpinTime>  (screwType 0|1|2)
//   131 POLISH_CONTINUE ID = <polishID> TIMES = <times> ANGLE = <angle> <time>
//   132 POLISH_OFF ID = <polishID>

#include "job/FieldTable.h"

namespace qrx {

class ARCCommand : public FieldCommand<ARCCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    RobotPos *position() const override { return robotPos.pos; }
    std::string positionId() const override { return m_positionId; }
    static const FieldList<ARCCommand> &fields();

    double voltage = 0.0;
    double current = 0.0;
    int arcsetRamp = 0;
    int arcsetTime_ms = 0;
    double arcsetDistance = 0.0;
    int arcParameterId = 0;
    double feedtime = 0.0;
    std::string m_positionId; // key "positionId"
    int refpPointNum = 0;
    int autoCorrection = 0;
    double correctionSpeed = 0.0;
    PositionRef robotPos;
    double generatingOfArcCurrent = 0.0;
    double generatingOfArcVoltage = 0.0;
    double generatingOfArcTime = 0.0;
    double weldCurrent = 0.0;
    double weldVoltage = 0.0;
    int anamorphismFlag = 0;
    int startUpAgainFlag = 0;
    int generatingOfArcAgainFlag = 0;
    double quenchingOfArcCurrent = 0.0;
    double quenchingOfArcVoltage = 0.0;
    double quenchingOfArcTime = 0.0;
    int quenchingAnamorphismFlag = 0;
    int preventStickingWireFlag = 0;
    bool useTemp = false;
};

class TIGWeldCommand : public FieldCommand<TIGWeldCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<TIGWeldCommand> &fields();
    double timeOFTIG = 0.0;
    int typeOFTIG = 0;
    double l1 = 0.0;
    double l2 = 0.0;
};

class LASERCommand : public FieldCommand<LASERCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<LASERCommand> &fields();
    int ID = 0;
};

class ARCTRACKCommand : public FieldCommand<ARCTRACKCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<ARCTRACKCommand> &fields();
    int ID = 0;
    int isArcTracking = 0;
};

class ARCBUILTINCommand : public FieldCommand<ARCBUILTINCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<ARCBUILTINCommand> &fields();
    int ID = 0;
    double Value = 0.0;
};

class TRACKCommand : public FieldCommand<TRACKCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<TRACKCommand> &fields();
    int ID = 0;
    int segmentParam = 0;
    double delay = 0.0;
};

class SeamFindCommand : public FieldCommand<SeamFindCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<SeamFindCommand> &fields();
    int m_searchNetID = 0;
    int m_searchProID = 0;
    int m_searchCorrect = 0;
    int m_searchFeaturePA = 0;
    int m_searchFeaturePB = 0;
    int m_searchFeaturePC = 0;
    int m_searchWorkPieNum = 0;
    int m_searchtaskNum = 0;
    int m_searchUserCoord = 0;
    int m_searchToolCoord = 0;
};

class SEARCHCommand : public FieldCommand<SEARCHCommand>
{
public:
    explicit SEARCHCommand(int type);
    std::string body() const;
    RobotPos *position() const override { return robotPos.pos; }
    std::string positionId() const override { return position1Id; }
    static const FieldList<SEARCHCommand> &fields();

    std::string position1Id, position2Id, position3Id, position4Id, position5Id, position6Id;
    std::string positionOutId;
    double length = 0.0;
    int ID = 0;
    int tableID = 0;
    int senseType = 0;
    int pointEffet = 0;
    int artifactType = 0;
    int calculType = 0;
    int coordNum = 0;
    int searchParacoordinate = 0;
    double velocity = 0.0;
    double pl = 0.0;
    double acc = 0.0;
    double delay = 0.0;
    int posidtype = 0;
    std::string posidname;
    std::unique_ptr<ParaAccCommand> paraAcc;
    std::unique_ptr<ParaPlCommand> paraPl;
    std::unique_ptr<ParaVCommand> paraV;
    PositionRef robotPos;
};

class PathCommand : public FieldCommand<PathCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<PathCommand> &fields();
    int initialPath = 0;
    double xOffset = 0.0, yOffset = 0.0, zOffset = 0.0, aOffset = 0.0, bOffset = 0.0, cOffset = 0.0;
    int targetPath = 0;
    std::string varName;
    int usePath = 0;
};

class SCREWCommand : public FieldCommand<SCREWCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<SCREWCommand> &fields();
    int screwID = 0;
    int screwType = 0; // 0 tight, 1 unscrew, 2 free
    int varType = 0;
    std::string varName;
    double maxSpinTime = 0.0;
};

class POLISHCommand : public FieldCommand<POLISHCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<POLISHCommand> &fields();
    int polishID = 0;
    int times = 0;
    double angle = 0.0;
    double time = 0.0;
};

} // namespace qrx
