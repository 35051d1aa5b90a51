# The German manual: docs/Marvento.html rendered to Marvento.pdf by the project's own tool,
# placed beside the program, where the help command looks for it.
set(MARVENTO_MANUAL_SOURCE ${CMAKE_CURRENT_SOURCE_DIR}/Marvento.html)
set(MARVENTO_MANUAL_PDF ${CMAKE_CURRENT_BINARY_DIR}/Marvento.pdf)

add_custom_command(
  OUTPUT ${MARVENTO_MANUAL_PDF}
  COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen
          $<TARGET_FILE:pdfgen> ${MARVENTO_MANUAL_SOURCE} ${MARVENTO_MANUAL_PDF}
  COMMAND ${CMAKE_COMMAND} -E copy ${MARVENTO_MANUAL_PDF} $<TARGET_FILE_DIR:marvento>/Marvento.pdf
  DEPENDS ${MARVENTO_MANUAL_SOURCE} ${CMAKE_CURRENT_SOURCE_DIR}/karte.png pdfgen
  COMMENT "Rendering the manual Marvento.pdf"
  VERBATIM)
add_custom_target(marvento_manual ALL DEPENDS ${MARVENTO_MANUAL_PDF})
add_dependencies(marvento_manual marvento)

install(FILES ${MARVENTO_MANUAL_PDF} DESTINATION ${MARVENTO_APP_DIR})
