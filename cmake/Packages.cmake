# Debian packages by `cpack`, one for each component of the installation: vexlomenu, the plugin; deskhost, which runs
# it on a desk; libvexlo-toolkit-dev, for authors of other plugins.
set(CPACK_PACKAGE_NAME vexlomenu)
set(CPACK_PACKAGE_VENDOR "Vexlo service menu team")
set(CPACK_PACKAGE_CONTACT "Vexlo service menu team <team@vexlomenu.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package uses the first line of its description
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL plugin desk dev)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

set(CPACK_DEBIAN_PLUGIN_PACKAGE_NAME vexlomenu)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_SECTION video)
if(VEXLO_PACK_RELOCATIONS)
  set(CPACK_DEBIAN_PLUGIN_PACKAGE_DEPENDS "libc6 (>= 2.36)")
endif()
set(CPACK_COMPONENT_PLUGIN_DESCRIPTION "service menu plugin for a television receiver
Four screens about the receiver itself: running processes, the kernel's
memory summary, the scan log, flash partitions and mounted file systems.
It needs a host that loads it, such as the desk host of package deskhost.")

set(CPACK_DEBIAN_DESK_PACKAGE_NAME deskhost)
set(CPACK_DEBIAN_DESK_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_DESK_PACKAGE_DEPENDS "vexlomenu (= ${PROJECT_VERSION}-1), bubblewrap, busybox, fonts-dejavu-core, procps")
# Earlier versions were one package.
set(CPACK_DEBIAN_DESK_PACKAGE_BREAKS "vexlomenu (<< 1.1.0)")
set(CPACK_DEBIAN_DESK_PACKAGE_REPLACES "vexlomenu (<< 1.1.0)")
set(CPACK_COMPONENT_DESK_DESCRIPTION "runs a television receiver's plugins on a desk computer
The desk host loads a plugin as a receiver's front end does, draws its
screens in a window, in a terminal or into pictures, and takes the keyboard
as the remote control. It records what a plugin calls and shows.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libvexlo-toolkit-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "binutils, deskhost (= ${PROJECT_VERSION}-1), gettext, pkgconf")
if(NOT VEXLO_SIGC1_INCLUDE)
  string(PREPEND CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libsigc++-3.0-dev, ")
endif()
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS "abigail-tools")
set(CPACK_COMPONENT_DEV_DESCRIPTION "headers for plugins of a television receiver
What a plugin requires of the front end that loads it, as C++ headers, with
a CMake package, a pkg-config file, commands that begin and test a plugin,
a reference in HTML and an example.")

# Debian requires each package to have its licence and changelog.
set(papers ${CMAKE_BINARY_DIR}/papers)
execute_process(COMMAND date -u -d ${VEXLO_RELEASE_DATE} "+%a, %d %b %Y 12:00:00 +0000"
                OUTPUT_VARIABLE VEXLO_CHANGELOG_DATE OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file(cmake/changelog.Debian.in ${papers}/changelog.Debian @ONLY)
configure_file(CHANGELOG.md ${papers}/changelog COPYONLY)
execute_process(COMMAND gzip -9nfk ${papers}/changelog ${papers}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
foreach(package IN ITEMS vexlomenu:plugin deskhost:desk libvexlo-toolkit-dev:dev)
  string(REPLACE ":" ";" package ${package})
  list(POP_FRONT package name component)
  set(folder ${CMAKE_INSTALL_DATADIR}/doc/${name})
  install(FILES LICENSE DESTINATION ${folder} RENAME copyright COMPONENT ${component})
  install(FILES ${papers}/changelog.gz ${papers}/changelog.Debian.gz DESTINATION ${folder} COMPONENT ${component})
endforeach()
include(CPack)
