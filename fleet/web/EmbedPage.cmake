# Script: writes the C++ source that holds the files of the page.
#   cmake -DOUTPUT=file.cpp "-DFILES=index.html;page.js" -P EmbedPage.cmake
include("${CMAKE_CURRENT_LIST_DIR}/../../cmake/ByteList.cmake")
set(arrays "")
set(rows "")
foreach(file IN LISTS FILES)
    get_filename_component(name "${file}" NAME)
    string(MAKE_C_IDENTIFIER "${name}" identifier)
    byte_list(bytes "${file}" "'\\x@'")
    string(APPEND arrays "constexpr char k_${identifier}[] = {\n    ${bytes}};\n\n")
    string(APPEND rows "    {\"${name}\", {k_${identifier}, sizeof k_${identifier}}},\n")
endforeach()
file(WRITE "${OUTPUT}" "// Generated from the files of the page.
#include \"web/PageFiles.h\"

namespace Fleet {

namespace {

${arrays}constexpr PageFile_t k_files[] = {
${rows}};

} // namespace

std::span<PageFile_t const> PageFiles() noexcept { return k_files; }

} // namespace Fleet
")
