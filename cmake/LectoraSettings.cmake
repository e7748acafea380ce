# Compiler settings and third-party packages, in one place for every target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(GLIB REQUIRED IMPORTED_TARGET glib-2.0 gthread-2.0)
pkg_check_modules(GIO REQUIRED IMPORTED_TARGET gio-2.0)
pkg_check_modules(XML REQUIRED IMPORTED_TARGET libxml-2.0)
find_library(CLD2_LIBRARY cld2 REQUIRED)  # brings no description for pkg-config
pkg_check_modules(ICU REQUIRED IMPORTED_TARGET icu-uc icu-i18n)
pkg_check_modules(ARCHIVE REQUIRED IMPORTED_TARGET libarchive)
pkg_check_modules(UCHARDET REQUIRED IMPORTED_TARGET uchardet)
pkg_check_modules(CURL REQUIRED libcurl)
pkg_check_modules(GMIME REQUIRED IMPORTED_TARGET gmime-3.0)
pkg_check_modules(GTK2 REQUIRED IMPORTED_TARGET gtk+-2.0 x11)
pkg_check_modules(SOUNDTOUCH REQUIRED IMPORTED_TARGET soundtouch)
pkg_check_modules(SOXR REQUIRED IMPORTED_TARGET soxr)
pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile)
pkg_check_modules(OPUSENC REQUIRED IMPORTED_TARGET libopusenc)
pkg_check_modules(OGG REQUIRED IMPORTED_TARGET ogg opus)
pkg_check_modules(TAGLIB REQUIRED IMPORTED_TARGET taglib)
pkg_check_modules(EBUR128 REQUIRED IMPORTED_TARGET libebur128)
pkg_check_modules(ALSA REQUIRED IMPORTED_TARGET alsa)

add_library(lectora_options INTERFACE)
target_compile_options(lectora_options INTERFACE
    -fno-exceptions -fno-strict-aliasing
    -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual)
if(CMAKE_UNITY_BUILD)
    # Sources that are compiled together: what stands in an unnamed namespace is no header's, and a local name may
    # hide another source's. The preset "dev", which compiles each alone, watches over both.
    target_compile_options(lectora_options INTERFACE -Wno-subobject-linkage -Wno-shadow)
endif()
if(LECTORA_WERROR)
    target_compile_options(lectora_options INTERFACE -Werror)
endif()
target_include_directories(lectora_options INTERFACE
    "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/generated")
target_link_libraries(lectora_options INTERFACE Threads::Threads)
if(LECTORA_SANITIZE)
    add_compile_options(-fsanitize=${LECTORA_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${LECTORA_SANITIZE})
    if(LECTORA_SANITIZE MATCHES "undefined")
        add_compile_options(-fno-sanitize-recover=undefined)
    endif()
endif()
