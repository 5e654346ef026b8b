include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS vek EXPORT VekTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# Headers install exactly as they lie in the tree: <vek/io/CStream.h>.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/vek DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.h")
install(EXPORT VekTargets NAMESPACE Vek:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vek)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/VekConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/VekConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vek)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VekConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VekConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/VekConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vek)

if(NOT WIN32)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/vek.pc.in ${CMAKE_CURRENT_BINARY_DIR}/vek.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vek.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
