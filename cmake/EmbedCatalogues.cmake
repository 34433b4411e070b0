# Script: writes the C++ source that holds compiled message catalogues.
#   cmake -DOUTPUT=file.cpp "-DCATALOGUES=en=path;de=path" -P EmbedCatalogues.cmake
include("${CMAKE_CURRENT_LIST_DIR}/ByteList.cmake")
set(arrays "")
set(rows "")
foreach(catalogue IN LISTS CATALOGUES)
    string(REGEX MATCH "^([^=]+)=(.+)$" _ "${catalogue}")
    set(language "${CMAKE_MATCH_1}")
    byte_list(bytes "${CMAKE_MATCH_2}" "0x@")
    string(APPEND arrays "constexpr unsigned char k_${language}[] = {\n    ${bytes}};\n\n")
    string(APPEND rows "    {\"${language}\", k_${language}},\n")
endforeach()
file(WRITE "${OUTPUT}" "// Generated from the catalogues in Orlek/po.
#include \"EmbeddedCatalogues.h\"

namespace Orlek::Detail {

namespace {

${arrays}constexpr EmbeddedCatalogue_t k_catalogues[] = {
${rows}};

} // namespace

std::span<EmbeddedCatalogue_t const> GetEmbeddedCatalogues() noexcept { return k_catalogues; }

} // namespace Orlek::Detail
")
