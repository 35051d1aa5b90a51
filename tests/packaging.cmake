# Builds the Debian package from the built tree and checks it with lintian and unpacked. A
# package is made from a plain build, so the sanitizer builds leave the check out.
if(NOT MARVENTO_SANITIZE AND NOT MARVENTO_FUZZ)
  add_test(NAME DebianPackage
    COMMAND sh ${CMAKE_CURRENT_SOURCE_DIR}/packaging/package_check.sh ${PROJECT_BINARY_DIR})
  set_tests_properties(DebianPackage PROPERTIES LABELS install TIMEOUT 300 RUN_SERIAL TRUE)
endif()
# The manual page generator's own cases run with the other unit tests.
target_link_libraries(marvento_unit PRIVATE mangen_core)
