#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>

namespace Legacy::If::Detail {

/// An object as the roots' operations take it, without a reference of its own: somebody else keeps it alive meanwhile.
template<typename Root>
class Borrowed
{
public:
    explicit Borrowed(Root const& object) noexcept : m_pointer(&object, false) {}
    explicit Borrowed(boost::intrusive_ptr<Root> const& object) noexcept : Borrowed(*object) {}
    ~Borrowed() { m_pointer.detach(); }
    Borrowed(Borrowed const&) = delete;
    Borrowed& operator=(Borrowed const&) = delete;

    boost::intrusive_ptr<Root const> const& Pointer() const noexcept { return m_pointer; }

private:
    boost::intrusive_ptr<Root const> m_pointer;
};

} // namespace Legacy::If::Detail
