#pragma once
// Palletising, spraying, punch handling, vision and conveyor tracking.
//
// Line forms (fields in this order; <move> is " MovJ ", " MovL " or " MovC "
// by moveType 0|1|2; <motion> is speed, PL, ACC, DEC and time texts):
//   71  PALON ID = <ID> MULTI = <MULTIPAL>        72 PALOFF <ID>
//   73  PALLET <ID> TYPE = <STACKTYPE> NUM = <NUM>
//   74  PALENTER <ID><move><motion>               75 PALSHIFT <ID>
//   76  PALREAL <ID><move><motion>                77 PALCLEAR <ID>
//   78  PALLET_POS <ID> <pointVariableName>
//   203 PAL_SET_EXAMPLE <ID> <variableData>
//   204 PALGRIPPER ID = <ID> GRIPPERS = <NUM> ON |OFF    (tool non-zero: ON)
//   218 PH_PALON ID = <ID>                        219 PH_PALOFF <ID>
//   122 SPRAY_ON G = <gunID>                      123 SPRAY_OFF G = <gunID>
//   124 SPRAY_CHANGE G = <gunID> T = <traID> AO = <anaID> COLOR = <colorID>
//   125 SPRAY_MOVE ID = <seqID><motion>
//   126 SPRAY_STARTPOS ID = <seqID> POINT = <point>
//   160 PUNCH <positionId>           161 PUNCH_MOVE<move><positionId>
//   162 PUNCH_PICK <positionId>      163-165 PUNCH_PICKSAFEPOS|PUNCH_PICKUPPERPOS|PUNCH_PICKPOS<move><positionId>
//   166 PUNCH_LAY <positionId>       167-169 PUNCH_LAYSAFEPOS|PUNCH_LAYUPPERPOS|PUNCH_LAYPOS<move><positionId>
//       (PUNCH moves: MovJ or MovL only)
//   183-192 PH_<...>POS <positionId> MovJ VJ = <vUnit>| MovL V = <vUnit> PL = <pl> SYNC = <sync>
//           NOTICE| UNNOTICE PREV| LOCAL     (notice non-zero, workstation 0|1)
//   193-196 PH_DEALBEFOREPICK|PH_DEALBEFOREDROP|PH_DEALAFTERPICK|PH_DEALAFTERDROP
//   197/198 PH_FIXTUREOPEN|PH_FIXTURECLOSE FIXTURE_ID = <fixture>
//   199 PH_STARTPUNCH   200 PH_WAITPUNCHDONE
//   201 PH_WAITDIN <waitInValue> <waitInState>    202 PH_DOUT <outValue> <outState>
//   205/206 PH_MULTIPLEPUNON|PH_MULTIPLEPUNOFF ID = <ID>
//   79-84 VISION_RUN|VISION_TRG|VISION_POS|VISION_POSNUM|VISION_END|VISION_CLEAR ID = <ID>
//         (VISION_POS then " " and m_positionId, VISION_POSNUM " " and M_STRPOSNUM)
//   105-108 CONVEYOR_ON|CONVEYOR_OFF|CONVEYOR_CHECKPOS|CONVEYOR_CHECKEND <ID>
//   174 CONVEYOR_POS <target> ID = <ID><speed><ACC>
//   217 CONVEYOR_REMOVE <target | OUTP (removeType non-zero)> ID = <ID><speed><ACC>
//       (target: posidname for posidtype 1, else m_positionId)

#include "job/MotionParameters.h"

namespace qrx {

class PALCommand : public FieldCommand<PALCommand>, public MotionParameters
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<PALCommand> &fields();

    int ID = 0;
    int STACKTYPE = 0;
    int NUM = 0;
    int tool = 0;
    int xyOpt = 0;
    int zOpt = 0;
    int Posture = 0;
    int moveType = 0;
    std::string VARNAME;
    int MULTIPAL = 0;
    std::string PalVar;
    int PalLevel = 0;
    int PalNumber = 0;
    int vUnit = 0;
    int m_numVariableType = 0;
    std::string variableData;
    int m_pointVariableType = 0;
    std::string pointVariableName;
};

class SPRAYCommand : public FieldCommand<SPRAYCommand>, public MotionParameters
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    static const FieldList<SPRAYCommand> &fields();

    int gunID = 0;
    int seqID = 0;
    int traID = 0;
    int colorID = 0;
    int anaID = 0;
    double flow = 0.0;
    double sector = 0.0;
    double atom = 0.0;
    int point = 0;
};

class PUNCHCommand : public FieldCommand<PUNCHCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    RobotPos *position() const override { return robotPos.pos; }
    std::string positionId() const override { return m_positionId; }
    static const FieldList<PUNCHCommand> &fields();

    std::string m_positionId; // key "positionId"
    PositionRef robotPos;
    int markPoint = 0;
    int unDelete = 0;
    int time = 0;
    int moveType = 0; // 0 MovJ, 1 MovL
    int step = 0;
};

class NEWPUNCHCommand : public FieldCommand<NEWPUNCHCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    RobotPos *position() const override { return robotPos.pos; }
    std::string positionId() const override { return m_positionId; }
    static const FieldList<NEWPUNCHCommand> &fields();

    std::string m_positionId; // key "positionId"
    PositionRef robotPos;
    int notice = 0;
    int vUnit = 0; // the speed of the move
    double pl = 0.0;
    int workstation = 0; // 0 PREV, 1 LOCAL
    int moveType = 0;    // 0 MovJ, 1 MovL
    int fixture = 0;
    int time = 0;
    int palletOn = 0;
    int ID = 0;
    int waitInValue = 0;
    int waitInState = 0;
    int outValue = 0;
    int outState = 0;
    int sync = 0;
};

class VisionCommand : public FieldCommand<VisionCommand>
{
public:
    using FieldCommand::FieldCommand;
    std::string body() const;
    RobotPos *position() const override { return robotPos.pos; }
    std::string positionId() const override { return m_positionId; }
    static const FieldList<VisionCommand> &fields();

    int ID = 0;
    std::string M_STRPOSNUM;
    std::string m_positionId;
    PositionRef robotPos;
};

class CONYTRACKCommand : public FieldCommand<CONYTRACKCommand>
{
public:
    explicit CONYTRACKCommand(int type);
    std::string body() const;
    RobotPos *position() const override { return robotPos.pos; }
    std::string positionId() const override { return m_positionId; }
    static const FieldList<CONYTRACKCommand> &fields();

    int ID = 0;
    int posidtype = 0;
    std::string posidname;
    std::string m_positionId;
    int removeType = 0;
    std::unique_ptr<ParaVCommand> paraV;
    std::unique_ptr<ParaAccCommand> paraAcc;
    int m_postype = 0;
    PositionRef robotPos;
};

} // namespace qrx
