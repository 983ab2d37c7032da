# zb_platform_library(TARGET) gives a platform library what they all share: it is a shared object of its own, so that the
# maker's library can take its place without a rebuild.
include(GenerateExportHeader)

function(zb_platform_library target)
    string(TOLOWER ${target} lower)
    generate_export_header(${target} BASE_NAME ${target} EXPORT_FILE_NAME ${CMAKE_CURRENT_BINARY_DIR}/${lower}_export.h)
    set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>
        $<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}>)
    install(TARGETS ${target} EXPORT ZBSettingsTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_SKIP)
endfunction()
