#include <Legacy/If/LocalizedString.h>

namespace Legacy::If {

LocalizedString::~LocalizedString() = default;

bool LocalizedString::operator==(LocalizedString const& other) const
{
    return m_key == other.m_key && m_arguments == other.m_arguments;
}

} // namespace Legacy::If
