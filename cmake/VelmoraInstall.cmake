# Installing the library: the shared library with its SOVERSION links, the public
# headers, a CMake package (find_package(Velmora), target Velmora::velmora), a
# pkg-config file, and a Debian package of all of it through CPack (`make package`).
#
# Two install components: "velmora" is what a program needs at run time (the versioned
# library), "velmora_dev" what building against it needs (headers, the unversioned
# link, the CMake package and the pkg-config file). Only the shared library is
# exported; the per-subsystem object libraries are compiled into it and stay private.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(VELMORA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Velmora)
set(VELMORA_QT_MIN_VERSION 6.4) # as the top-level find_package(Qt6) asks
set(VELMORA_SUMMARY "Formatted data-entry field for Qt 6 database forms")

install(TARGETS velmora EXPORT VelmoraTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT velmora NAMELINK_COMPONENT velmora_dev
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT velmora_dev
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT velmora)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/velmora
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT velmora_dev
  FILES_MATCHING PATTERN "*.h")

install(EXPORT VelmoraTargets NAMESPACE Velmora:: FILE VelmoraTargets.cmake
  DESTINATION ${VELMORA_CMAKE_DIR} COMPONENT velmora_dev)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/VelmoraConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VelmoraConfig.cmake INSTALL_DESTINATION ${VELMORA_CMAKE_DIR})
# The library keeps one SOVERSION across the 0.x series, so an installed 0.x answers
# find_package(Velmora 0.y) for every y up to x.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VelmoraConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VelmoraConfig.cmake
              ${PROJECT_BINARY_DIR}/VelmoraConfigVersion.cmake
  DESTINATION ${VELMORA_CMAKE_DIR} COMPONENT velmora_dev)

# velmora.pc names its prefix outright, and that is only known when installing
# (`cmake --install --prefix`, or /usr when CPack stages the package): the template is
# filled at configure time except for the prefix, which the install step fills in. Each
# prefix gets a file of its own in the build folder, so that installs into different
# prefixes (a staged test install beside a package build) may run at the same time.
foreach(dir LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${dir}}")
    set(VELMORA_PC_${dir} "${CMAKE_INSTALL_${dir}}")
  else()
    set(VELMORA_PC_${dir} "\${prefix}/${CMAKE_INSTALL_${dir}}")
  endif()
endforeach()
set(VELMORA_INSTALL_PREFIX "@VELMORA_INSTALL_PREFIX@") # left for the install step
configure_file(${CMAKE_CURRENT_LIST_DIR}/velmora.pc.in ${PROJECT_BINARY_DIR}/velmora.pc.in @ONLY)
install(CODE "
  set(VELMORA_INSTALL_PREFIX \"\${CMAKE_INSTALL_PREFIX}\")
  string(MD5 velmora_pc_key \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
  set(velmora_pc \"${PROJECT_BINARY_DIR}/pkgconfig/\${velmora_pc_key}/velmora.pc\")
  configure_file(\"${PROJECT_BINARY_DIR}/velmora.pc.in\" \"\${velmora_pc}\" @ONLY)
  set(velmora_pc_dir \"${CMAKE_INSTALL_LIBDIR}/pkgconfig\")
  if(NOT IS_ABSOLUTE \"\${velmora_pc_dir}\")
    set(velmora_pc_dir \"\${CMAKE_INSTALL_PREFIX}/\${velmora_pc_dir}\")
  endif()
  file(INSTALL DESTINATION \"\${velmora_pc_dir}\" TYPE FILE FILES \"\${velmora_pc}\")
" COMPONENT velmora_dev)

# --- Debian package ------------------------------------------------------------------
set(CPACK_PACKAGE_NAME libvelmora)
set(CPACK_PACKAGE_VENDOR "Velmora")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${VELMORA_SUMMARY}")
set(CPACK_PACKAGE_DESCRIPTION
    "A Qt Widgets field that edits alphanumeric, numeric, date and boolean values \
keystroke by keystroke against a format string, with lookup lists filled from SQL. \
The package holds the shared library, its headers, a CMake package and a pkg-config file.")
set(CPACK_PACKAGE_CONTACT "Velmora maintainers <maintainers@velmora.invalid>"
    CACHE STRING "Maintainer of the Debian package")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
# The run-time dependencies (libqt6*, libstdc++6, libc6) come from the library itself;
# building against the headers also needs Qt's development files.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-base-dev (>= 6.4), pkg-config")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_STRIP_FILES ON)
include(CPack)
