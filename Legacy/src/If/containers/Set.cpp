#include <Legacy/If/Set.h>

#include <utility>

namespace Legacy::If {

Set::Set() = default;
Set::Set(unsigned int id, std::string name) : m_id(id), m_name(std::move(name)) {}
Set::Set(Set const& other) = default;
Set& Set::operator=(Set const& other) = default;
Set::~Set() = default;

void Set::SetName(std::string name) { m_name = std::move(name); }

} // namespace Legacy::If
