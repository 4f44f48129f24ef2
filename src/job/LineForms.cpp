#include "job/LineForms.h"

#include "job/CommandFactory.h"
#include "job/ConditionText.h"
#include "job/FieldAtoms.h"
#include "job/TextFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <set>

namespace qrx {

namespace {

constexpr int kLastType = 219;
constexpr std::size_t kMaxCombinations = 4096;
const std::string_view kDisable = " DISABLE";
// A selector value that leaves the field its marker: the form has its slot.
constexpr int kKeepMarker = std::numeric_limits<int>::min();

bool isSelectorKind(FieldAtom::Kind kind)
{
    return kind == FieldAtom::Int || kind == FieldAtom::Bool || kind == FieldAtom::SpeedVariable
        || kind == FieldAtom::SpeedUnit;
}

void setSelector(Command &command, const FieldAtom &atom, int value)
{
    if (atom.kind == FieldAtom::Bool)
        *static_cast<bool *>(atom.get(command)) = value != 0;
    else if (atom.kind == FieldAtom::String)
        static_cast<std::string *>(atom.get(command))->clear(); // the only choice of a text: empty
    else
        *static_cast<int *>(atom.get(command)) = value;
}

std::string replaced(std::string text, const std::string &what, const std::string &with)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
    return text;
}

int selectorValue(Command &command, const FieldAtom &atom)
{
    if (atom.kind == FieldAtom::Bool)
        return *static_cast<bool *>(atom.get(command)) ? 1 : 0;
    return *static_cast<int *>(atom.get(command));
}

std::string stringMarker(const char *prefix, std::size_t index)
{
    char text[32];
    std::snprintf(text, sizeof text, "%s%03zuq", prefix, index);
    return text;
}

// Sets atom `index` to its marker and returns the marker's text; empty for
// the atoms without one (selectors, positions).
std::string setMarker(Command &command, const FieldAtom &atom, std::size_t index, bool intAsValue)
{
    void *member = atom.get(command);
    switch (atom.kind) {
    case FieldAtom::Int:
        if (!intAsValue)
            return {};
        *static_cast<int *>(member) = int(730000 + index);
        return num(int(730000 + index));
    case FieldAtom::Double:
    case FieldAtom::SpeedData:
        *static_cast<double *>(member) = double(750000 + index);
        return num(double(750000 + index));
    case FieldAtom::String:
    case FieldAtom::SpeedName:
        return *static_cast<std::string *>(member) = stringMarker("Qz", index);
    case FieldAtom::Parameter: {
        auto *parameter = static_cast<ParaCommand *>(member);
        parameter->value = 0;
        parameter->data = double(760000 + index);
        return num(parameter->data);
    }
    case FieldAtom::Condition: {
        auto *condition = static_cast<CommandConditionFINAL *>(member);
        condition->groups.assign(1, CommandConditionMid());
        condition->logics.clear();
        CommandCondition comparison;
        comparison.key = stringMarker("Qc", index);
        comparison.desValue = stringMarker("Qd", index);
        condition->groups.front().conditions.push_back(comparison);
        return condition->toString();
    }
    default:
        return {};
    }
}

struct Builder
{
    int type;
    const FieldAtoms &atoms;
    std::vector<bool> intIsValue;

    // A new instruction with every marker set and the selectors at `values`.
    std::pair<std::unique_ptr<Command>, std::vector<std::string>>
    render(const std::vector<std::pair<int, int>> &selectors) const
    {
        auto command = newLineCommand(type);
        std::vector<std::string> markers(atoms.size());
        for (std::size_t i = 0; i < atoms.size(); ++i)
            markers[i] = setMarker(*command, atoms[i], i, intIsValue[i]);
        for (const auto &[atom, value] : selectors) {
            if (value != kKeepMarker)
                setSelector(*command, atoms[std::size_t(atom)], value);
        }
        return {std::move(command), std::move(markers)};
    }

    // The pieces of a rendered line: the marker texts found in it become
    // slots, the rest literals.
    static std::vector<LineForm::Piece> cut(const std::string &line, const std::vector<std::string> &markers)
    {
        std::vector<std::pair<std::size_t, std::size_t>> found; // position, atom
        for (std::size_t i = 0; i < markers.size(); ++i) {
            if (markers[i].empty())
                continue;
            for (std::size_t at = line.find(markers[i]); at != std::string::npos;
                 at = line.find(markers[i], at + markers[i].size()))
                found.emplace_back(at, i);
        }
        std::sort(found.begin(), found.end());
        std::vector<LineForm::Piece> pieces;
        std::size_t pos = 0;
        for (const auto &[at, atom] : found) {
            if (at < pos)
                continue; // overlaps a marker already taken
            if (at > pos)
                pieces.push_back({line.substr(pos, at - pos), -1});
            pieces.push_back({{}, int(atom)});
            pos = at + markers[atom].size();
        }
        if (pos < line.size())
            pieces.push_back({line.substr(pos), -1});
        return pieces;
    }

    // Values of a field that also shape the rest of the line: an int that
    // counts the groups after it (WINDOW), a name whose absence names
    // another target (PTHREAD_STATE of the main program). Each such value
    // gets a form of its own, with its text as a literal; every other value
    // reads through the form that keeps the field's slot.
    void addShapingValues(std::vector<std::pair<int, std::vector<int>>> &selectors)
    {
        auto [base, markers] = render({});
        const std::string baseLine = base->toString();
        for (std::size_t i = 0; i < atoms.size(); ++i) {
            const bool countLike = atoms[i].kind == FieldAtom::Int && intIsValue[i];
            if (!countLike && atoms[i].kind != FieldAtom::String)
                continue;
            if (markers[i].empty() || baseLine.find(markers[i]) == std::string::npos)
                continue;
            std::vector<int> values;
            for (int v = countLike ? -1 : 0; v <= (countLike ? 5 : 0); ++v) {
                const std::string plain = replaced(baseLine, markers[i], countLike ? num(v) : std::string());
                if (render({{int(i), v}}).first->toString() != plain)
                    values.push_back(v);
            }
            if (values.empty())
                continue;
            values.insert(values.begin(), kKeepMarker);
            selectors.emplace_back(int(i), values);
        }
    }

    std::vector<LineForm> build()
    {
        std::vector<LineForm> forms;
        if (!newLineCommand(type))
            return forms;
        // An int whose marker shows in the line is a value; the others may
        // choose between forms (selectors).
        intIsValue.assign(atoms.size(), false);
        // `withValues`: the ints already known as values keep their markers.
        const auto visible = [&](std::size_t i, const std::vector<std::pair<int, int>> &choice,
                                 bool withValues = false) {
            std::vector<bool> saved = intIsValue;
            if (!withValues)
                intIsValue.assign(atoms.size(), false);
            intIsValue[i] = true;
            auto [command, markers] = render(choice);
            intIsValue = saved;
            return command->toString().find(markers[i]) != std::string::npos;
        };
        for (std::size_t i = 0; i < atoms.size(); ++i) {
            if (atoms[i].kind == FieldAtom::Int)
                intIsValue[i] = visible(i, {});
        }
        // An int shown once a counting value is not zero is a value too
        // (WINDOW's values after its count).
        for (std::size_t i = 0; i < atoms.size(); ++i) {
            if (atoms[i].kind == FieldAtom::Int && !intIsValue[i])
                intIsValue[i] = visible(i, {}, true);
        }
        std::vector<std::pair<int, std::vector<int>>> selectors;
        for (std::size_t i = 0; i < atoms.size(); ++i) {
            if (!isSelectorKind(atoms[i].kind) || intIsValue[i])
                continue;
            auto base = render({});
            const int initial = selectorValue(*base.first, atoms[i]);
            std::vector<int> values;
            std::set<std::string> lines;
            const int last = atoms[i].kind == FieldAtom::Bool ? 1 : 5;
            std::vector<int> candidates = {initial};
            for (int v = 0; v <= last; ++v)
                candidates.push_back(v);
            for (int value : candidates) {
                auto probeLine = render({{int(i), value}}).first->toString();
                if (lines.insert(probeLine).second)
                    values.push_back(value);
            }
            if (values.size() > 1)
                selectors.emplace_back(int(i), values);
        }
        // An int shown only under one selector's value is a value too.
        for (std::size_t i = 0; i < atoms.size(); ++i) {
            if (atoms[i].kind != FieldAtom::Int || intIsValue[i])
                continue;
            const bool chooses = std::any_of(selectors.begin(), selectors.end(),
                                             [&](const auto &s) { return s.first == int(i); });
            for (const auto &[atom, values] : selectors) {
                for (int value : values) {
                    if (!chooses && !intIsValue[i] && visible(i, {{atom, value}}))
                        intIsValue[i] = true;
                }
            }
        }
        addShapingValues(selectors);
        std::set<std::string> seen;
        std::vector<std::size_t> counter(selectors.size(), 0);
        for (std::size_t n = 0; n < kMaxCombinations; ++n) {
            std::vector<std::pair<int, int>> choice;
            for (std::size_t s = 0; s < selectors.size(); ++s)
                choice.emplace_back(selectors[s].first, selectors[s].second[counter[s]]);
            auto [command, markers] = render(choice);
            const std::string line = command->toString();
            if (line.find(kUnknownCommandText) == std::string::npos) {
                LineForm form;
                form.type = type;
                for (const auto &[atom, value] : choice) {
                    if (value != kKeepMarker)
                        form.choices.push_back({atom, value});
                }
                form.pieces = cut(line, markers);
                std::string key;
                for (const auto &piece : form.pieces)
                    key += piece.atom < 0 ? "L" + piece.literal + '\x01' : "S" + std::to_string(piece.atom) + '\x01';
                if (seen.insert(key).second)
                    forms.push_back(std::move(form));
            }
            std::size_t s = 0;
            for (; s < selectors.size(); ++s) {
                if (++counter[s] < selectors[s].second.size())
                    break;
                counter[s] = 0;
            }
            if (s == selectors.size())
                break;
        }
        // The form with more literal text is the more specific one: tried
        // first, a speed "VJ = 50 %" is read as a speed, not as part of the
        // target's name of a form without speed.
        const auto literalLength = [](const LineForm &form) {
            std::size_t n = 0;
            for (const LineForm::Piece &piece : form.pieces)
                n += piece.literal.size();
            return n;
        };
        std::stable_sort(forms.begin(), forms.end(), [&](const LineForm &a, const LineForm &b) {
            return literalLength(a) > literalLength(b);
        });
        return forms;
    }
};

bool parseNumber(std::string_view text, double &value)
{
    if (text.empty())
        return false;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool parseNumber(std::string_view text, int &value)
{
    if (text.empty())
        return false;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

// A variable name: no spaces, and not the start of a number.
bool isVariableName(std::string_view text)
{
    if (text.empty() || text.find(' ') != std::string_view::npos)
        return false;
    const char c = text.front();
    return !((c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.');
}

bool assign(Command &command, const FieldAtom &atom, std::string_view text)
{
    void *member = atom.get(command);
    switch (atom.kind) {
    case FieldAtom::Int:
        return parseNumber(text, *static_cast<int *>(member));
    case FieldAtom::Double:
    case FieldAtom::SpeedData:
        return parseNumber(text, *static_cast<double *>(member));
    case FieldAtom::SpeedName:
        if (!isVariableName(text))
            return false;
        [[fallthrough]];
    case FieldAtom::String:
        *static_cast<std::string *>(member) = std::string(text);
        return true;
    case FieldAtom::Parameter: {
        auto *parameter = static_cast<ParaCommand *>(member);
        if (parseNumber(text, parameter->data)) {
            parameter->value = 0;
            return true;
        }
        parameter->value = 1;
        parameter->varname = std::string(text);
        return isVariableName(text);
    }
    case FieldAtom::Condition:
        return parseConditionText(text, *static_cast<CommandConditionFINAL *>(member));
    default:
        return false;
    }
}

// The slot texts of `line` under `form`, in piece order; false when the
// literals do not match. Allocates nothing: most forms tried fail here.
bool cutLine(const LineForm &form, std::string_view line, std::vector<std::string_view> &values)
{
    values.clear();
    std::size_t pos = 0;
    for (std::size_t i = 0; i < form.pieces.size(); ++i) {
        const LineForm::Piece &piece = form.pieces[i];
        if (piece.atom < 0) {
            if (line.substr(pos, piece.literal.size()) != piece.literal)
                return false;
            pos += piece.literal.size();
            continue;
        }
        std::size_t end = line.size();
        if (i + 1 < form.pieces.size()) {
            const LineForm::Piece &next = form.pieces[i + 1];
            end = next.atom < 0 ? line.find(next.literal, pos) : line.find(' ', pos);
            if (end == std::string_view::npos)
                return false;
        }
        values.push_back(line.substr(pos, end - pos));
        pos = end;
    }
    return pos == line.size();
}

std::unique_ptr<Command> tryForm(const LineForm &form, const FieldAtoms &atoms, std::string_view line)
{
    thread_local std::vector<std::string_view> values;
    if (!cutLine(form, line, values))
        return nullptr;
    auto command = newLineCommand(form.type);
    if (!command)
        return nullptr;
    for (const LineForm::Choice &choice : form.choices)
        applyChoice(*command, atoms, choice);
    std::size_t slot = 0;
    for (const LineForm::Piece &piece : form.pieces) {
        if (piece.atom >= 0 && !assign(*command, atoms[std::size_t(piece.atom)], values[slot++]))
            return nullptr;
    }
    return command;
}

void resolvePositions(Command &command, const FieldAtoms &atoms, PositionTable *table, std::string *missing)
{
    for (const FieldAtom &atom : atoms) {
        if (atom.kind != FieldAtom::Position)
            continue;
        const std::string name = command.positionId();
        if (name.empty())
            continue;
        RobotPos *known = table ? table->find(name) : nullptr;
        if (known)
            static_cast<PositionRef *>(atom.get(command))->share(known);
        else if (missing)
            *missing = name;
    }
}

} // namespace

void applyChoice(Command &command, const FieldAtoms &atoms, const LineForm::Choice &choice)
{
    setSelector(command, atoms[std::size_t(choice.atom)], choice.value);
}

const std::vector<LineForm> &lineForms(int type)
{
    static const std::vector<std::vector<LineForm>> all = [] {
        std::vector<std::vector<LineForm>> forms(kLastType + 1);
        for (int t = 0; t <= kLastType; ++t) {
            if (const FieldAtoms *atoms = commandFieldAtoms(t))
                forms[std::size_t(t)] = Builder{t, *atoms, {}}.build();
        }
        return forms;
    }();
    static const std::vector<LineForm> none;
    return type >= 0 && type <= kLastType ? all[std::size_t(type)] : none;
}

std::string_view leadingKeyword(std::string_view line)
{
    std::size_t n = 0;
    while (n < line.size()) {
        const char c = line[n];
        if (!((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '/' || c == '#'))
            break;
        ++n;
    }
    return line.substr(0, n);
}

std::unique_ptr<Command> parseInstructionLine(std::string_view line, const std::vector<int> &types,
                                              PositionTable *table, std::string *missingPosition)
{
    const bool disabled = line.size() >= kDisable.size() && line.substr(line.size() - kDisable.size()) == kDisable;
    for (int pass = disabled ? 0 : 1; pass < 2; ++pass) {
        const std::string_view body = pass == 0 ? line.substr(0, line.size() - kDisable.size()) : line;
        for (int type : types) {
            const FieldAtoms *atoms = commandFieldAtoms(type);
            if (!atoms)
                continue;
            for (const LineForm &form : lineForms(type)) {
                auto command = tryForm(form, *atoms, body);
                if (!command)
                    continue;
                command->logout = pass == 0;
                resolvePositions(*command, *atoms, table, missingPosition);
                return command;
            }
        }
    }
    return nullptr;
}

} // namespace qrx
