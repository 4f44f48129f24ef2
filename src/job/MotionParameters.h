#pragma once
// The motion of MOVCOMM, the pallet entries (PALENTER, PALREAL) and
// SPRAY_MOVE: speed, blending, acceleration, deceleration and time as
// parameter objects, with the flat values of the older form beside them.

#include "job/FieldTable.h"

namespace qrx {

class MotionParameters
{
public:
    MotionParameters();
    ~MotionParameters();
    MotionParameters(const MotionParameters &) = delete;
    MotionParameters &operator=(const MotionParameters &) = delete;

    // The speed, PL, ACC, DEC and time texts, in this order.
    std::string motionText() const;

    // The keys of the motion: "PL", "ACC", "DEC", "time" and the parameter
    // objects, each reading its flat key when the object is missing.
    template <class C>
    static FieldList<C> motionFields()
    {
        using P = MotionParameters;
        return {
            {"PL", &P::PL}, {"ACC", &P::ACC}, {"DEC", &P::DEC}, {"time", &P::time},
            {"ParaV", "velocity", &P::paraV}, {"ParaACC", "ACC", &P::paraAcc}, {"ParaDEC", "DEC", &P::paraDec},
            {"ParaTIME", "time", &P::paraTime}, {"ParaPL", "PL", &P::paraPl},
        };
    }

    double PL = 0.0;
    double ACC = 0.0;
    double DEC = 0.0;
    int time = 0;
    std::unique_ptr<ParaVCommand> paraV;
    std::unique_ptr<ParaAccCommand> paraAcc;
    std::unique_ptr<ParaDecCommand> paraDec;
    std::unique_ptr<ParaTimeCommand> paraTime;
    std::unique_ptr<ParaPlCommand> paraPl;
};

} // namespace qrx
