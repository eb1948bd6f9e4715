# Installs what authors of other plugins need: the contract's headers with a CMake package and a pkg-config file, the
# runner of golden tests, and a reference made from the headers' comments.
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
# A signal library as strict as a receiver's, for STRICT builds.
install(DIRECTORY tests/vendor/sigc1/include/sigc++-1.2/sigc++ DESTINATION ${VEXLO_TOOLKIT_DATA}/strict COMPONENT dev)
install(FILES tests/vendor/sigc1/lib/sigc++-1.2/include/sigcconfig.h DESTINATION ${VEXLO_TOOLKIT_DATA}/strict COMPONENT dev)
install(FILES cmake/toolkit/plugin.map src/toolkit/econtract.cpp DESTINATION ${VEXLO_TOOLKIT_DATA} COMPONENT dev)

# Plugins use the signal library of this build.
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

# The reference, in tested release builds where Doxygen is installed.
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
# Keeps the folders, so that relative links work.
install(FILES docs/plugins.md docs/porting.md docs/receiver.md docs/deskhost.md
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvexlo-toolkit-dev/docs COMPONENT dev)
install(FILES docs/pictures/receiver.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvexlo-toolkit-dev/docs/pictures COMPONENT dev)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libvexlo-toolkit-dev
        USE_SOURCE_PERMISSIONS COMPONENT dev)

# Lets the examples use this tree like an installed toolkit, so that it builds and tests them.
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
  # Programs for another computer run in its emulator.
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
