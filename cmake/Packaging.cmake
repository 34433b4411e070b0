# What is installed: the published libraries, their headers, a CMake package with one component for each library, and as
# many pkg-config modules. All of it is told by the targets themselves. The catalogues and the message headers are
# installed where they are made.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/LegacyIf")
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
# Told from where the file itself stands, so that a moved prefix still works.
file(RELATIVE_PATH LEGACYIF_PC_INCLUDEDIR "/${pkgconfig_dir}" "/${LEGACYIF_INSTALL_INCLUDEDIR}")

# package_boost(result name): the linker's options for a library of Boost. A static library of ours calls also those that
# it stands on.
function(package_boost result name)
    set(options " -lboost_${name}")
    if(LEGACYIF_LIBRARY_TYPE STREQUAL "STATIC")
        get_target_property(links Boost::${name} INTERFACE_LINK_LIBRARIES)
        foreach(link IN LISTS links)
            if(link MATCHES "^Boost::(.*)$" AND NOT link STREQUAL "Boost::headers")
                package_boost(further ${CMAKE_MATCH_1})
                string(APPEND options "${further}")
            endif()
        endforeach()
    endif()
    set(${result} "${options}" PARENT_SCOPE)
endfunction()

get_property(libraries GLOBAL PROPERTY LEGACYIF_LIBRARIES)
set(LEGACYIF_COMPONENTS "")
set(LEGACYIF_BOOST_COMPONENTS "")
foreach(library IN LISTS libraries)
    get_target_property(component ${library} LEGACYIF_COMPONENT)
    get_target_property(PC_NAME ${library} OUTPUT_NAME)
    get_target_property(PC_DESCRIPTION ${library} LEGACYIF_DESCRIPTION)
    get_target_property(links ${library} INTERFACE_LINK_LIBRARIES)
    list(APPEND LEGACYIF_COMPONENTS ${component})

    # Boost has no pkg-config modules, so its libraries and definitions are spelled out.
    set(PC_REQUIRES "")
    set(PC_CFLAGS "")
    set(PC_LIBS "")
    foreach(link IN LISTS links)
        # What a static library keeps to itself must still be linked.
        string(REGEX REPLACE "^\\$<LINK_ONLY:(.*)>$" "\\1" link "${link}")
        if(link STREQUAL "Boost::headers")
            continue()
        elseif(link MATCHES "^Boost::(.*)$")
            list(APPEND LEGACYIF_BOOST_COMPONENTS ${CMAKE_MATCH_1})
            package_boost(options ${CMAKE_MATCH_1})
            string(APPEND PC_LIBS "${options}")
            string(TOUPPER ${CMAKE_MATCH_1} upper)
            string(APPEND PC_CFLAGS " -DBOOST_${upper}_DYN_LINK")
        elseif(link STREQUAL "protobuf::libprotobuf")
            list(APPEND PC_REQUIRES "protobuf >= ${LEGACYIF_PROTOBUF_VERSION}")
        else()
            get_target_property(file ${link} OUTPUT_NAME)
            list(APPEND PC_REQUIRES "${file} = ${PROJECT_VERSION}")
        endif()
    endforeach()
    list(JOIN PC_REQUIRES ", " PC_REQUIRES)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/library.pc.in" "${PROJECT_BINARY_DIR}/${PC_NAME}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${PC_NAME}.pc" DESTINATION "${pkgconfig_dir}")
endforeach()
list(REMOVE_DUPLICATES LEGACYIF_BOOST_COMPONENTS)

# The libraries stand side by side and find each other there, wherever the prefix is.
set_target_properties(${libraries} PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS ${libraries} EXPORT LegacyIfTargets
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/" DESTINATION "${LEGACYIF_INSTALL_INCLUDEDIR}" FILES_MATCHING PATTERN "*.h")
# The targets are exported under the names that they have inside this build, each with its own namespace.
install(EXPORT LegacyIfTargets DESTINATION "${package_dir}")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/LegacyIfConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/LegacyIfConfig.cmake" INSTALL_DESTINATION "${package_dir}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/LegacyIfConfigVersion.cmake.in"
    "${PROJECT_BINARY_DIR}/LegacyIfConfigVersion.cmake" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/LegacyIfConfig.cmake" "${PROJECT_BINARY_DIR}/LegacyIfConfigVersion.cmake"
    DESTINATION "${package_dir}")

# The printers for gdb, which looks for them under the path of the library's own file.
get_target_property(type legacyif TYPE)
if(type STREQUAL "SHARED_LIBRARY" AND NOT APPLE AND NOT WIN32)
    install(CODE "file(INSTALL \"${PROJECT_SOURCE_DIR}/debug/legacyif-gdb.py\"
        DESTINATION \"\${CMAKE_INSTALL_PREFIX}/share/gdb/auto-load\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}\"
        RENAME \"$<TARGET_FILE_NAME:legacyif>-gdb.py\")")
endif()
