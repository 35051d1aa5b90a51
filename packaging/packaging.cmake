# Installation: the program and its manual share one folder, which the program takes as its
# own; bin/ holds a link to it.

install(TARGETS marvento marvento-log RUNTIME DESTINATION ${MARVENTO_APP_DIR})
install(CODE "
  file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
  file(CREATE_LINK ../${MARVENTO_APP_DIR}/marvento
       \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/marvento\" SYMBOLIC)
  file(CREATE_LINK ../${MARVENTO_APP_DIR}/marvento-log
       \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/marvento-log\" SYMBOLIC)
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

install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/LICENSE
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/marvento)

# The Debian package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME marvento)
set(CPACK_PACKAGE_VENDOR "Marvento")
set(CPACK_PACKAGE_CONTACT "Marvento <marvento@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Distance and bearing between radio stations by locator or GPS")
set(CPACK_PACKAGE_DESCRIPTION "Marvento works out the great-circle distance and the initial
bearing between two amateur radio stations given by Maidenhead or QRA locators or
coordinates. The own position can come live from a GPS receiver (NMEA 0183).")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_SECTION hamradio)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The window needs a platform plug-in, which no library dependency pulls in; Qt's own texts
# (context menus, key names) come in German from the translations. libgps reads gpsd's
# replies; gpsd itself may run on another machine, so it is only suggested.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, qt6-translations-l10n, libgps28")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gpsd")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "evince | okular | atril | mupdf | xdg-utils")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://localhost/marvento")
include(CPack)
