# Where an installed Lectora stands: the program with its icons and help below /opt/quillon/lectora, which is where
# it looks for them, and what a desktop looks for (commands, manual pages, menu entry) below /usr.

set(CMAKE_INSTALL_PREFIX "/usr" CACHE PATH "Commands, manual pages and desktop files" FORCE)
set(LECTORA_HOME "/opt/quillon/lectora")
set(package_files "${PROJECT_SOURCE_DIR}/share/package")

# The crash box is looked for beside the program that crashed.
install(TARGETS lectora lectora-crash-box lectora_say lectora_convert RUNTIME DESTINATION "${LECTORA_HOME}/bin")
foreach(program IN ITEMS lectora lectora-say lectora-convert)
    install(CODE "
        set(link \"\$ENV{DESTDIR}/usr/bin/${program}\")
        file(MAKE_DIRECTORY \"\$ENV{DESTDIR}/usr/bin\")
        file(REMOVE \"\${link}\")
        file(CREATE_LINK \"${LECTORA_HOME}/bin/${program}\" \"\${link}\" SYMBOLIC)")
endforeach()

# Icons and help pages, drawn at build time.
install(DIRECTORY "${PROJECT_BINARY_DIR}/root${LECTORA_HOME}/share/" DESTINATION "${LECTORA_HOME}/share")
install(FILES "${PROJECT_SOURCE_DIR}/share/icons/1.svg" DESTINATION share/icons/hicolor/scalable/apps
        RENAME lectora.svg)

install(FILES "${package_files}/lectora.desktop" DESTINATION share/applications)
# The copy that start on login hands out to the users' autostart folders.
install(FILES "${package_files}/lectora.desktop" DESTINATION share/applications/desktop)
install(FILES "${package_files}/example.quillon.lectora.metainfo.xml" DESTINATION share/metainfo)

# Debian keeps manual pages compressed, without the time of compression.
file(GLOB manual_pages "${PROJECT_SOURCE_DIR}/docs/*.1")
foreach(page IN LISTS manual_pages)
    get_filename_component(name "${page}" NAME)
    install(CODE "
        set(folder \"\$ENV{DESTDIR}/usr/share/man/man1\")
        file(MAKE_DIRECTORY \"\${folder}\")
        execute_process(COMMAND gzip -9n -c \"${page}\" OUTPUT_FILE \"\${folder}/${name}.gz\" COMMAND_ERROR_IS_FATAL ANY)")
endforeach()
