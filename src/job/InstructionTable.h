#pragma once
// The instruction table: every keyword that starts an instruction line, the
// type codes it stands for and their class. The scanner of the job-file
// reader recognises instruction lines by these keywords, and every family
// renders its keywords from here (render::lead in RenderHelpers.h).

#include <cstddef>
#include <string_view>
#include <vector>

namespace qrx {

struct InstructionEntry
{
    int type;
    const char *keyword;   // the line's leading word ("MOVJ", "PRINTMSG", "///")
    const char *className; // "MoveCommand"
};

const std::vector<InstructionEntry> &instructionTable();

// The type codes whose lines start with `keyword`; empty when the keyword
// is not one of the job language.
const std::vector<int> &typesOfKeyword(std::string_view keyword);

// The types of an instruction line: those of the longest start of its
// leading word that is a keyword ("#" for a note "#text", "AIN" for
// "AIN5"); empty when none is.
const std::vector<int> &typesOfLine(std::string_view line);

// The leading word of a type's line, or null; `variant` picks among the
// words of a type that starts with different words by its fields (in the
// table's order, "///" left out).
const char *instructionKeyword(int type, std::size_t variant = 0);

} // namespace qrx
