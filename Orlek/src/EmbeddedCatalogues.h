#pragma once

#include <span>
#include <string_view>

namespace Orlek::Detail {

/// A compiled message catalogue that is part of the library.
struct EmbeddedCatalogue_t
{
    std::string_view language;
    std::span<unsigned char const> content;
};

/// All of them; the source is generated from the texts in `Orlek/po`.
std::span<EmbeddedCatalogue_t const> GetEmbeddedCatalogues() noexcept;

} // namespace Orlek::Detail
