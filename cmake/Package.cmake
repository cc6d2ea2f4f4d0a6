# What `cmake --install` lays down, and the Debian package that script/package makes of it. Programs
# and Geo/ stay side by side, since the programs look for it there; /usr/bin holds links to them. The
# settings lie in /etc, where an administrator looks for them and an upgrade keeps them.

set(program_folder lib/lodexgeo)
install(TARGETS lodexgeo lodex lodex-jet DESTINATION ${program_folder})
install(DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/Geo DESTINATION ${program_folder}
  PATTERN ".*" EXCLUDE
  PATTERN "*.ake" EXCLUDE
  PATTERN "*.lodex.sqlite*" EXCLUDE
  PATTERN "LODEXGeo.ini" EXCLUDE)

set(staging ${CMAKE_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${staging})
file(CREATE_LINK /etc/lodexgeo/LODEXGeo.ini ${staging}/LODEXGeo.ini SYMBOLIC)
install(FILES ${CMAKE_SOURCE_DIR}/data/ini/LODEXGeo.ini DESTINATION /etc/lodexgeo)
install(FILES ${staging}/LODEXGeo.ini DESTINATION ${program_folder}/Geo/ini)
foreach(program lodexgeo lodex)
  file(CREATE_LINK ../${program_folder}/${program} ${staging}/${program} SYMBOLIC)
  install(FILES ${staging}/${program} DESTINATION bin)
endforeach()

install(FILES packaging/lodexgeo.desktop DESTINATION share/applications)
install(FILES packaging/org.lodexgeo.LodexGeo.metainfo.xml DESTINATION share/metainfo)
install(FILES packaging/copyright DESTINATION share/doc/lodexgeo)

# Needed for packaging only: pictures of the icon and compressed texts.
set(icon ${CMAKE_SOURCE_DIR}/src/gui/icons/lodexgeo.svg)
install(FILES ${icon} DESTINATION share/icons/hicolor/scalable/apps)
set(made)
foreach(size 16 24 32 48 64 128 256)
  set(picture ${staging}/icons/${size}x${size}/apps/lodexgeo.png)
  cmake_path(GET picture PARENT_PATH folder)
  add_custom_command(OUTPUT ${picture}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
    COMMAND rsvg-convert --width ${size} --height ${size} --output ${picture} ${icon}
    DEPENDS ${icon} VERBATIM)
  list(APPEND made ${picture})
endforeach()
install(DIRECTORY ${staging}/icons/ DESTINATION share/icons/hicolor OPTIONAL)

function(compressed_text source name destination)
  set(target ${staging}/${name}.gz)
  add_custom_command(OUTPUT ${target}
    COMMAND sh -c "gzip -9nc '${CMAKE_SOURCE_DIR}/${source}' > '${target}'"
    DEPENDS ${CMAKE_SOURCE_DIR}/${source} VERBATIM)
  install(FILES ${target} DESTINATION ${destination} OPTIONAL)
  set(made ${made} ${target} PARENT_SCOPE)
endfunction()
compressed_text(packaging/lodexgeo.1 lodexgeo.1 share/man/man1)
compressed_text(packaging/lodex.1 lodex.1 share/man/man1)
compressed_text(packaging/changelog changelog share/doc/lodexgeo)
add_custom_target(package-extras DEPENDS ${made})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lodexgeo)
set(CPACK_PACKAGE_VENDOR "The developers of Lodex Geo")
set(CPACK_PACKAGE_CONTACT "The developers of Lodex Geo <lodexgeo@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "workbench that turns chemical assays into mineralogy")
set(CPACK_PACKAGE_DESCRIPTION_FILE ${CMAKE_SOURCE_DIR}/packaging/description.txt)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Icons are SVG, read by a plug-in that no program links to.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libqt6svg6)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n, qt6-wayland, fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "odbc-postgresql, tdsodbc")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_SOURCE_DIR}/packaging/conffiles)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
