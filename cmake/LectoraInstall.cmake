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

# Machine-wide settings: the administrator's.
install(DIRECTORY DESTINATION "${LECTORA_HOME}/etc" DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
        GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# The MP3 component, which its installer otherwise fetches for one user: the program that stands in that script.
set(mp3_installer "${PROJECT_SOURCE_DIR}/share/components/mp3el")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${mp3_installer}")
file(READ "${mp3_installer}" script)
string(REGEX REPLACE ".*<<'PROGRAM'[^\n]*\n(.*\n)PROGRAM\n.*" "\\1" script "${script}")
file(WRITE "${PROJECT_BINARY_DIR}/generated/mp3el" "${script}")
# The programs of a build find it there.
file(COPY "${PROJECT_BINARY_DIR}/generated/mp3el" DESTINATION "${PROJECT_BINARY_DIR}/root/opt/quillon/components/mp3el"
     FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
install(PROGRAMS "${PROJECT_BINARY_DIR}/generated/mp3el" DESTINATION /opt/quillon/components/mp3el)

# Icons and help pages, drawn at build time.
install(DIRECTORY "${PROJECT_BINARY_DIR}/root${LECTORA_HOME}/share/" DESTINATION "${LECTORA_HOME}/share")
install(FILES "${PROJECT_SOURCE_DIR}/share/icons/1.svg" DESTINATION share/icons/hicolor/scalable/apps
        RENAME lectora.svg)

install(FILES "${package_files}/lectora.desktop" DESTINATION share/applications)
# What start on login hands out to the users' autostart folders; no entry of the menu.
install(FILES "${package_files}/start-on-login.desktop" DESTINATION share/applications/desktop RENAME lectora.desktop)
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
