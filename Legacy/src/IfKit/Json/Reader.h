#pragma once

#include "Node.h"

#include <Legacy/IfKit/Json.h>

#include <boost/json/basic_parser.hpp>
#include <boost/json/error.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace Legacy::IfKit::Detail {

/// Takes what is read of a document, each part as soon as it is whole. Refusals end the reading.
class DocumentSink
{
public:
    virtual ~DocumentSink() = default;
    virtual void TakeSection(Node const& section) = 0; ///< an object without what lies below
    virtual void TakeParameter(Node const& parameter) = 0;
    virtual void TakeSchema(Node const& schema) = 0;
    virtual void TakeValue(Node const& value) = 0;
};

/// Reads a document that is one value of JSON and hands it to `take`.
JsonOutcome_t ReadWhole(std::istream& in, std::function<void(Node const&)> const& take);

/// Reads a document of sections, schemas and values, of which no more is in memory than one of them.
JsonOutcome_t ReadParts(std::istream& in, DocumentSink& sink);

} // namespace Legacy::IfKit::Detail
