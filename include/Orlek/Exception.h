#pragma once

#include <Orlek/CodeLocation.h>
#include <Orlek/Export.h>

#include <boost/exception/exception.hpp>

#include <exception>
#include <memory>
#include <string>

namespace Orlek {

/// Root of what the platform throws: a code, a message for people and the place that complains.
///
/// As a `boost::exception` it takes further facts on its way up; include the headers of Boost.Exception where that is
/// done. Copies share the immutable parts, so copying cannot fail; any thread may read them.
class ORLEK_API Exception : public std::exception, public boost::exception
{
public:
    Exception(int code, std::string message, CodeLocation location);
    Exception(Exception const&) noexcept;
    Exception& operator=(Exception const&) noexcept;
    ~Exception() override;

    /// The code given by the thrower; what it means depends on the library that threw.
    int GetCode() const noexcept;
    std::string const& GetMessage() const noexcept;
    CodeLocation const& GetLocation() const noexcept;

    /// The message, valid as long as any copy of the exception lives.
    char const* what() const noexcept override;

private:
    struct Parts_t;
    std::shared_ptr<Parts_t const> m_parts;
};

/// The caller broke a precondition: a fault of the program, not of its input or surroundings.
class ORLEK_API LogicError : public Exception
{
public:
    using Exception::Exception;
    LogicError(LogicError const&) noexcept;
    LogicError& operator=(LogicError const&) noexcept;
    ~LogicError() override;
};

} // namespace Orlek
