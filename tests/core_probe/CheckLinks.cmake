cmake_minimum_required(VERSION 3.16)
# Fails when the core's link interface (LINKS, a list) lacks Qt6::Core or names a GUI
# library: Qt's Gui, Widgets and their kin, or X11, OpenGL and the like.
if(NOT "Qt6::Core" IN_LIST LINKS)
  message(FATAL_ERROR "marvento_core does not link Qt6::Core: ${LINKS}")
endif()
foreach(lib IN LISTS LINKS)
  if(lib MATCHES "Qt6::(Gui|Widgets|OpenGL|Quick|Qml|PrintSupport|Svg)|X11|xcb|GL|wayland")
    message(FATAL_ERROR "marvento_core links a GUI library: ${lib}")
  endif()
endforeach()
message(STATUS "marvento_core links: ${LINKS}")
