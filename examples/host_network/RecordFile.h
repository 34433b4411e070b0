#pragma once

#include "Device.h"

#include <Legacy/If/ItemBase.h>
#include <Legacy/If/SectionId.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

/// A file with the sections of a device and the serial records of its values.
///
/// All numbers are big-endian:
///
///     8 bytes   "HOSTNET" and a zero byte
///     4 bytes   version of the format, 1
///     4 bytes   number of sections
///     4 bytes   number of records
///     then for each section: 4 bytes packed id, 2 bytes length of the path, the path
///     then for each record: the 10 header bytes that the library defines, and the payload
///     4 bytes   CRC-32 of all that stands before
namespace HostNetwork {

/// A record file cannot be written or read, or is no such file; the text names it and says why.
class RecordFileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// What a record file holds.
struct Records_t
{
    std::vector<Legacy::If::SectionId> sections;
    std::vector<boost::intrusive_ptr<Legacy::If::ItemBase>> items;
};

/// All sections and values of a device.
Records_t TakeRecords(Device const& device);

/// Writes the file, over one that is there.
/// @return its size in bytes.
/// @throws RecordFileError
std::size_t WriteRecordFile(std::string const& path, Records_t const& records);

/// Reads a file, whoever wrote it: nothing in it is believed before it was tested.
/// @throws RecordFileError
Records_t ReadRecordFile(std::string const& path);

/// A file name that nobody else has, in the system's directory for temporary files. The file is made at once and
/// removed with the object.
class TemporaryFile
{
public:
    /// @throws RecordFileError
    TemporaryFile();
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;
    ~TemporaryFile();

    std::string const& GetPath() const noexcept { return m_path; }

private:
    std::string m_path;
};

} // namespace HostNetwork
