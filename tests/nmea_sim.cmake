# The GPS receiver simulator keeps its logic in a library of its own; its tests run in
# marvento_unit and one of them starts the built program on a pseudo-terminal.
if(TARGET nmea_sim_core)
  target_link_libraries(marvento_unit PRIVATE nmea_sim_core)
  target_compile_definitions(marvento_unit PRIVATE
    MARVENTO_NMEA_SIM="$<TARGET_FILE:marvento-nmea-sim>")
  add_dependencies(marvento_unit marvento-nmea-sim)
endif()
