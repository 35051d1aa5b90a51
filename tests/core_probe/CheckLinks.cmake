# Fails unless the core's link interface (LINKS, a list) is exactly Qt6::Core.
if(NOT "${LINKS}" STREQUAL "Qt6::Core")
  message(FATAL_ERROR "marvento_core links more than Qt6::Core: ${LINKS}")
endif()
message(STATUS "marvento_core links: ${LINKS}")
