#pragma once
// The fields of an instruction class as the job-file reader sees them: each
// JSON field of the class's table flattened into an "atom" (an int, double,
// bool or string member, a parameter object, a condition or a position),
// reached through a type-erased getter. The line forms of the reader are
// derived from these atoms (LineForms.h).

#include "job/FieldTable.h"

#include <functional>
#include <vector>

namespace qrx {

struct FieldAtom
{
    enum Kind { Int, Double, Bool, String, Condition, Parameter, SpeedData, SpeedName, SpeedVariable, SpeedUnit, Position };
    Kind kind;
    // The member inside an instruction of the class: int*, double*, bool*,
    // std::string*, CommandConditionFINAL*, ParaCommand*, PositionRef*.
    std::function<void *(Command &)> get;
};

using FieldAtoms = std::vector<FieldAtom>;

namespace detail {

template <class C, class B>
void addAtoms(const FieldList<B> &fields, FieldAtoms &atoms)
{
    for (const Field<B> &field : fields) {
        std::visit([&](auto member) {
            using M = std::decay_t<decltype(std::declval<B &>().*member)>;
            auto ref = [member](Command &command) -> M & { return static_cast<B &>(static_cast<C &>(command)).*member; };
            if constexpr (std::is_same_v<M, int>) {
                atoms.push_back({FieldAtom::Int, [ref](Command &c) -> void * { return &ref(c); }});
            } else if constexpr (std::is_same_v<M, double>) {
                atoms.push_back({FieldAtom::Double, [ref](Command &c) -> void * { return &ref(c); }});
            } else if constexpr (std::is_same_v<M, bool>) {
                atoms.push_back({FieldAtom::Bool, [ref](Command &c) -> void * { return &ref(c); }});
            } else if constexpr (std::is_same_v<M, std::string>) {
                atoms.push_back({FieldAtom::String, [ref](Command &c) -> void * { return &ref(c); }});
            } else if constexpr (std::is_same_v<M, CommandConditionFINAL>) {
                atoms.push_back({FieldAtom::Condition, [ref](Command &c) -> void * { return &ref(c); }});
            } else if constexpr (std::is_same_v<M, PositionRef>) {
                atoms.push_back({FieldAtom::Position, [ref](Command &c) -> void * { return &ref(c); }});
            } else if constexpr (std::is_same_v<M, std::unique_ptr<ParaVCommand>>) {
                auto speed = [ref](Command &c) -> ParaVCommand & {
                    auto &p = ref(c);
                    if (!p)
                        p = std::make_unique<ParaVCommand>();
                    return *p;
                };
                atoms.push_back({FieldAtom::SpeedData, [speed](Command &c) -> void * { return &speed(c).data; }});
                atoms.push_back({FieldAtom::SpeedName, [speed](Command &c) -> void * { return &speed(c).varname; }});
                atoms.push_back({FieldAtom::SpeedVariable, [speed](Command &c) -> void * { return &speed(c).value; }});
                atoms.push_back({FieldAtom::SpeedUnit, [speed](Command &c) -> void * { return &speed(c).m_vUnit; }});
            } else if constexpr (detail::IsUniquePtr<M>::value) {
                atoms.push_back({FieldAtom::Parameter, [ref](Command &c) -> void * {
                    auto &p = ref(c);
                    if (!p)
                        p = std::make_unique<typename M::element_type>();
                    return static_cast<ParaCommand *>(p.get());
                }});
            }
            // Json::Value members are carried unchanged by JSON only.
        }, field.member);
    }
}

} // namespace detail

// The atoms of class C (and of its base B's table when B is not Command).
template <class C, class B = Command>
FieldAtoms fieldAtoms()
{
    FieldAtoms atoms;
    if constexpr (!std::is_same_v<B, Command>)
        detail::addAtoms<C, B>(B::fields(), atoms);
    detail::addAtoms<C, C>(C::fields(), atoms);
    return atoms;
}

} // namespace qrx
