#pragma once

#include <Orlek/Export.h>

#include <iosfwd>
#include <string>

namespace Orlek {

/// A place in source code: file, function and line.
///
/// A plain value with texts of its own, so that it may outlive the library that named the place. Like a string it may
/// be read by many threads at once, but not beside a writer.
class ORLEK_API CodeLocation
{
public:
    /// No place: empty texts and line 0.
    CodeLocation() = default;

    /// The three parts are kept as they are given; nothing looks whether such a place exists.
    CodeLocation(std::string file, std::string function, int line);

    std::string const& GetFile() const noexcept { return m_file; }
    std::string const& GetFunction() const noexcept { return m_function; }

    /// Counted from 1; 0 stands for unknown.
    int GetLine() const noexcept { return m_line; }

    friend bool operator==(CodeLocation const&, CodeLocation const&) = default;

    /// Prints `file:line function`, whatever number format the stream is set to.
    ORLEK_API friend std::ostream& operator<<(std::ostream& out, CodeLocation const& location);

private:
    std::string m_file;
    std::string m_function;
    int m_line = 0;
};

} // namespace Orlek
