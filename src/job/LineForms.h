#pragma once
// The text forms of the instruction lines, as the reader matches them.
//
// A form is one way a type code renders: literal pieces and field slots in
// line order, plus the values of the fields that choose between forms (the
// "selectors": how the target is named, whether a speed is a constant or a
// variable and its unit, the subtype words such as POSADD/POSSUB). The forms
// are derived once from the instructions' own toString: each field is set to
// a marker value and found again in the rendered line, so the reader cannot
// drift from the renderer. A line is read by the first form (most literal
// text first) whose literals match and whose slots convert; where two
// objects render the same line the first form wins (for example a move
// whose target kind is neither 0 nor 1 renders "///..." for every motion
// type, and reads back as the first such type).
//
// A line read is not rendered again to check it: that cost a quarter of the
// reading time. What the check guarded, that the form chosen renders the
// line it was read from, is proved once for every form of every type by the
// reader's round-trip table (each carried field changed from its default,
// variables and constants, DISABLE), and for any accepted input by the
// fuzz target's property (write -> read -> write is a fixed point). So a
// line the writer produces reads back to the same line; a line it would not
// produce but whose slots convert is accepted and written in the writer's
// form ("TIMER T = 2.50" reads as 2.5 and is written "TIMER T = 2.5").

#include "job/Command.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qrx {

struct LineForm
{
    struct Piece
    {
        std::string literal; // when atom < 0
        int atom = -1;       // index into the class's FieldAtoms
    };
    struct Choice
    {
        int atom;
        int value;
    };

    int type = 0;
    std::vector<Choice> choices;
    std::vector<Piece> pieces;
};

struct FieldAtom;
// Gives the instruction the field value a form chooses (an int or bool
// selector, or an empty text).
void applyChoice(Command &command, const std::vector<FieldAtom> &atoms, const LineForm::Choice &choice);

// The forms of a type code (empty for the codes that create nothing).
// Built once, safe to call from several threads.
const std::vector<LineForm> &lineForms(int type);

// The keyword that starts a line: its leading run of letters, '_', '/' and
// '#' ("MOVJ", "AIN", "///").
std::string_view leadingKeyword(std::string_view line);

// The instruction of a line of one of `types`, or null when no form of
// theirs matches. A trailing " DISABLE" disables the instruction. Positions
// named by the instruction are shared from `table` when it holds them;
// otherwise `missingPosition` (may be null) gets the name.
std::unique_ptr<Command> parseInstructionLine(std::string_view line, const std::vector<int> &types,
                                              PositionTable *table, std::string *missingPosition);

} // namespace qrx
