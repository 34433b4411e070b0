#pragma once

#include <Legacy/If/Export.h>
#include <Legacy/If/InfoBase.h>
#include <Legacy/If/ItemBase.h>
#include <Orlek/SeverityLevel.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <string>

namespace Legacy::If {

/// One finding: the first thing that a validation found wrong.
///
/// It holds copies of what it concerns and so outlives later changes to the value. It cannot be changed once built, and
/// any number of threads may read it.
class LEGACY_IF_API ResultElem
{
public:
    /// Keeps deep copies of `item` and `info`; either may be null. The pointers given are not retained.
    ResultElem(Orlek::SeverityLevel_t const& severity, boost::intrusive_ptr<ItemBase const> const& item,
               boost::intrusive_ptr<InfoBase const> const& info);

    /// A copy shares both objects.
    ResultElem(ResultElem const& other) = default;
    ResultElem& operator=(ResultElem const& other) = default;

    virtual ~ResultElem();

    /// How grave the finding is; every finding of the library itself is an `Error` (4).
    Orlek::SeverityLevel_t const& GetSeverityLevel() const noexcept { return m_severity; }
    /// The schema concerned, or null: the library's own findings carry none.
    boost::intrusive_ptr<InfoBase const> const& GetInfo() const noexcept { return m_info; }
    /// A copy of the value as it was, or null.
    boost::intrusive_ptr<ItemBase const> const& GetItem() const noexcept { return m_item; }

    /// Always the empty text.
    ///
    /// Contract: a finding keeps neither key nor arguments. Log readers match on the caller's prefix alone, so a text
    /// here would change every line that applications already parse; rebuild a message from value and schema instead.
    std::string GetAsString() const { return {}; }

private:
    Orlek::SeverityLevel_t m_severity;
    boost::intrusive_ptr<InfoBase const> m_info;
    boost::intrusive_ptr<ItemBase const> m_item;
};

} // namespace Legacy::If
