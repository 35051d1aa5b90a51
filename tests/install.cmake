# Installs the build into a temporary DESTDIR, checks the layout, validates the desktop
# files, and starts the installed program to see that it opens the manual beside itself.
add_test(NAME InstallLayout
  COMMAND sh ${CMAKE_CURRENT_SOURCE_DIR}/install_check.sh ${PROJECT_BINARY_DIR})
set_tests_properties(InstallLayout PROPERTIES LABELS install TIMEOUT 180 RUN_SERIAL TRUE)
