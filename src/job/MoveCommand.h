#pragma once
// The motion family: MOVJ, MOVL, MOVC, MOVCA, IMOV, MOVS, CIL, the EXT and
// DOUBLE moves, SAMOV, the laser shapes and POLISH_EDGE (type codes 1-6, 28,
// 32-34, 54-60, 63-66, 109).
//
// Line: keyword, target, [laser geometry], speed, [IMOV coordinate],
// blending, ACC, DEC, [SPIN], [M = margin], [SYNC], [ID = para],
// [T/ID/ANGLE of the polish], [time], [" DISABLE"]:
//   MOVJ P0001 VJ = 50 % PL = 0 ACC = 0 DEC = 0 0
//   LASER_CIRCLE P0002 R = 5 V = 20 mm/s ACC = 0 DEC = 0 M = 1 0
// The target is `posidname` (posidtype 1) or `positionId` (posidtype 0);
// any other posidtype or an unknown type code starts the line with "///".

#include "job/FieldTable.h"

namespace qrx {

class MoveCommand : public FieldCommand<MoveCommand>
{
public:
    explicit MoveCommand(int type);
    ~MoveCommand() override;

    std::string body() const;
    void fromJson(const Json::Value &json, PositionTable *table) override;
    RobotPos *position() const override;
    std::string positionId() const override;
    // {"RobotPos": the position object}, or an empty object without one.
    virtual Json::Value positionJson() const;

    static const FieldList<MoveCommand> &fields();
    // The keyword of a motion type code (without its trailing space), or
    // null when it has none.
    static const char *keyword(int type);

    double velocity = 0.0;
    int vUnit = 0;
    double acc = 0.0;
    double dec = 0.0;
    double pl = 0.0;
    std::string m_positionId; // key "positionId"
    int para = 0;
    double radius = 0.0;
    double side = 0.0;
    double length = 0.0;
    double width = 0.0;
    double margin = 0.0;
    int spin = 0;
    std::string imovecoord;
    int polish = 0;
    int polishID = 0;
    double polishAngle = 0.0;
    int sync = 0;
    int time = 0;
    int ctype = 0;
    int posidtype = 0;
    std::string posidname;

    std::unique_ptr<ParaVCommand> paraV;
    std::unique_ptr<ParaAccCommand> paraAcc;
    std::unique_ptr<ParaDecCommand> paraDec;
    std::unique_ptr<ParaPlCommand> paraPl;  // null: " PL = " and the plain pl
    std::unique_ptr<ParaTimeCommand> paraTime;
    std::unique_ptr<ParaSpinCommand> paraSpin;
    std::unique_ptr<ParaSyncCommand> paraSync;
    PositionRef robotPos;
};

} // namespace qrx
