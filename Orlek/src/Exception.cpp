#include <Orlek/Exception.h>

#include <utility>

namespace Orlek {

struct Exception::Parts_t
{
    int code;
    std::string message;
    CodeLocation location;
};

Exception::Exception(int code, std::string message, CodeLocation location)
    : m_parts(std::make_shared<Parts_t const>(Parts_t{code, std::move(message), std::move(location)}))
{}

// Copied but never moved from: the parts are there as long as the object is.
Exception::Exception(Exception const&) noexcept = default;
Exception& Exception::operator=(Exception const&) noexcept = default;
Exception::~Exception() = default;

int Exception::GetCode() const noexcept { return m_parts->code; }
std::string const& Exception::GetMessage() const noexcept { return m_parts->message; }
CodeLocation const& Exception::GetLocation() const noexcept { return m_parts->location; }
char const* Exception::what() const noexcept { return m_parts->message.c_str(); }

LogicError::LogicError(LogicError const&) noexcept = default;
LogicError& LogicError::operator=(LogicError const&) noexcept = default;
LogicError::~LogicError() = default;

} // namespace Orlek
