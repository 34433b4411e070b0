# Script: writes the C++ source that holds compiled message catalogues.
#   cmake -DOUTPUT=file.cpp "-DCATALOGUES=en=path;de=path" -P EmbedCatalogues.cmake
set(arrays "")
set(rows "")
foreach(catalogue IN LISTS CATALOGUES)
    string(REGEX MATCH "^([^=]+)=(.+)$" _ "${catalogue}")
    set(language "${CMAKE_MATCH_1}")
    file(READ "${CMAKE_MATCH_2}" bytes HEX)
    string(REGEX REPLACE "(................................)" "\\1\n    " bytes "${bytes}")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
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
