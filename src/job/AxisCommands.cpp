#include "job/AxisCommands.h"

#include "job/RenderHelpers.h"

namespace qrx {

using namespace render;

const FieldList<EXTMOVCommand> &EXTMOVCommand::fields()
{
    using C = EXTMOVCommand;
    static const FieldList<C> list = {
        {"extaxle", &C::extaxle}, {"movtype", &C::movtype}, {"speedtype", &C::speedtype},
        {"varname", &C::varname}, {"handvalue", &C::handvalue},
        {"speedproportionfactor", &C::speedproportionfactor},
    };
    return list;
}

std::string EXTMOVCommand::blockText() const
{
    return lead(145);
}

std::string EXTMOVCommand::body() const
{
    switch (type) {
    case 144: {
        const char *mode = pick(movtype, {{0, " CONST "}, {1, " FOLLOW "}});
        if (!mode)
            return {};
        return lead(144, " ") + num(extaxle) + mode + (speedtype == 0 ? num(handvalue) : varname) + " "
            + num(speedproportionfactor);
    }
    case 145: return blockText();
    default: return {};
    }
}

const FieldList<GEARINCommand> &GEARINCommand::fields()
{
    using C = GEARINCommand;
    static const FieldList<C> list = {
        {"mainAxle", &C::mainAxle}, {"followAxle", &C::followAxle}, {"proportionfactor", &C::proportionfactor}};
    return list;
}

std::string GEARINCommand::body() const
{
    switch (type) {
    case 148: return lead(148, " ") + num(mainAxle) + " " + num(followAxle) + " " + num(proportionfactor);
    case 150: return lead(150);
    default: return {};
    }
}

const FieldList<READLINEARCommand> &READLINEARCommand::fields()
{
    static const FieldList<READLINEARCommand> list = {
        {"varname", &READLINEARCommand::varname}, {"vartype", &READLINEARCommand::vartype}};
    return list;
}

std::string READLINEARCommand::body() const
{
    switch (type) {
    case 146: return lead(146, " ") + varname;
    case 147: return lead(147);
    default: return {};
    }
}

const FieldList<MOVCOMMCommand> &MOVCOMMCommand::fields()
{
    using C = MOVCOMMCommand;
    static const FieldList<C> list =
        joinFields<C>({{"moveType", &C::moveType}, {"vUnit", &C::vUnit}}, motionFields<C>());
    return list;
}

std::string MOVCOMMCommand::body() const
{
    const char *move = moveText(moveType, 4);
    if (type != 101 || !move)
        return {};
    return lead(101, " ") + std::string(move) + motionText();
}

} // namespace qrx
