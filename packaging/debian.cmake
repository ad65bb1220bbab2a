# The packages for Debian, which `cpack` makes of an installation, one for each component.
set(MARROWPRESS_MAINTAINER "Marrowpress maintainers <marrowpress@example.org>"
    CACHE STRING "Who answers for the package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME marrowpress)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${MARROWPRESS_MAINTAINER})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL command library development python)
set(what
    "Marrowpress reads a DITA map and all that it reaches, and writes the result
as XML: one composite document, or one for each first-level reference. Keys
and content references are resolved, and what a DITAVAL file excludes is
left out. Whatever is wrong is told with file, line, reason and remedy.
.
")
set(same_version "(= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME marrowpress)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION text)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SHLIBDEPS ON)
# DITA's DTDs and their catalog: without them hardly any reference of a map is seen.
set(CPACK_DEBIAN_COMMAND_PACKAGE_RECOMMENDS dita-ot)
set(CPACK_DEBIAN_COMMAND_DESCRIPTION
    "command and module that publish DITA maps\n${what}The package has the command, and the module that an application or the
library loads. It opens no network connection.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libmarrowpress0)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "marrowpress ${same_version}")
configure_file(shlibs.in ${made}/debian/shlibs @ONLY)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/triggers
                                               ${made}/debian/shlibs)
install(FILES lintian-overrides DESTINATION share/lintian/overrides RENAME libmarrowpress0
        COMPONENT library EXCLUDE_FROM_ALL)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
    "library that publishes DITA maps\n${what}The package has the library for programs in C, C++ and Python.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmarrowpress-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libmarrowpress0 ${same_version}, marrowpress ${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "headers of the library that publishes DITA maps\n${what}The package has the headers of the library, those of the interfaces between
an application and the module, and what CMake and pkg-config find them by.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-marrowpress)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3:any, libmarrowpress0 (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/python/postinst
                                              ${CMAKE_CURRENT_SOURCE_DIR}/python/prerm)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION
    "publishing of DITA maps from Python\n${what}The package has the Python package marrowpress, over the library.")

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
set(packages command marrowpress library libmarrowpress0 development libmarrowpress-dev python
             python3-marrowpress)
while(packages)
    list(POP_FRONT packages component package)
    # Not for an installation without a package.
    install(DIRECTORY ${made}/debian/marrowpress/ DESTINATION share/doc/${package}
            COMPONENT ${component} EXCLUDE_FROM_ALL)
endwhile()

include(CPack)
