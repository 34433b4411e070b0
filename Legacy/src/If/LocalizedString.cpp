#include <Legacy/If/LocalizedString.h>

#include <Orlek/Localization.h>

namespace Legacy::If {

LocalizedString::~LocalizedString() = default;

bool LocalizedString::operator==(LocalizedString const& other) const
{
    return m_key == other.m_key && m_arguments == other.m_arguments;
}

std::string LocalizedString::GetString(std::string const& language) const
{
    if (m_key.empty())
        return {};
    Orlek::LocalizationHelper message = Orlek::Localization::GetString(m_key, language);
    for (auto const& argument : m_arguments)
        message % argument->GetValAsString();
    return message;
}

} // namespace Legacy::If
