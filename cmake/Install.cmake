# What goes where on a Debian system, the package of all of it, and the archive of the plugin alone.
include(GNUInstallDirs)

set(VEXLO_PLUGIN_DIR ${CMAKE_INSTALL_LIBDIR}/vexlomenu)
install(TARGETS vexlomenu LIBRARY DESTINATION ${VEXLO_PLUGIN_DIR} COMPONENT plugin)
install(DIRECTORY ${CMAKE_BINARY_DIR}/po/ DESTINATION ${CMAKE_INSTALL_DATADIR}/locale
        COMPONENT plugin FILES_MATCHING PATTERN *.mo PATTERN CMakeFiles EXCLUDE)

if(VEXLO_DESK)
  # deskhost looks for these by their places relative to its own: see desk/app.cpp.
  file(RELATIVE_PATH VEXLO_PLUGIN_FROM_BIN
       ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR}/vexlomenu/vexlomenu.so.0)
  target_compile_definitions(desk_app PRIVATE DESK_INSTALLED_PLUGIN="${VEXLO_PLUGIN_FROM_BIN}")
  install(TARGETS deskhost RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT desk)
  install(DIRECTORY desk/skins samples DESTINATION ${CMAKE_INSTALL_DATADIR}/deskhost
          USE_SOURCE_PERMISSIONS COMPONENT desk PATTERN .gitattributes EXCLUDE)
  configure_file(docs/deskhost.1 ${CMAKE_BINARY_DIR}/docs/deskhost.1 @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/docs/deskhost.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT desk)
  install(FILES README.md CHANGELOG.md docs/deskhost.md docs/porting.md docs/architecture.md
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/deskhost COMPONENT desk)
  install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/deskhost RENAME copyright COMPONENT desk)
endif()

# cpack -G DEB: everything, for a desk.
set(CPACK_PACKAGE_NAME deskhost)
set(CPACK_PACKAGE_VENDOR "Vexlo service menu team")
set(CPACK_PACKAGE_CONTACT "Vexlo service menu team <team@vexlomenu.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "runs a television receiver's service menu on a desk computer")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-dejavu-core, procps")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "The desk host loads the service plugin vexlomenu.so.0, draws its screens in a window, in a
 terminal or into pictures, and takes the keyboard as the remote control.")
include(CPack)

# For a receiver: the plugin alone, stripped, with its catalogues.
set(archive ${CMAKE_BINARY_DIR}/vexlomenu-${PROJECT_VERSION}-${CMAKE_SYSTEM_PROCESSOR}.tar.gz)
set(archive_folder ${CMAKE_BINARY_DIR}/receiver-archive)
set(copy_catalogues)
file(STRINGS po/LINGUAS languages)
foreach(language IN LISTS languages)
  list(APPEND copy_catalogues
    COMMAND ${CMAKE_COMMAND} -E make_directory ${archive_folder}/locale/${language}/LC_MESSAGES
    COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_BINARY_DIR}/po/${language}/LC_MESSAGES/vexlomenu.mo
            ${archive_folder}/locale/${language}/LC_MESSAGES)
endforeach()
add_custom_target(receiver-archive
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${archive_folder}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${archive_folder}
  COMMAND ${CMAKE_STRIP} -o ${archive_folder}/vexlomenu.so.0 $<TARGET_FILE:vexlomenu>
  COMMAND ${CMAKE_COMMAND} -E copy ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/docs/porting.md ${archive_folder}
  ${copy_catalogues}
  COMMAND ${CMAKE_COMMAND} -E chdir ${archive_folder}
          ${CMAKE_COMMAND} -E tar czf ${archive} vexlomenu.so.0 locale LICENSE porting.md
  COMMAND ${CMAKE_COMMAND} -E echo "${archive}"
  DEPENDS vexlomenu vexlo_catalogues
  VERBATIM)
