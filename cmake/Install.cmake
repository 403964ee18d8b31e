# What `cmake --install` puts in place: headers, library, tool and the package zrclb::zrclb.
include(CMakePackageConfigHelpers)

install(DIRECTORY include/zrclb DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
install(TARGETS zrclb EXPORT zrclb-targets)
if(TARGET zrtool)
  install(TARGETS zrtool)
endif()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/zrclb)
install(EXPORT zrclb-targets NAMESPACE zrclb:: DESTINATION ${package_folder})
configure_package_config_file(cmake/zrclb-config.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/zrclb-config.cmake
                              INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/zrclb-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zrclb-config.cmake ${CMAKE_CURRENT_BINARY_DIR}/zrclb-config-version.cmake
        DESTINATION ${package_folder})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
