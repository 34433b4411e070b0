# Helpers that every library, test and program of the house uses. All targets bear the prefix "legacyif", so that a
# project that embeds us keeps the short names for itself; callers use the aliases Legacy::If, Net::Net and so on.

# Strict warnings for our own targets only: a project that embeds us keeps its own. Our presets make errors of them.
function(platform_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # g++ 12 at -O2 reports overlaps that do not exist when a string takes a short literal.
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
endfunction()

# What a shared library of the house is to the linker. Weak symbols of Boost and of the standard library stay inside: the
# script names what is ours, and gives each name the version of the binary interface, so that a program does not run with
# a library that it was not built for.
function(platform_shared_library target file)
    if(NOT LEGACYIF_LIBRARY_TYPE STREQUAL "SHARED" OR APPLE OR WIN32)
        return()
    endif()
    # Once loaded it stays, also when the plugin that brought it goes: protobuf and the log keep what it registered with
    # them, and threads come back to it at their end.
    target_link_options(${target} PRIVATE "LINKER:-z,nodelete")
    set(script "${PROJECT_SOURCE_DIR}/cmake/${file}.map")
    if(EXISTS "${script}")
        configure_file("${script}" "${PROJECT_BINARY_DIR}/${file}.map" @ONLY)
        set(script "${PROJECT_BINARY_DIR}/${file}.map")
        # A library's calls of its own functions need no detour by which a program could put others in their place.
        target_link_options(${target} PRIVATE "LINKER:--version-script=${script}" "LINKER:-Bsymbolic-functions")
        set_target_properties(${target} PROPERTIES LINK_DEPENDS "${script}")
    endif()
endfunction()

# platform_publish(name NAMESPACE ns EXPORT_NAME n OUTPUT_NAME file DESCRIPTION text)
#
# Makes the library <name> one of those that are installed: alias and exported name ns::n, component n of find_package,
# the file lib<file>, the pkg-config module <file>, and the list abi/<file>.symbols of what it exports.
function(platform_publish name)
    cmake_parse_arguments(ARG "" "NAMESPACE;EXPORT_NAME;OUTPUT_NAME;DESCRIPTION" "" ${ARGN})

    add_library(${ARG_NAMESPACE}::${ARG_EXPORT_NAME} ALIAS ${name})
    target_compile_features(${name} PUBLIC cxx_std_20)
    set_target_properties(${name} PROPERTIES
        CXX_EXTENSIONS OFF
        EXPORT_NAME ${ARG_NAMESPACE}::${ARG_EXPORT_NAME}
        OUTPUT_NAME ${ARG_OUTPUT_NAME}
        LINKER_LANGUAGE CXX
        VERSION ${PROJECT_VERSION}
        SOVERSION ${LEGACYIF_SOVERSION}
        LEGACYIF_COMPONENT ${ARG_EXPORT_NAME}
        LEGACYIF_DESCRIPTION "${ARG_DESCRIPTION}")
    platform_shared_library(${name} ${ARG_OUTPUT_NAME})
    set_property(GLOBAL APPEND PROPERTY LEGACYIF_LIBRARIES ${name})
endfunction()

# platform_library(name NAMESPACE ns EXPORT_NAME n OUTPUT_NAME file DESCRIPTION text SOURCES … [PUBLIC …] [PRIVATE …])
#
# Compiles the sources once, as the object library <name>_objects, and links them into the library <name>, which it
# publishes. Tests that reach for a hidden symbol link the objects; everyone else links the library.
function(platform_library name)
    cmake_parse_arguments(ARG "" "NAMESPACE;EXPORT_NAME;OUTPUT_NAME;DESCRIPTION" "SOURCES;PUBLIC;PRIVATE" ${ARGN})

    add_library(${name}_objects OBJECT ${ARG_SOURCES})
    platform_warnings(${name}_objects)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # What clang takes for granted: a library's own functions are its own, so calls of them can be inlined.
        target_compile_options(${name}_objects PRIVATE -fno-semantic-interposition)
    endif()
    target_compile_features(${name}_objects PUBLIC cxx_std_20)
    target_include_directories(${name}_objects PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>")
    target_link_libraries(${name}_objects PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
    set_target_properties(${name}_objects PROPERTIES
        CXX_EXTENSIONS OFF
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)

    add_library(${name} ${LEGACYIF_LIBRARY_TYPE} $<TARGET_OBJECTS:${name}_objects>)
    target_include_directories(${name} PUBLIC
        "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>"
        "$<INSTALL_INTERFACE:${LEGACYIF_INSTALL_INCLUDEDIR}>")
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
    platform_publish(${name}
        NAMESPACE ${ARG_NAMESPACE}
        EXPORT_NAME ${ARG_EXPORT_NAME}
        OUTPUT_NAME ${ARG_OUTPUT_NAME}
        DESCRIPTION "${ARG_DESCRIPTION}")
endfunction()

# platform_executable(name SOURCES … LINK …): a program of our own, a test, an example or a benchmark. Its file is <name>,
# its target legacyif_<name>, or <name> where that says whose it is already.
function(platform_executable name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    set(target ${name})
    if(NOT name MATCHES "^legacyif.")
        set(target legacyif_${name})
    endif()
    add_executable(${target} ${ARG_SOURCES})
    platform_warnings(${target})
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF OUTPUT_NAME ${name})
    target_link_libraries(${target} PRIVATE ${ARG_LINK})
    set(target ${target} PARENT_SCOPE)
endfunction()

# platform_test(name SOURCES … LINK …): one GoogleTest program, its cases known to ctest by name.
function(platform_test name)
    platform_executable(${name} ${ARGN})
    target_link_libraries(${target} PRIVATE GTest::gmock GTest::gtest_main)
    gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60)
endfunction()
