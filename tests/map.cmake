# The map's window test checks the readout against GeographicLib, the reference in tests only.
find_library(MARVENTO_GEOGRAPHICLIB GeographicLib REQUIRED)
target_link_libraries(tst_Karte PRIVATE ${MARVENTO_GEOGRAPHICLIB})
