#pragma once

#include <Legacy/If/Export.h>

#include <iosfwd>
#include <string>

namespace Legacy::If {

/// A number and a name: base of what applications keep in named sets. The library itself uses it nowhere. A plain value
/// but for its two virtual operations.
class LEGACY_IF_API Set
{
public:
    Set(); ///< the number 0 and an empty name
    Set(unsigned int id, std::string name);
    Set(Set const& other);
    Set& operator=(Set const& other);
    virtual ~Set();

    /// A new set of the application's own class. The caller owns it.
    [[nodiscard]] virtual Set* DeepCopy() const = 0;
    /// Prints the set field by field.
    virtual void DumpVal(std::ostream& os) const = 0;

    void SetId(unsigned int id) noexcept { m_id = id; }
    unsigned int GetId() const noexcept { return m_id; }
    void SetName(std::string name);
    std::string const& GetName() const noexcept { return m_name; }

private:
    unsigned int m_id = 0;
    std::string m_name;
};

} // namespace Legacy::If
