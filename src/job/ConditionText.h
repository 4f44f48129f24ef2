#pragma once
// Reading back the text of a condition: groups in braces, each a list of
// comparisons "(left op right)", joined by " AND ", " OR " or " NOT ".

#include "job/Condition.h"

#include <string_view>

namespace qrx {

// Fills `condition` from its text; false when the text is not a condition.
// The right operand is read as the constant text (desType 0). An empty text
// is the empty condition.
bool parseConditionText(std::string_view text, CommandConditionFINAL &condition);

} // namespace qrx
