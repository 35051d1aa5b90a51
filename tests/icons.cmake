# The icon tests hold the images compiled into the program against the painting code of
# marvento-icongen.
target_link_libraries(marvento_unit PRIVATE marvento_icon_painter)
