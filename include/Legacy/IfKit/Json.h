#pragma once

#include <Legacy/If/InfoBase.h>
#include <Legacy/If/InfoItemDirectory.h>
#include <Legacy/If/InfoItemDirectoryDelta.h>
#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/ItemBase.h>
#include <Legacy/IfKit/Export.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

/// Values, schemas, directories and deltas as JSON, and back, exactly.
///
/// @code
/// std::stringstream text;
/// static_cast<void>(WriteJson(text, NumericInfo<U16Traits>(1, "mtu", {}))); // JSON Schema, for any tool that knows it
/// boost::intrusive_ptr<InfoBase> copy;
/// if (auto const fault = ReadJson(text, copy)) std::cerr << fault->ToString() << '\n';
/// @endcode
///
/// **Values.** By itself a value is an object; among schemas and in members its bare form stands alone:
///
///     {"id": 4194305, "type": "Numeric", "elementType": "U16", "value": 1500}
///     {"id": 7, "type": "Composite", "members": [{"id": 1, "type": "Bool"}, {"id": 2, "type": "String"}],
///      "value": [true, "on"]}
///
/// | Family | Bare form |
/// |---|---|
/// | Bool, BoolArray | `true`, `[true, false]` |
/// | Numeric, NumericSparse, NumericArray | `5`, `0.1`, `[1, 2]`; 64 bits are written in full |
/// | Enum | the number |
/// | String, StringSparse, StringArray, Addr | `"text"`, `["one", "two"]` |
/// | Colour | `{"a": 1, "r": 0, "g": 0.5, "b": 0}` |
/// | Orientation | `{"bearing": 0, "inclination": 0, "roll": 0}` |
/// | Coordinate | `{"x": 1, "y": 2}` |
/// | Rectangle, RectArray | `{"topLeft": {"x": 1, "y": 2}, "bottomRight": {"x": 3, "y": 4}}`, a list of these |
/// | Endpoint | `{"address": "::1", "port": 80}` |
/// | AppEndpoint | as an endpoint with `"protocol"`, `"version"`, `"compatVersion"` and `"group"` |
/// | AppEndpointArray | a list of these; a protocol is the enumerator's name, or a number that has none |
/// | Extended | `{"first": "", "second": ""}` |
/// | LocalizedString | `{"key": "Hello", "arguments": [null, {"id": 0, "type": "Bool", "value": true}]}` |
/// | Composite, Collection | the bare forms of the members; `"members"` tells their ids and types |
///
/// A float is written with the fewest digits that read as that float. What no number of JSON is stands as a string:
/// "Infinity", "-Infinity", "NaN", and "NaN(0x7fc00001)" for a NaN with other bits than the usual ones. A zero keeps
/// its sign.
///
/// Texts are bytes and JSON is Unicode. What is UTF-8 stands as it is; every other byte stands as the private character
/// U+EF00 plus that byte, as do the bytes of the characters U+EF80 to U+EFFF themselves. Controls, marks of direction
/// and private characters are written as `\u` escapes, so that a document is safe to be shown on a terminal.
///
/// **Schemas** are JSON Schema 2020-12 as far as its words go: `title` is the name; `type`, `minimum`, `maximum`,
/// `maxLength`, `minItems`, `maxItems`, `enum`, `const`, `items`, `prefixItems`, `properties`, `required` and `default`
/// mean what they say there, so that other tools check bare forms with them. They judge as `Validate` does, and
/// `WithinBounds` or `IsPresent` in the families whose `Validate` judges nothing; these differences remain:
///
/// - `maxLength` counts characters and the library bytes. No text that the library takes has too many characters, but a
///   text beyond ASCII can pass `maxLength` and be too long for the library.
/// - In a table of floats the library finds what is within its tolerance of an entry and nothing that is not finite;
///   `enum` finds the entries.
/// - The sizes of a list of application endpoints bind here and not in the library.
/// - The members of a composite are checked as well, which `Validate` leaves to the caller.
///
/// For what these words cannot say there is the object `x-legacyif`, which other tools must be told to ignore (strict
/// ones complain about words that they do not know):
///
/// | Key | Meaning |
/// |---|---|
/// | `id`, `permission` | numbers; in every schema |
/// | `type`, `elementType` | family and element type as by NameOf(); the latter in numeric families |
/// | `minimum`, `maximum` | of floats: a bound that is no finite number; without one at all there is no bound |
/// | `elements` | of an enumeration: `{"name": "off"}`, with `"disabled": true` if it is, for each number in `enum` |
/// | `localized` | of an enumeration: its names are keys |
/// | `min`, `max` | of a colour, which bind nothing |
/// | `members` | of a collection: the schemas, which bind nothing |
/// | `unit` | of an `InfoHolder`: the unit of the values; its description is `description` |
///
/// What a schema does not say has the value that binds nothing. A word that says what the library's schema cannot hold,
/// such as `multipleOf`, is refused and never dropped silently; annotations such as `$schema` and `examples` are
/// ignored.
///
/// **Directories and deltas** are one kind of document. Where a schema stands, the value has its bare form and
/// `"members"` only where its members are not those of the schema; without schemas values stand as by themselves, with
/// the `"name"` of the parameter:
///
///     {"format": 1,
///      "sections": [
///         {"path": "port", "id": 16777215,
///          "parameters": [{"schema": {"title": "mtu", …}, "value": 1500}, {"schema": {…}}],
///          "sections": [{"path": "port/stp", "id": …, "parameters": […]}]}],
///      "schemas": [{…}],                     // those of a delta
///      "values": [{"id": 1, "type": …}]}     // likewise
///
/// **Hostile input** is refused with the place and the reason, and nothing is changed. JSON nests `k_maxJsonDepth` deep
/// at most and composites `k_maxJsonMembers`; a text, list or object has at most 64 MiB, 2^24 elements and 4096
/// members. Memory is needed for one parameter at a time and for what is built. Keys that are not known or stand twice
/// are refused, and comments are.
///
/// All functions are free of state of their own: threads may use them at the same time on streams and objects of their
/// own, and write one object that nobody changes.
namespace Legacy::IfKit {

constexpr unsigned int k_jsonFormat = 1;      ///< of the documents of directories and deltas
constexpr std::size_t k_maxJsonDepth = 160;   ///< levels of arrays and objects in a document
constexpr unsigned int k_maxJsonMembers = 32; ///< levels of composites and collections in one another

/// Why a document was refused, or an object cannot be written.
struct JsonFault_t
{
    std::string pointer;    ///< JSON pointer to what is wrong; empty for the whole and for text that is no JSON
    std::size_t offset = 0; ///< where reading stopped, in bytes
    std::size_t line = 0;   ///< the same, from 1; 0 for an object that cannot be written
    std::size_t column = 0; ///< in bytes, from 1
    std::string reason;     ///< in English, without a full stop

    /// "byte 62, line 3, column 14, at /sections/0/id: a whole number from 0 to 4294967295 is expected"
    LEGACY_IFKIT_API std::string ToString() const;
};

/// Nothing if all went well.
using JsonOutcome_t = std::optional<JsonFault_t>;

enum class JsonLayout_t
{
    Compact,  ///< one line without a blank
    Indented, ///< for people, with a line end behind it
};

/// What of a directory is written.
enum class JsonContent_t
{
    Everything,
    Schemas, ///< no values
    Values,  ///< no schemas; parameters without a value are left out
};

/// What takes the parts of a document, in any order: a section can stand behind its parameters. Each function returns
/// an empty text, or why it does not take the part, which ends the reading.
struct JsonParts_t
{
    using InfoPtr = boost::intrusive_ptr<If::InfoHolder const>;
    using ItemPtr = boost::intrusive_ptr<If::ItemHolder const>;

    std::function<std::string(If::SectionId const&)> section;
    std::function<std::string(InfoPtr const&)> info;
    std::function<std::string(ItemPtr const&, std::string const& name)>
        item; ///< the name is empty where a schema has it
};

/// @name Writing
/// The stream's state tells whether the text arrived. An object that cannot be written leaves the text unfinished: one
/// of a class that is not the library's, or members more than `k_maxJsonMembers` deep.
/// @{
LEGACY_IFKIT_API JsonOutcome_t WriteJson(std::ostream& os, If::ItemBase const& item,
                                         JsonLayout_t layout = JsonLayout_t::Compact);
LEGACY_IFKIT_API JsonOutcome_t WriteJson(std::ostream& os, If::InfoBase const& info,
                                         JsonLayout_t layout = JsonLayout_t::Compact);
LEGACY_IFKIT_API JsonOutcome_t WriteJson(std::ostream& os, If::InfoItemDirectory const& directory,
                                         JsonContent_t content = JsonContent_t::Everything,
                                         JsonLayout_t layout = JsonLayout_t::Compact);
LEGACY_IFKIT_API JsonOutcome_t WriteJson(std::ostream& os, If::InfoItemDirectoryDelta const& delta,
                                         JsonLayout_t layout = JsonLayout_t::Compact);
/// The bare form.
LEGACY_IFKIT_API JsonOutcome_t WriteBareJson(std::ostream& os, If::ItemBase const& item,
                                             JsonLayout_t layout = JsonLayout_t::Compact);
/// @}

/// @name Reading
/// To the end of the stream; what stands behind the document is refused. On a fault nothing is changed. Values are not
/// held against their schemas, except that a directory takes only a value of its schema's type.
/// @{
LEGACY_IFKIT_API JsonOutcome_t ReadJson(std::istream& is, boost::intrusive_ptr<If::ItemBase>& item);
LEGACY_IFKIT_API JsonOutcome_t ReadJson(std::istream& is, boost::intrusive_ptr<If::InfoBase>& info);
/// Replaces the content of the delta.
LEGACY_IFKIT_API JsonOutcome_t ReadJson(std::istream& is, If::InfoItemDirectoryDelta& delta);
/// Fills an empty directory; one that has sections or parameters is refused. A value without a schema gets one of its
/// type as a constructor makes it, see FreshSchema().
LEGACY_IFKIT_API JsonOutcome_t ReadJson(std::istream& is, If::InfoItemDirectory& directory);
/// Hands out the parts of a directory or a delta as soon as each is read, with no more of the document in memory: all
/// that stands before a fault is handed out.
LEGACY_IFKIT_API JsonOutcome_t ReadJson(std::istream& is, JsonParts_t const& parts);
/// A value of the schema's type under its id from the bare form.
LEGACY_IFKIT_API JsonOutcome_t ReadBareJson(std::istream& is, If::InfoBase const& info,
                                            boost::intrusive_ptr<If::ItemBase>& item);
/// @}

} // namespace Legacy::IfKit
