# The package for Debian, which `cpack` makes of an installation.
set(MARROWPRESS_MAINTAINER "Marrowpress maintainers <marrowpress@example.org>"
    CACHE STRING "Who answers for the package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME marrowpress)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "command and module that publish DITA maps")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${MARROWPRESS_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Marrowpress reads a DITA map and all that it reaches, and writes the result
as XML: one composite document, or one for each first-level reference. Keys
and content references are resolved, and what a DITAVAL file excludes is
left out. Whatever is wrong is told with file, line, reason and remedy.
.
The package has the command, the module that an application loads, and the
headers that it is loaded with. It opens no network connection.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# DITA's DTDs and their catalog: without them hardly any reference of a map is seen.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS dita-ot)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# What Debian wants of each package, and nobody else.
configure_file(changelog.in ${made}/debian/changelog @ONLY)
add_custom_command(
    OUTPUT ${made}/debian/marrowpress/changelog.gz
    COMMAND ${CMAKE_COMMAND} -E make_directory ${made}/debian/marrowpress
    COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_CURRENT_SOURCE_DIR}/copyright
            ${made}/debian/marrowpress
    COMMAND gzip --best --no-name --stdout ${made}/debian/changelog >
            ${made}/debian/marrowpress/changelog.gz
    DEPENDS ${made}/debian/changelog copyright
    VERBATIM)
add_custom_target(marrowpress_debian ALL DEPENDS ${made}/debian/marrowpress/changelog.gz)
set(CPACK_INSTALLED_DIRECTORIES ${made}/debian/marrowpress
    usr/share/doc/marrowpress)

include(CPack)
