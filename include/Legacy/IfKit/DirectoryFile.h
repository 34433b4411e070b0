#pragma once

#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/IfKit/AtomicFile.h>
#include <Legacy/IfKit/Export.h>
#include <Legacy/IfKit/RecordFile.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Directories in files of records: the paths of the sections, the names of the parameters and the values. Schemas have
/// no record; they are for the program to build, or for a file of their own.
///
/// @code
/// InfoItemDirectory directory;
/// auto const saved = SaveDirectory(directory, "device.rec");
/// auto const loaded = LoadDirectory("device.rec", directory);
/// @endcode
///
/// Saving only reads the directory, so several threads may do it at once as long as nobody changes it; loading is for
/// one thread.
namespace Legacy::IfKit {

/// What became of a directory on its way to or from a file.
struct DirectoryTransfer_t
{
    /// A value that could not be taken along.
    struct Skipped_t
    {
        unsigned int id = 0;
        std::uint64_t offset = 0; ///< where its record starts, when loading
        int code = 0;             ///< why: a code of the library
        If::IfType_t type{};      ///< perhaps a number that is no enumerator
        If::NumericType_t numericType{};
    };

    std::size_t values = 0;         ///< taken along
    std::vector<Skipped_t> skipped; ///< in the order of the file
    std::optional<FileError_t> error;
};

/// Writes sections, names and values, the former file replaced in one step. Values without a serial form are skipped:
/// localized messages, extended values and collections.
LEGACY_IFKIT_API DirectoryTransfer_t SaveDirectory(If::InfoItemDirectory const& directory, std::string const& path);

/// Adds the sections of a file to the directory and sets the values. A parameter that the directory lacks is entered
/// under the name that the file has for it, with the schema of its type in that family's first state, which bounds as
/// little as the family can; an orientation, which has no schema, is skipped. So are values that do not fit their
/// parameter and types that are not known here. Nothing is validated.
///
/// With an error, what stands before the damage is in the directory.
/// @{
LEGACY_IFKIT_API DirectoryTransfer_t LoadDirectory(std::string const& path, If::InfoItemDirectory& directory);
LEGACY_IFKIT_API DirectoryTransfer_t LoadDirectory(RecordFileReader& reader, If::InfoItemDirectory& directory);
/// @}

} // namespace Legacy::IfKit
