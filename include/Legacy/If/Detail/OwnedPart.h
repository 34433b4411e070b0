#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>

namespace Legacy::If::Detail {

/// A part that its owner never lacks and shares with no other owner, although it is handed out by pointer: copying the
/// owner copies the part, assigning assigns to the part that is there. Moving is copying, so that an owner that was
/// moved from is whole.
template<typename Part>
class OwnedPart
{
public:
    explicit OwnedPart(Part* part) : m_part(part) {} ///< takes over a new object
    OwnedPart(OwnedPart const& other) : m_part(other.m_part->DeepCopy()) {}
    ~OwnedPart() = default;

    OwnedPart& operator=(OwnedPart const& other)
    {
        *m_part = *other.m_part;
        return *this;
    }

    Part& operator*() const noexcept { return *m_part; }
    Part* operator->() const noexcept { return m_part.get(); }

    boost::intrusive_ptr<Part> const& Get() const noexcept { return m_part; }

private:
    boost::intrusive_ptr<Part> m_part;
};

} // namespace Legacy::If::Detail
