# Installing Quorl: the program and its manual page, the two libraries with
# their headers under include/quorl, a pkg-config file per library, a CMake
# package (find_package(Quorl) gives Quorl::bitmap and Quorl::util), the
# README and the samples; and a Debian package of all of it (cpack -G DEB).
#
# The targets themselves are installed in their own directories (bitmap/,
# util/, app/) into the export set QuorlTargets; this file turns the set into
# the package files and sets up CPack.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(QUORL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/Quorl)
set(QUORL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/quorl)

install(EXPORT QuorlTargets NAMESPACE Quorl:: DESTINATION ${QUORL_CMAKEDIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/QuorlConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/QuorlConfig.cmake
                              INSTALL_DESTINATION ${QUORL_CMAKEDIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuorlConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuorlConfig.cmake ${PROJECT_BINARY_DIR}/QuorlConfigVersion.cmake
        DESTINATION ${QUORL_CMAKEDIR})

# The .pc files find the prefix from their own place (${pcfiledir}), so a
# tree installed with `cmake --install --prefix` or moved elsewhere still works.
file(RELATIVE_PATH QUORL_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" QUORL_PC_TO_PREFIX "${QUORL_PC_TO_PREFIX}")
foreach(lib bitmap util)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/quorl-${lib}.pc.in ${PROJECT_BINARY_DIR}/quorl-${lib}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/quorl-${lib}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
         )
endforeach()

install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${QUORL_DOCDIR})
install(FILES ${PROJECT_SOURCE_DIR}/examples/carpet.tga ${PROJECT_SOURCE_DIR}/examples/triangle.tga
              ${PROJECT_SOURCE_DIR}/examples/dust.tga
        DESTINATION ${QUORL_DOCDIR}/examples)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/imagestats DESTINATION ${QUORL_DOCDIR}/examples)

# Debian package: one package "quorl" with the program, the libraries and
# their development files. Library dependencies come from dpkg-shlibdeps
# (cairo, for the plots, among them); libvips (the decoder of every format
# but TGA, loaded when a file needs it) is named too, so that the package
# states it even where shlibdeps is not run. Boost.Math and nlohmann-json are
# header-only and needed only to build.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quorl)
set(CPACK_PACKAGE_VENDOR "Quorl")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "box-counting fractal dimension of raster images")
set(CPACK_PACKAGE_DESCRIPTION "Quorl estimates the box-counting (fractal) dimension of the \
black pixels of an image (TGA, PNG, TIFF, JPEG, BMP, PNM, GIF or WebP), interactively in an OpenGL window with option and graph \
panels, or quietly from the command line. The package also holds the static raster \
image and utility libraries the program is built on, with their headers, pkg-config \
files and a CMake package.")
set(CPACK_PACKAGE_CONTACT "Quorl maintainers <quorl@example.org>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libvips42 (>= 8.12), libgif7, libcpp-httplib0.11")
# The Python module (python/) is built for Debian's python3 and imports numpy.
if(QUORL_PYTHON)
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", python3, python3-numpy")
endif()
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
# `make package_source`: the sources without build trees or caches.
set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_IGNORE_FILES "^${PROJECT_SOURCE_DIR}/\\\\.git/" "^${PROJECT_SOURCE_DIR}/build" "__pycache__")
include(CPack)
