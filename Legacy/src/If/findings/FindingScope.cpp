#include "core/Finding.h"

#include <Legacy/If/FindingScope.h>

#include <utility>

namespace Legacy::If {

FindingScope::FindingScope(Bytes_t bytes) noexcept
    : m_outer(std::exchange(Detail::t_findingScope, this)), m_bytes(bytes)
{}

FindingScope::~FindingScope() { Detail::t_findingScope = m_outer; }

} // namespace Legacy::If
