#include "common/GlobalVarName.h"

namespace qrx {

GlobalVarName GlobalVarName::parse(const QString &name)
{
    GlobalVarName parsed;
    if (name.startsWith(QLatin1String("GB")))
        parsed.type = Bool;
    else if (name.startsWith(QLatin1String("GI")))
        parsed.type = Int;
    else if (name.startsWith(QLatin1String("GD")))
        parsed.type = Real;
    parsed.index = name.right(3).toInt(&parsed.indexValid);
    return parsed;
}

} // namespace qrx
