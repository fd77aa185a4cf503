# What "cmake --install" puts into place: the client library, its public headers, and the package that
# find_package(TarnClient) finds.

include(CMakePackageConfigHelpers)

set(client_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/TarnClient)

set_target_properties(tarn_client PROPERTIES EXPORT_NAME Client)
set_target_properties(tarn_firmware_rules PROPERTIES EXPORT_NAME FirmwareRules)
if(MSVC)
    # Its debug and release libraries do not go together, so a prefix holds both.
    set_target_properties(tarn_client tarn_firmware_rules PROPERTIES DEBUG_POSTFIX d)
endif()

install(DIRECTORY include/tarn DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS tarn_client tarn_firmware_rules EXPORT TarnClientTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT TarnClientTargets NAMESPACE Tarn:: DESTINATION ${client_package_folder})

configure_package_config_file(TarnClientConfig.cmake.in TarnClientConfig.cmake
    INSTALL_DESTINATION ${client_package_folder}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(TarnClientConfigVersion.cmake VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/TarnClientConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/TarnClientConfigVersion.cmake
    DESTINATION ${client_package_folder})
