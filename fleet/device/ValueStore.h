#pragma once

#include "device/Answers.h"

#include <Legacy/If/InfoItemDirectory.h>

#include <cstdint>
#include <optional>
#include <string>

namespace Fleet {

/// The file in which a device keeps its values from one run to the next: a file of records, so that other programs read
/// it too. What the device remembers beside its values stands there as names of no parameter.
///
/// The file is whole at any time, whatever happens while it is written, and belongs to one process at a time.
class ValueStore
{
public:
    /// What a device remembers beside its values.
    struct Memory_t
    {
        std::uint64_t lineage = 0; ///< drawn by chance when there was no file
        std::uint64_t epoch = 0;   ///< how often the device was started since then
        Answers answers;
    };

    /// @param path of the file, which need not exist yet; empty to keep nothing.
    /// @throws std::runtime_error if another process has the file.
    explicit ValueStore(std::string path);
    ValueStore(ValueStore const&) = delete;
    ValueStore& operator=(ValueStore const&) = delete;
    ~ValueStore();

    /// Whether anything is kept.
    bool IsDurable() const noexcept { return !m_path.empty(); }

    /// Sets the values that the file has for parameters of the directory, with a line in the log for those that have no
    /// place there, and begins the next epoch, on the disk too.
    /// @throws std::runtime_error for a file that is damaged or cannot be written: what it held would be lost.
    Memory_t Open(Legacy::If::InfoItemDirectory& directory);

    /// Brings everything to the disk.
    /// @return nothing; otherwise why it is not there, with the former file in its place.
    std::optional<std::string> Save(Legacy::If::InfoItemDirectory const& directory, Memory_t const& memory);

private:
    std::string m_path;
    int m_lock = -1;
};

} // namespace Fleet
