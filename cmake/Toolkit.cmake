# What the authors of other plugins install: the contract's headers, a CMake package and a pkg-config file
# for them, the runner of golden tests, and the reference made from the headers' comments.
include(CMakePackageConfigHelpers)

set(VEXLO_TOOLKIT_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/vexlo-toolkit)
set(VEXLO_TOOLKIT_DATA ${CMAKE_INSTALL_DATADIR}/vexlo-toolkit)
set(VEXLO_TOOLKIT_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/VexloToolkit)

install(DIRECTORY src/toolkit/ DESTINATION ${VEXLO_TOOLKIT_INCLUDE_DIR} COMPONENT dev FILES_MATCHING PATTERN *.h)
install(PROGRAMS cmake/toolkit/golden-test cmake/toolkit/deskhost-new tools/check-host
        DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT dev)
vexlo_manual_page(check-host dev ${PROJECT_SOURCE_DIR}/tools/check-host "tell whether a host can run a receiver's plugin")
vexlo_manual_page(deskhost-new dev ${PROJECT_SOURCE_DIR}/cmake/toolkit/deskhost-new "begin a plugin for a television receiver")
vexlo_manual_page(golden-test dev ${PROJECT_SOURCE_DIR}/cmake/toolkit/golden-test
                  "compare what a plugin does with what is expected")
foreach(command IN ITEMS check-host golden-test)
  install(FILES cmake/toolkit/completion DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${command}
          COMPONENT dev)
endforeach()
install(PROGRAMS cmake/toolkit/check-entry cmake/toolkit/list-untranslated
        DESTINATION ${VEXLO_TOOLKIT_DATA} COMPONENT dev)
# A signal library as strict as those of receivers, to compile with.
install(DIRECTORY tests/vendor/sigc1/include/sigc++-1.2/sigc++ DESTINATION ${VEXLO_TOOLKIT_DATA}/strict COMPONENT dev)
install(FILES tests/vendor/sigc1/lib/sigc++-1.2/include/sigcconfig.h DESTINATION ${VEXLO_TOOLKIT_DATA}/strict COMPONENT dev)
install(FILES cmake/toolkit/plugin.map src/toolkit/econtract.cpp DESTINATION ${VEXLO_TOOLKIT_DATA} COMPONENT dev)

# The signal library is the one that this is built on.
set(VEXLO_PC_REQUIRES sigc++-3.0)
if(VEXLO_SIGC1_INCLUDE)
  get_target_property(VEXLO_SIGC1_DEFINITION vexlo_toolkit INTERFACE_COMPILE_DEFINITIONS)
  set(VEXLO_PC_REQUIRES)
  list(TRANSFORM VEXLO_SIGC1_INCLUDE PREPEND " -isystem " OUTPUT_VARIABLE folders)
  string(CONCAT VEXLO_PC_SIGNALS " -D${VEXLO_SIGC1_DEFINITION}" ${folders})
endif()

configure_package_config_file(cmake/VexloToolkitConfig.cmake.in VexloToolkitConfig.cmake
  INSTALL_DESTINATION ${VEXLO_TOOLKIT_PACKAGE}
  PATH_VARS VEXLO_TOOLKIT_INCLUDE_DIR VEXLO_TOOLKIT_DATA CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(VexloToolkitConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/VexloToolkitConfig.cmake ${CMAKE_BINARY_DIR}/VexloToolkitConfigVersion.cmake
        DESTINATION ${VEXLO_TOOLKIT_PACKAGE} COMPONENT dev)

file(RELATIVE_PATH VEXLO_PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/vexlo-toolkit.pc.in vexlo-toolkit.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/vexlo-toolkit.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# The reference, where there is Doxygen to make it, and a build that is tested and released.
find_program(VEXLO_DOXYGEN doxygen)
if(VEXLO_DOXYGEN AND BUILD_TESTING AND NOT CMAKE_CROSSCOMPILING AND CMAKE_BUILD_TYPE STREQUAL "Release")
  configure_file(docs/Doxyfile.in Doxyfile @ONLY)
  file(GLOB headers CONFIGURE_DEPENDS src/toolkit/*.h)
  add_custom_command(
    OUTPUT ${CMAKE_BINARY_DIR}/reference/html/index.html
    COMMAND ${VEXLO_DOXYGEN} ${CMAKE_BINARY_DIR}/Doxyfile
    DEPENDS ${headers} ${CMAKE_BINARY_DIR}/Doxyfile docs/reference.md
    COMMENT "Reference of the contract"
    VERBATIM)
  add_custom_target(vexlo_reference ALL DEPENDS ${CMAKE_BINARY_DIR}/reference/html/index.html)
  install(DIRECTORY ${CMAKE_BINARY_DIR}/reference/html
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvexlo-toolkit-dev COMPONENT dev)
endif()
# In folders as they are here, so that the links between them lead somewhere.
install(FILES docs/plugins.md docs/porting.md docs/receiver.md docs/deskhost.md
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvexlo-toolkit-dev/docs COMPONENT dev)
install(FILES docs/pictures/receiver.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvexlo-toolkit-dev/docs/pictures COMPONENT dev)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvexlo-toolkit-dev
        USE_SOURCE_PERMISSIONS COMPONENT dev)

# The examples take this tree for installed, to be built and tested wherever the tree is.
function(vexlo_add_examples)
  set(folder ${CMAKE_BINARY_DIR}/toolkit)
  file(MAKE_DIRECTORY ${folder})
  foreach(file IN ITEMS cmake/toolkit/check-entry cmake/toolkit/list-untranslated cmake/toolkit/plugin.map src/toolkit/econtract.cpp)
    configure_file(${file} ${folder} COPYONLY)
  endforeach()
  file(COPY ${PROJECT_SOURCE_DIR}/tests/vendor/sigc1/include/sigc++-1.2/sigc++
            ${PROJECT_SOURCE_DIR}/tests/vendor/sigc1/lib/sigc++-1.2/include/sigcconfig.h DESTINATION ${folder}/strict)
  set(VEXLO_TOOLKIT_INCLUDE_DIR ${PROJECT_SOURCE_DIR}/src/toolkit)
  set(VEXLO_TOOLKIT_DATA ${folder})
  configure_package_config_file(cmake/VexloToolkitConfig.cmake.in ${folder}/VexloToolkitConfig.cmake
    INSTALL_DESTINATION ${folder} PATH_VARS VEXLO_TOOLKIT_INCLUDE_DIR VEXLO_TOOLKIT_DATA CMAKE_INSTALL_BINDIR)
  set(VexloToolkit_DIR ${folder})
  set(VEXLO_GOLDEN_TEST ${PROJECT_SOURCE_DIR}/cmake/toolkit/golden-test)
  # A program that is built for another computer runs in its emulator.
  list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
  set(through)
  if(emulator)
    set(through "--through '${emulator}'")
  endif()
  file(GENERATE OUTPUT ${folder}/deskhost
       CONTENT "#!/bin/sh\nexec ${emulator} $<TARGET_FILE:deskhost> ${through} \"$@\"\n"
       FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  set(VEXLO_DESKHOST ${folder}/deskhost)
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
  foreach(name IN LISTS ARGN)
    add_subdirectory(examples/${name})
  endforeach()
endfunction()
if(BUILD_TESTING)
  vexlo_add_examples(favourites network)
endif()
