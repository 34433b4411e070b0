#pragma once

#include "Device.h"

#include <cstddef>
#include <stdexcept>
#include <string>

/// A device in two files: its values as records, and beside them its schemas, which have no record, as JSON.
namespace HostNetwork {

/// A file cannot be written or read, or is no such file; the text names it and says why.
class FileFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The name of the file with the schemas for a file with records.
std::string SchemaPath(std::string const& path);

/// Writes both files.
/// @return the number of records.
/// @throws FileFailure
std::size_t WriteFiles(Device const& device, std::string const& path);

/// Fills an empty device from both files, whoever wrote them.
/// @return the number of records.
/// @throws FileFailure; the device then holds what stands before the damage.
std::size_t ReadFiles(std::string const& path, Device& device);

/// A folder for such files in the system's directory for temporary files, removed with the object.
class TemporaryFolder
{
public:
    /// @throws FileFailure
    TemporaryFolder();
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder();

    std::string PathOf(std::string const& name) const { return m_path + '/' + name; }

private:
    std::string m_path;
};

} // namespace HostNetwork
