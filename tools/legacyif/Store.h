#pragma once

#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/IfKit/Json.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace Command {

/// What ends a command: the text names the file and says why.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A file as far as it could be read.
struct Store_t
{
    bool isJson = false;
    bool hasSchemas = false; ///< they came from a document, and were not made for lack of one
    Legacy::If::InfoItemDirectory directory;
    std::vector<std::string> damage;  ///< why it could not be read to its end
    std::vector<std::string> skipped; ///< values that have no place
};

/// Reads a file of records or a document of JSON, whichever it is; "-" is the standard input.
/// @param schema a document with schemas; empty for none. Schemas in the file itself count where it has none.
/// @throws Failure for a file that cannot be opened and for any fault of the schema document.
Store_t ReadStore(std::string const& path, std::string const& schema);

/// Replaces a file in its own format, in one step.
/// @throws Failure
/// @{
void WriteStore(Store_t const& store, std::string const& path);
void WriteRecords(Legacy::If::InfoItemDirectory const& directory, std::string const& path);
/// @}

/// What of a directory a document says: no schemas that were made for lack of one.
Legacy::IfKit::JsonContent_t ContentOf(Store_t const& store);

/// Opens a file, or the standard input, for reading in one go.
class Source
{
public:
    /// @throws Failure
    explicit Source(std::string const& path);
    Source(Source const&) = delete;
    Source& operator=(Source const&) = delete;
    ~Source();

    std::istream& Stream() noexcept;
    /// Whether a document of JSON begins here, and not a file of records.
    bool IsJson();
    std::string const& GetName() const noexcept;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace Command
