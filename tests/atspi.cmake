# The program as a screen reader meets it: through the real AT-SPI bus, in a private X server
# and D-Bus session (tests/access/atspi_session.sh), walked with pyatspi.
add_test(NAME atspi_walk
  COMMAND sh ${CMAKE_CURRENT_SOURCE_DIR}/access/atspi_session.sh $<TARGET_FILE:marvento>
          ${CMAKE_CURRENT_SOURCE_DIR}/access/atspi_check.py)
set_tests_properties(atspi_walk PROPERTIES LABELS widget TIMEOUT 120 SKIP_RETURN_CODE 77
  RUN_SERIAL TRUE)

# Orca itself reads the window, the result and the status bar (skipped without Orca).
add_test(NAME orca_reads
  COMMAND sh ${CMAKE_CURRENT_SOURCE_DIR}/access/orca_session.sh $<TARGET_FILE:marvento>)
set_tests_properties(orca_reads PROPERTIES LABELS widget TIMEOUT 120 SKIP_RETURN_CODE 77
  RUN_SERIAL TRUE)
