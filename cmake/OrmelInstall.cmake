# Where the programs and their data go.  All that Ormel looks for beside itself stands in lib/ormel, data as links to
# share/ormel; bin holds links, so that a copy of the whole tree runs from any folder.
set(ORMEL_LIB "lib/ormel")
set(ORMEL_DATA "share/ormel")

install(TARGETS ormel ormelcmd VADOX1.EXE CONTOUR.EXE RUNTIME DESTINATION "${ORMEL_LIB}")
install(FILES "${CMAKE_SOURCE_DIR}/CHANGELOG.md" DESTINATION "${ORMEL_DATA}" RENAME RELEASE.TXT)
install(FILES "${CMAKE_SOURCE_DIR}/examples/example.orm" "${CMAKE_SOURCE_DIR}/examples/basin and range.orm"
  DESTINATION "${ORMEL_DATA}/examples")
install(DIRECTORY "${CMAKE_SOURCE_DIR}/docs/guide" "${CMAKE_SOURCE_DIR}/docs/pictures" DESTINATION "${ORMEL_DATA}"
  PATTERN "*.sh" EXCLUDE PATTERN "*.py" EXCLUDE)
install(FILES "${CMAKE_SOURCE_DIR}/apps/ormel/icons/ormel.svg"
  DESTINATION "share/icons/hicolor/scalable/apps")
install(FILES "${CMAKE_SOURCE_DIR}/packaging/ormel.desktop" DESTINATION "share/applications")
install(FILES "${CMAKE_SOURCE_DIR}/packaging/ormel-mime.xml" DESTINATION "share/mime/packages" RENAME ormel.xml)
install(FILES "${CMAKE_SOURCE_DIR}/packaging/ormel.metainfo.xml" DESTINATION "share/metainfo")

function(ormel_install_link target link)
  install(CODE "
    set(link \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${link}\")
    get_filename_component(folder \"\${link}\" DIRECTORY)
    file(MAKE_DIRECTORY \"\${folder}\")
    file(CREATE_LINK \"${target}\" \"\${link}\" SYMBOLIC)")
endfunction()
ormel_install_link("../lib/ormel/ormel" "bin/ormel")
ormel_install_link("../lib/ormel/ormelcmd" "bin/ormelcmd")
foreach(name IN ITEMS "RELEASE.TXT" "guide" "pictures" "examples/example.orm" "examples/basin and range.orm")
  get_filename_component(beside "${name}" NAME)
  ormel_install_link("../../${ORMEL_DATA}/${name}" "${ORMEL_LIB}/${beside}")
endforeach()
