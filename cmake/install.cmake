# Installation: the library, the embedded host, their headers, the command, and what CMake and pkg-config need to find
# them.

include(CMakePackageConfigHelpers)

set(VFIL_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/vfil")

install(TARGETS vfil EXPORT vfilTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/vfil" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    FILES_MATCHING PATTERN "*.h")
if(VFIL_BUILD_HOST)
    install(TARGETS vfil_host_shared EXPORT vfilTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
    if(NOT VFIL_BUILD_VIDEO)
        set(no_video PATTERN "video.h" EXCLUDE)
    endif()
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/host/include/vfil" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
        FILES_MATCHING PATTERN "*.h" ${no_video})
endif()
install(EXPORT vfilTargets NAMESPACE vfil:: DESTINATION "${VFIL_PACKAGE_DIR}")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/vfilConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/vfilConfig.cmake" INSTALL_DESTINATION "${VFIL_PACKAGE_DIR}")
# Before 1.0 a minor version may change the interface.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/vfilConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/vfilConfig.cmake" "${PROJECT_BINARY_DIR}/vfilConfigVersion.cmake"
    DESTINATION "${VFIL_PACKAGE_DIR}")

# The way from the folder of the .pc file to the prefix, so that an installation may be moved.
file(RELATIVE_PATH VFIL_PC_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
set(modules vfil)
if(VFIL_BUILD_HOST)
    list(APPEND modules vfil-host)
endif()
foreach(module ${modules})
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${module}.pc.in" "${PROJECT_BINARY_DIR}/${module}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${module}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endforeach()
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

if(VFIL_BUILD_TOOL)
    install(TARGETS vfil_tool RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()
