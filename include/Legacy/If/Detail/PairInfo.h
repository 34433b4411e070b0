#pragma once

#include <Legacy/If/Detail/Cast.h>
#include <Legacy/If/Detail/Family.h>
#include <Legacy/If/Detail/OwnedPart.h>
#include <Legacy/If/Export.h>

#include <string>

namespace Legacy::If::Detail {

/// What the schemas say alike that are made of two schemas of one kind: points, rectangles and lists of rectangles.
/// `Self` is the family's own class, `Part` that of the two.
///
/// The parts are objects of their own, always there and never shared with another schema. Whatever is done with the
/// whole is done with the first part and then with the second.
template<typename Self, IfType_t Type, typename Part, NumericType_t Element>
class LEGACY_IF_API PairInfo : public InfoFamily<Self, Type, Element>
{
public:
    /// Equal types and bounds of both parts; nothing else is compared.
    bool IsEqualBounds(boost::intrusive_ptr<InfoBase const> const& other) const override
    {
        PairInfo const* const schema = CastTo<Self>(other);
        return schema && this->IsEqualType(other) && m_first->IsEqualBounds(schema->m_first.Get()) &&
               m_second->IsEqualBounds(schema->m_second.Get());
    }

    /// Narrows the parts in order. What was narrowed before a failure stays so.
    /// @return 0; #IfErrBoundsTypeMismatch; #IfErrBoundsDisjoint.
    int MergeBounds(boost::intrusive_ptr<InfoBase const> const& other) override
    {
        PairInfo const* const schema = CastTo<Self>(other);
        if (!schema || !this->IsEqualType(other))
            return IfErrBoundsTypeMismatch;
        if (int const code = m_first->MergeBounds(schema->m_first.Get()))
            return code;
        return m_second->MergeBounds(schema->m_second.Get());
    }

protected:
    /// Two parts with their own initial bounds, the id 0, no name and the permission of the whole.
    PairInfo(unsigned int id, std::string const& name, Permission_t const& permission)
        : InfoFamily<Self, Type, Element>(id, name, permission), m_first(new Part(0, {}, permission)),
          m_second(new Part(0, {}, permission))
    {}

    /// Copies of the other's parts, which keep their own identity.
    PairInfo(unsigned int id, std::string const& name, Permission_t const& permission, PairInfo const& other)
        : InfoFamily<Self, Type, Element>(id, name, permission), m_first(other.m_first), m_second(other.m_second)
    {}

    OwnedPart<Part> m_first;
    OwnedPart<Part> m_second;
};

} // namespace Legacy::If::Detail
