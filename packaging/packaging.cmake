# Installation: the program and its manual share one folder, which the program takes as its
# own; bin/ holds a link to it.

install(TARGETS marvento RUNTIME DESTINATION ${MARVENTO_APP_DIR})
install(CODE "
  file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
  file(CREATE_LINK ../${MARVENTO_APP_DIR}/marvento
       \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/marvento\" SYMBOLIC)
")

set(MARVENTO_PACKAGING_DIR ${CMAKE_CURRENT_LIST_DIR})
install(FILES ${MARVENTO_PACKAGING_DIR}/org.marvento.Marvento.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${MARVENTO_PACKAGING_DIR}/org.marvento.Marvento.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${MARVENTO_PACKAGING_DIR}/org.marvento.Marvento.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)

set(MARVENTO_ICON_PNGS)
foreach(size 16 22 24 32 48 64 128 256)
  set(png ${CMAKE_BINARY_DIR}/icons/${size}x${size}/org.marvento.Marvento.png)
  add_custom_command(OUTPUT ${png}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/icons/${size}x${size}
    COMMAND marvento-icongen ${size} ${png}
    DEPENDS marvento-icongen
    COMMENT "Rendering the ${size} pixel icon" VERBATIM)
  list(APPEND MARVENTO_ICON_PNGS ${png})
  install(FILES ${png} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
add_custom_target(marvento-icons ALL DEPENDS ${MARVENTO_ICON_PNGS})

# The command-line program for contest logs, where this tree has it.
if(TARGET marvento-log)
  install(TARGETS marvento-log RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# A stripped install (the package) drops the compilers' version notes too, as Debian's own
# strip step does; they take room and say nothing at run time.
set(MARVENTO_PROGRAMS ${MARVENTO_APP_DIR}/marvento ${CMAKE_INSTALL_BINDIR}/marvento-nmea-sim)
if(TARGET marvento-log)
  list(APPEND MARVENTO_PROGRAMS ${CMAKE_INSTALL_BINDIR}/marvento-log)
endif()
if(CMAKE_OBJCOPY)
  install(CODE "
    if(CMAKE_INSTALL_DO_STRIP)
      foreach(program ${MARVENTO_PROGRAMS})
        execute_process(COMMAND \"${CMAKE_OBJCOPY}\" --remove-section=.comment
                                \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/\${program}\"
                        COMMAND_ERROR_IS_FATAL ANY)
      endforeach()
    endif()
  ")
endif()

include(${MARVENTO_PACKAGING_DIR}/manpages.cmake)

# Debian wants the changelog gzipped without name or time stamp, so that every build of a
# version gives the same bytes. The licence texts are named in the copyright file; the GPL's
# own text is in /usr/share/common-licenses on every Debian system.
set(MARVENTO_CHANGELOG_GZ ${CMAKE_BINARY_DIR}/packaging/changelog.gz)
add_custom_command(OUTPUT ${MARVENTO_CHANGELOG_GZ}
  COMMAND ${CMAKE_COMMAND} -E copy ${MARVENTO_PACKAGING_DIR}/changelog ${CMAKE_BINARY_DIR}/packaging/changelog
  COMMAND ${MARVENTO_GZIP} -9nf ${CMAKE_BINARY_DIR}/packaging/changelog
  DEPENDS ${MARVENTO_PACKAGING_DIR}/changelog
  COMMENT "Compressing the changelog" VERBATIM)
add_custom_target(marvento-changelog ALL DEPENDS ${MARVENTO_CHANGELOG_GZ})
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${MARVENTO_PACKAGING_DIR}/copyright
              ${MARVENTO_CHANGELOG_GZ}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/marvento)
install(FILES ${MARVENTO_PACKAGING_DIR}/lintian-overrides
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME marvento)

# The Debian package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME marvento)
set(CPACK_PACKAGE_VENDOR "Marvento")
set(CPACK_PACKAGE_CONTACT "Marvento-Entwickler <entwickler@marvento.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Distance and bearing between radio stations by locator or GPS")
# Debian shows the extended description as it stands: lines of at most 80 characters.
set(CPACK_PACKAGE_DESCRIPTION "Marvento works out the great-circle distance and the initial bearing
between two amateur radio stations given by Maidenhead or QRA locators or by
coordinates. The own position can come live from a GPS receiver (NMEA 0183)
or from gpsd. The user interface and the manual are German.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_SECTION hamradio)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The libraries the programs link come from dpkg-shlibdeps. The window also needs a platform
# plug-in, which no library dependency pulls in, and Qt's own texts (context menus, key
# names) come in German from the translations.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, qt6-translations-l10n")
# The manual opens in whatever PDF viewer the desktop has. Spoken announcements need Qt's
# plug-in for speech-dispatcher and a German voice; they are only recommended where the
# program speaks at all.
set(MARVENTO_RECOMMENDS "evince | okular | atril | qpdfview | mupdf | pdf-viewer")
get_directory_property(MARVENTO_SRC_TARGETS DIRECTORY ${PROJECT_SOURCE_DIR}/src BUILDSYSTEM_TARGETS)
foreach(target IN LISTS MARVENTO_SRC_TARGETS)
  get_target_property(links ${target} LINK_LIBRARIES)
  if(links MATCHES "TextToSpeech")
    set(MARVENTO_SPEAKS ON)
  endif()
endforeach()
if(MARVENTO_SPEAKS)
  string(APPEND MARVENTO_RECOMMENDS
         ", qt6-speech-speechd-plugin, speech-dispatcher, speech-dispatcher-espeak-ng")
endif()
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "${MARVENTO_RECOMMENDS}")
# gpsd may run on another machine, and rotctld comes with hamlib's tools.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gpsd, libhamlib-utils")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://marvento.org/")
include(CPack)
