# cpack -G DEB: three Debian packages, of what `cmake --install` installs.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The zoq2processing developers <developers@zoq2processing.invalid>")
set(CPACK_PACKAGE_VENDOR "The zoq2processing developers")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development tools)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "audio output post-processing for phones")
set(ABOUT "The engine gives a phone's playback path its sound: every block of 16-bit\nPCM is processed in place for \
the loudspeaker or for headphones.")
set(SAME_VERSION "libzoq2processing (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libzoq2processing)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "${ABOUT}\n\nThe library.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/triggers")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzoq2processing-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${SAME_VERSION}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "${ABOUT}\n\nThe headers, the pkg-config and CMake packages and the guides for integrators.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME zoq-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${SAME_VERSION}")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS gnuplot-nox)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
    "${ABOUT}\n\nThe tools: they render files, measure the engine and check and write its settings.")

# The changes in Debian's form: one bullet a line.
file(READ "${PROJECT_SOURCE_DIR}/CHANGELOG.md" CHANGES)
string(REGEX REPLACE "^.*\n## ${PROJECT_VERSION}\n+" "" CHANGES "${CHANGES}")
string(REGEX REPLACE "(^|\n)- " "\\1  * " CHANGES "${CHANGES}")
string(REGEX REPLACE "\n+$|`" "" ZOQ_CHANGES "${CHANGES}")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/CHANGELOG.md")
configure_file("${CMAKE_CURRENT_LIST_DIR}/changelog.in" "${CMAKE_BINARY_DIR}/changelog" @ONLY)
find_program(ZOQ_GZIP gzip)

# Each package has a folder of its own below share/doc, and pages of the manual are packed.
#   zoq_pack(<file> <packed file> <folder> <component>)
function(zoq_pack file packed folder component)
  set(out "${CMAKE_BINARY_DIR}/packed/${packed}")
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/packed")
  execute_process(COMMAND "${ZOQ_GZIP}" -9nc "${file}" OUTPUT_FILE "${out}" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${out}" DESTINATION "${folder}" COMPONENT ${component})
endfunction()
foreach(component library development tools)
  string(TOUPPER ${component} upper)
  set(folder "${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
  install(FILES "${CMAKE_CURRENT_LIST_DIR}/copyright" DESTINATION "${folder}" COMPONENT ${component})
  zoq_pack("${CMAKE_BINARY_DIR}/changelog" changelog.gz "${folder}" ${component})
endforeach()
zoq_pack("${PROJECT_SOURCE_DIR}/docs/man/zoq-selftest.1" zoq-selftest.1.gz "${CMAKE_INSTALL_MANDIR}/man1" tools)
if(TARGET zoq)
  zoq_pack("${PROJECT_SOURCE_DIR}/docs/man/zoq.1" zoq.1.gz "${CMAKE_INSTALL_MANDIR}/man1" tools)
endif()
include(CPack)
