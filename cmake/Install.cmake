# Installs the files on a Debian system, and archives the plugin alone. Packages.cmake makes the packages.
include(GNUInstallDirs)

# Makes a command's manual page from its --help and the sections in docs/COMMAND.h2m, in tested release builds where
# help2man is installed.
find_program(VEXLO_HELP2MAN help2man)
function(vexlo_manual_page command component program summary)
  if(NOT (VEXLO_HELP2MAN AND BUILD_TESTING AND NOT CMAKE_CROSSCOMPILING AND CMAKE_BUILD_TYPE STREQUAL "Release"))
    return()
  endif()
  set(page ${CMAKE_BINARY_DIR}/docs/${command}.1)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/docs)
  set(sections ${PROJECT_SOURCE_DIR}/docs/${command}.h2m)
  execute_process(COMMAND date -u -d ${VEXLO_RELEASE_DATE} +%s
                  OUTPUT_VARIABLE seconds OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  add_custom_command(
    OUTPUT ${page}.gz
    COMMAND ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=${seconds} ${VEXLO_HELP2MAN} --no-info --name ${summary}
            --version-string ${PROJECT_VERSION} --opt-include ${sections} --output ${page} ${program}
    COMMAND gzip -9nf ${page}
    DEPENDS ${program}
    COMMENT "Manual page of ${command}"
    VERBATIM)
  add_custom_target(vexlo_manual_page_${command} ALL DEPENDS ${page}.gz)
  install(FILES ${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
endfunction()

set(VEXLO_PLUGIN_DIR ${CMAKE_INSTALL_LIBDIR}/vexlomenu)
install(TARGETS vexlomenu LIBRARY DESTINATION ${VEXLO_PLUGIN_DIR} COMPONENT plugin)
install(DIRECTORY ${CMAKE_BINARY_DIR}/po/ DESTINATION ${CMAKE_INSTALL_DATADIR}/locale
        COMPONENT plugin FILES_MATCHING PATTERN *.mo PATTERN CMakeFiles EXCLUDE)

install(FILES docs/porting.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vexlomenu COMPONENT plugin)

if(VEXLO_DESK)
  # deskhost finds these files relative to its own path (desk/viewer).
  file(RELATIVE_PATH VEXLO_PLUGIN_FROM_BIN
       ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR}/vexlomenu/vexlomenu.so.0)
  set(VEXLO_HALF_DIR ${CMAKE_INSTALL_FULL_LIBEXECDIR}/deskhost)
  file(RELATIVE_PATH VEXLO_HALF_FROM_BIN ${CMAKE_INSTALL_FULL_BINDIR} ${VEXLO_HALF_DIR}/deskhost-plugin)
  file(RELATIVE_PATH VEXLO_LOCALE_FROM_HALF ${VEXLO_HALF_DIR} ${CMAKE_INSTALL_FULL_LOCALEDIR})
  target_compile_definitions(desk_session PUBLIC
    DESK_INSTALLED_PLUGIN="${VEXLO_PLUGIN_FROM_BIN}" DESK_INSTALLED_HALF="${VEXLO_HALF_FROM_BIN}")
  foreach(half IN ITEMS desk_half desk_session)
    target_compile_definitions(${half} PRIVATE DESK_INSTALLED_CATALOGUES="${VEXLO_LOCALE_FROM_HALF}")
  endforeach()
  install(TARGETS deskhost RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT desk)
  install(TARGETS deskhost-plugin RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/deskhost COMPONENT desk)
  install(DIRECTORY desk/skins samples DESTINATION ${CMAKE_INSTALL_DATADIR}/deskhost
          USE_SOURCE_PERMISSIONS COMPONENT desk PATTERN .gitattributes EXCLUDE)
  if(VEXLO_WINDOW)
    install(FILES desk/desktop/deskhost.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT desk)
    install(FILES desk/desktop/deskhost.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT desk)
  endif()
  install(FILES desk/desktop/completion DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME deskhost
          COMPONENT desk)
  vexlo_manual_page(deskhost desk $<TARGET_FILE:deskhost> "run a television receiver's service menu on a desk computer")
  install(FILES docs/deskhost.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/deskhost COMPONENT desk)
endif()

# The plugin alone for a receiver: stripped, with its catalogues. CMAKE_SYSTEM_PROCESSOR may be empty, as a tool chain
# file need not set it.
set(archive_name vexlomenu ${PROJECT_VERSION} ${CMAKE_SYSTEM_PROCESSOR})
list(JOIN archive_name "-" archive_name)
set(archive ${CMAKE_BINARY_DIR}/${archive_name}.tar.gz)
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
