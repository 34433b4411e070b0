# Helpers that every library, test and program of the house uses.

# Strict warnings, as errors, for our own targets only: a project that embeds us keeps its own.
function(platform_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # g++ 12 at -O2 reports overlaps that do not exist when a string takes a short literal.
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
endfunction()

# What a shared library of the house is to the linker. Weak symbols of Boost and of the standard library stay inside: the
# script names what is ours.
function(platform_shared_library target script)
    if(APPLE OR WIN32)
        return()
    endif()
    # Once loaded it stays, also when the plugin that brought it goes: protobuf and the log keep what it registered with
    # them, and threads come back to it at their end.
    target_link_options(${target} PRIVATE "LINKER:-z,nodelete")
    if(EXISTS "${script}")
        # A library's calls of its own functions need no detour by which a program could put others in their place.
        target_link_options(${target} PRIVATE "LINKER:--version-script=${script}" "LINKER:-Bsymbolic-functions")
        set_target_properties(${target} PROPERTIES LINK_DEPENDS "${script}")
    endif()
endfunction()

# platform_library(name NAMESPACE ns EXPORT_NAME n OUTPUT_NAME file SOURCES … [PUBLIC …] [PRIVATE …])
#
# Compiles the sources once, as the object library <name>_objects, and links them into the shared library <name> with
# the alias ns::n. Tests that reach for a hidden symbol link the objects; everyone else links the shared library.
function(platform_library name)
    cmake_parse_arguments(ARG "" "NAMESPACE;EXPORT_NAME;OUTPUT_NAME" "SOURCES;PUBLIC;PRIVATE" ${ARGN})

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

    add_library(${name} SHARED $<TARGET_OBJECTS:${name}_objects>)
    add_library(${ARG_NAMESPACE}::${ARG_EXPORT_NAME} ALIAS ${name})
    target_compile_features(${name} PUBLIC cxx_std_20)
    target_include_directories(${name} PUBLIC
        "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
    set_target_properties(${name} PROPERTIES
        EXPORT_NAME ${ARG_NAMESPACE}::${ARG_EXPORT_NAME}
        OUTPUT_NAME ${ARG_OUTPUT_NAME}
        LINKER_LANGUAGE CXX
        VERSION ${PROJECT_VERSION}
        SOVERSION ${LEGACYIF_SOVERSION})
    platform_shared_library(${name} "${PROJECT_SOURCE_DIR}/cmake/${ARG_OUTPUT_NAME}.map")
endfunction()

# A program of our own: a test, an example, a benchmark.
function(platform_executable name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    platform_warnings(${name})
    target_compile_features(${name} PRIVATE cxx_std_20)
    set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
    target_link_libraries(${name} PRIVATE ${ARG_LINK})
endfunction()

# platform_test(name SOURCES … LINK …): one GoogleTest program, its cases known to ctest by name.
function(platform_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    platform_executable(${name} SOURCES ${ARG_SOURCES} LINK ${ARG_LINK} GTest::gmock GTest::gtest_main)
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60)
endfunction()
