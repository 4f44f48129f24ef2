#include "job/MotionParameters.h"

#include "job/RenderHelpers.h"

namespace qrx {

MotionParameters::MotionParameters()
    : paraV(std::make_unique<ParaVCommand>()),
      paraAcc(std::make_unique<ParaAccCommand>()),
      paraDec(std::make_unique<ParaDecCommand>()),
      paraTime(std::make_unique<ParaTimeCommand>()),
      paraPl(std::make_unique<ParaPlCommand>())
{
}

MotionParameters::~MotionParameters() = default;

std::string MotionParameters::motionText() const
{
    using render::textOf;
    return textOf(paraV) + textOf(paraPl) + textOf(paraAcc) + textOf(paraDec) + textOf(paraTime);
}

} // namespace qrx
