#pragma once
// Global variable names ("GB001", "GI012", "GD999"): the first two
// characters give the type the controller calls "varType", the last three
// digits the index in the Robot's caches.

#include <QString>

namespace qrx {

struct GlobalVarName
{
    enum Type { Other = 0, Bool = 1, Int = 2, Real = 3 };
    Type type = Other;
    int index = 0;      // the last three characters as a decimal number, 0 when they are none
    bool indexValid = false; // the last three characters are a number

    static GlobalVarName parse(const QString &name);
};

} // namespace qrx
