#include <Orlek/CodeLocation.h>

#include <ostream>
#include <utility>

namespace Orlek {

CodeLocation::CodeLocation(std::string file, std::string function, int line)
    : m_file(std::move(file)), m_function(std::move(function)), m_line(line)
{}

std::ostream& operator<<(std::ostream& out, CodeLocation const& location)
{
    return out << location.m_file << ':' << std::to_string(location.m_line) << ' ' << location.m_function;
}

} // namespace Orlek
