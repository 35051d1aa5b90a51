# Manual pages: one source per program in docs/man holds every language; each language is
# written out by marvento-mangen and gzipped as Debian wants it (no name or time stamp).
# Every page is written, so that a broken source shows in any tree; a page is installed only
# with its program.
set(MARVENTO_MAN_PAGES marvento marvento-nmea-sim marvento-log)
find_program(MARVENTO_GZIP gzip REQUIRED)
set(MARVENTO_MAN_FILES)
foreach(page IN LISTS MARVENTO_MAN_PAGES)
  set(source ${PROJECT_SOURCE_DIR}/docs/man/${page}.man)
  foreach(lang de en)
    # English is the default language of man, German goes below its language code.
    set(subdir man1)
    if(NOT lang STREQUAL "en")
      set(subdir ${lang}/man1)
    endif()
    set(dir ${CMAKE_BINARY_DIR}/man/${subdir})
    add_custom_command(OUTPUT ${dir}/${page}.1.gz
      COMMAND ${CMAKE_COMMAND} -E make_directory ${dir}
      COMMAND marvento-mangen ${source} ${lang} "Marvento ${PROJECT_VERSION}" ${dir}/${page}.1
      COMMAND ${MARVENTO_GZIP} -9nf ${dir}/${page}.1
      DEPENDS ${source} marvento-mangen
      COMMENT "Writing the manual page ${subdir}/${page}.1" VERBATIM)
    list(APPEND MARVENTO_MAN_FILES ${dir}/${page}.1.gz)
    if(TARGET ${page})
      install(FILES ${dir}/${page}.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/${subdir})
    endif()
  endforeach()
endforeach()
add_custom_target(marvento-manpages ALL DEPENDS ${MARVENTO_MAN_FILES})
