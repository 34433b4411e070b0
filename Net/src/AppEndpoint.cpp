#include <Net/AppEndpoint.h>

namespace Net {

AppEndpoint::AppEndpoint(Uri const& uri) : m_uri(uri) {}

AppEndpoint::AppEndpoint(std::string const& uri) : m_uri(uri) {}

} // namespace Net
