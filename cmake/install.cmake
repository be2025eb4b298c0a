# cmake --install: the library, the headers a host may see, pkg-config and CMake packages, the tool; cpack: the same
# as Debian packages.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ZOQ_HEADERS_DIR "${CMAKE_INSTALL_INCLUDEDIR}/zoq2processing")

install(TARGETS zoq2processing EXPORT zoq2processing
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT library
        INCLUDES DESTINATION "${ZOQ_HEADERS_DIR}" "${ZOQ_HEADERS_DIR}/platform")
install(FILES include/zoq2processing.h include/audio_parameter.h DESTINATION "${ZOQ_HEADERS_DIR}"
        COMPONENT development)
install(DIRECTORY chain dsp modules platform DESTINATION "${ZOQ_HEADERS_DIR}" COMPONENT development
        FILES_MATCHING PATTERN "*.h" PATTERN "*_tables.h" EXCLUDE PATTERN "kernel_*.h" EXCLUDE PATTERN "lanes.h" EXCLUDE)

set(ZOQ_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/zoq2processing")
install(EXPORT zoq2processing NAMESPACE zoq:: FILE zoq2processing-config.cmake DESTINATION "${ZOQ_CMAKE_DIR}"
        COMPONENT development)
write_basic_package_version_file("${CMAKE_BINARY_DIR}/zoq2processing-config-version.cmake"
                                 COMPATIBILITY SameMajorVersion)
configure_file(cmake/zoq2processing.pc.in zoq2processing.pc @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/zoq2processing-config-version.cmake" DESTINATION "${ZOQ_CMAKE_DIR}"
        COMPONENT development)
install(FILES "${CMAKE_BINARY_DIR}/zoq2processing.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT development)
