#include "Files.h"

#include <Legacy/IfKit/DirectoryFile.h>
#include <Legacy/IfKit/Json.h>

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <system_error>

namespace HostNetwork {

using namespace Legacy::IfKit;

namespace {

void Require(std::optional<FileError_t> const& error)
{
    if (error)
        throw FileFailure(error->ToText());
}

void Require(std::string const& path, JsonOutcome_t const& fault)
{
    if (fault)
        throw FileFailure(path + ": " + fault->ToString());
}

DirectoryTransfer_t Whole(DirectoryTransfer_t transfer)
{
    Require(transfer.error);
    if (!transfer.skipped.empty())
        throw FileFailure(std::to_string(transfer.skipped.size()) + " records are of no parameter of the device");
    return transfer;
}

} // namespace

std::string SchemaPath(std::string const& path) { return path + ".schema.json"; }

std::size_t WriteFiles(Device const& device, std::string const& path)
{
    std::ostringstream schemas;
    Require(SchemaPath(path), WriteJson(schemas, device, JsonContent_t::Schemas, JsonLayout_t::Indented));
    AtomicFile file(SchemaPath(path));
    file.Write(schemas.str());
    Require(file.Commit());
    return Whole(SaveDirectory(device, path)).values;
}

std::size_t ReadFiles(std::string const& path, Device& device)
{
    errno = 0;
    std::ifstream schemas(SchemaPath(path));
    if (!schemas)
        throw FileFailure(SchemaPath(path) + ": " + std::generic_category().message(errno));
    Require(SchemaPath(path), ReadJson(schemas, device));
    return Whole(LoadDirectory(path, device)).values;
}

TemporaryFolder::TemporaryFolder()
{
    std::error_code error;
    m_path = (std::filesystem::temp_directory_path(error) / "host_network-XXXXXX").string();
    if (error || !::mkdtemp(m_path.data()))
        throw FileFailure("no directory for temporary files: " +
                          (error ? error.message() : std::generic_category().message(errno)));
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace HostNetwork
