# What an application outside the tree builds against: the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

set(zb_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZBSettings)

configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/ZBSettingsConfig.cmake.in
    ${PROJECT_BINARY_DIR}/ZBSettingsConfig.cmake
    INSTALL_DESTINATION ${zb_package_dir})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/ZBSettingsConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/ZBSettingsConfig.cmake
    ${PROJECT_BINARY_DIR}/ZBSettingsConfigVersion.cmake
    DESTINATION ${zb_package_dir})
install(EXPORT ZBSettingsTargets NAMESPACE ZBSettings:: DESTINATION ${zb_package_dir})

# Relative to the file itself, so that an installation can be moved.
file(RELATIVE_PATH zb_pkgconfig_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" zb_pkgconfig_to_prefix "${zb_pkgconfig_to_prefix}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/zbsettings.pc.in ${PROJECT_BINARY_DIR}/zbsettings.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zbsettings.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
