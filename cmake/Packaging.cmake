# What is installed: five shared libraries, their headers, a CMake package, two pkg-config files. The catalogues and the
# message headers are installed where they are made.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/LegacyIf")

# The libraries stand side by side and find each other there, wherever the prefix is.
set_target_properties(orlek net pb legacyif legacyifkit PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS orlek net pb legacyif legacyifkit EXPORT LegacyIfTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" FILES_MATCHING PATTERN "*.h")
# The targets are exported under the names that they have inside this build, each with its own namespace.
install(EXPORT LegacyIfTargets DESTINATION "${package_dir}")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/LegacyIfConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/LegacyIfConfig.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/LegacyIfConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/LegacyIfConfig.cmake" "${PROJECT_BINARY_DIR}/LegacyIfConfigVersion.cmake"
    DESTINATION "${package_dir}")

# Told from where the file itself stands, so that a moved prefix still works.
file(RELATIVE_PATH include_from_pc "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/${CMAKE_INSTALL_INCLUDEDIR}")
set(LEGACYIF_PC_INCLUDEDIR "\${pcfiledir}/${include_from_pc}")
foreach(library legacyif legacyifkit)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${library}.pc.in" "${PROJECT_BINARY_DIR}/${library}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${library}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endforeach()
