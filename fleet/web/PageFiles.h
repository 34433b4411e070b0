#pragma once

#include <span>
#include <string_view>

namespace Fleet {

/// A file of the page, as it stands in the folder `page` when the program is built.
struct PageFile_t
{
    std::string_view name;
    std::string_view content;
};

std::span<PageFile_t const> PageFiles() noexcept;

} // namespace Fleet
