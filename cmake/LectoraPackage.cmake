# The Debian package (script/package). Its dependencies make a first start complete: engine, an English voice, LAME.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lectora)
set(CPACK_PACKAGE_VENDOR "Quillon")
set(CPACK_PACKAGE_CONTACT "Lectora maintainers <maintainers@quillon.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "reads text aloud from any application")
set(CPACK_PACKAGE_DESCRIPTION
"Paste, type, load or merely select a text, press a key, and hear it read
aloud, or get it as a WAV or MP3 file.

Lectora lives in the notification area and reads a text of any length from
its first sentence on. Two command-line programs, lectora-say and
lectora-convert, share its libraries and need no display.")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_SET_DESTDIR ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# libcurl is loaded late, where the tool that finds libraries does not see it (its names on Debian 13 and 12).
# Nothing else brings the bridge from GTK 2 to screen readers, without which these find an empty window.
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "festival | espeak-ng, festvox-kallpc16k | festival-voice | espeak-ng, lame, libcurl3t64-gnutls | libcurl3-gnutls, libatk-adaptor, libgail-common")
# Without a theme GTK 2 looks bare; without the fonts a minimal machine shows boxes.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "espeak-ng, gnome-themes-extra, fonts-dejavu-core, libnotify4, xdg-utils, poppler-utils, unrtf, djvulibre-bin, cmark-gfm, tesseract-ocr, tesseract-ocr-eng")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "festival-voice, ffmpeg, xterm")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://quillon.example/")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/share/package/preinst"
    "${PROJECT_SOURCE_DIR}/share/package/postinst"
    "${PROJECT_SOURCE_DIR}/share/package/postrm")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/LectoraPackageFolders.cmake")

install(FILES "${PROJECT_SOURCE_DIR}/share/package/copyright" DESTINATION share/doc/lectora)
install(FILES "${PROJECT_SOURCE_DIR}/share/package/lintian-overrides" DESTINATION share/lintian/overrides
        RENAME lectora)
install(FILES "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION share/doc/lectora)
configure_file("${PROJECT_SOURCE_DIR}/share/package/changelog.in" "${PROJECT_BINARY_DIR}/generated/changelog" @ONLY)
install(CODE "
    execute_process(COMMAND gzip -9n -c \"${PROJECT_BINARY_DIR}/generated/changelog\"
                    OUTPUT_FILE \"\$ENV{DESTDIR}/usr/share/doc/lectora/changelog.gz\" COMMAND_ERROR_IS_FATAL ANY)")
include(CPack)
