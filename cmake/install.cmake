# cmake --install: the library, the headers a host may see, pkg-config and CMake packages, the tools; each for every
# prefix, for hosts find what they need from where the files lie.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ZOQ_HEADERS_DIR "${CMAKE_INSTALL_INCLUDEDIR}/zoq2processing")

install(TARGETS zoq2processing EXPORT zoq2processing
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT library
        INCLUDES DESTINATION "${ZOQ_HEADERS_DIR}" "${ZOQ_HEADERS_DIR}/platform")
install(FILES include/zoq2processing.h include/audio_parameter.h DESTINATION "${ZOQ_HEADERS_DIR}"
        COMPONENT development)
install(DIRECTORY platform DESTINATION "${ZOQ_HEADERS_DIR}" COMPONENT development FILES_MATCHING PATTERN "*.h")
# Of the rooms behind it, the headers that the public one includes.
foreach(header chain/chain_initialization.h chain/frame_chain.h dsp/fft.h dsp/frame.h dsp/grid.h dsp/section.h
               modules/den/den.h modules/drc/drc.h modules/eq/eq.h modules/geq/geq.h modules/tws/tws.h modules/vb/vb.h
               modules/x2b/x2b.h)
  get_filename_component(folder "${header}" DIRECTORY)
  install(FILES "${header}" DESTINATION "${ZOQ_HEADERS_DIR}/${folder}" COMPONENT development)
endforeach()

set(ZOQ_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/zoq2processing")
install(EXPORT zoq2processing NAMESPACE zoq:: FILE zoq2processing-config.cmake DESTINATION "${ZOQ_CMAKE_DIR}"
        COMPONENT development)
write_basic_package_version_file("${CMAKE_BINARY_DIR}/zoq2processing-config-version.cmake"
                                 COMPATIBILITY SameMajorVersion)
file(RELATIVE_PATH ZOQ_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" /)
string(REGEX REPLACE "/$" "" ZOQ_PC_TO_PREFIX "${ZOQ_PC_TO_PREFIX}")
configure_file(cmake/zoq2processing.pc.in zoq2processing.pc @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/zoq2processing-config-version.cmake" DESTINATION "${ZOQ_CMAKE_DIR}"
        COMPONENT development)
install(FILES "${CMAKE_BINARY_DIR}/zoq2processing.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT development)
install(DIRECTORY docs/ DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/libzoq2processing-dev" COMPONENT development
        PATTERN "man" EXCLUDE)

set(ZOQ_PROGRAMS zoq-selftest)
if(TARGET zoq)
  list(APPEND ZOQ_PROGRAMS zoq)
endif()
install(TARGETS ${ZOQ_PROGRAMS} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)

include(cmake/package/packages.cmake)
