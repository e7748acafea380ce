# lectora_library(NAME [ROOMS folder...] [LINK target...]): a static library of every *.cpp in the calling folder and
# those of its folders that are named as its rooms.
# lectora_test(NAME [LINK target...] [DISPLAY] [SERIAL]): a GoogleTest program NAME_tests of every *.cpp in the
# calling folder, its cases labelled NAME in CTest. DISPLAY runs each case in a private virtual desktop.

# lectora_loners(source...): those that stand alone in builds that compile sources in groups, because they are for one
# kind of processor or see the macros of Xlib ("Status").
function(lectora_loners)
    foreach(source IN LISTS ARGN)
        file(STRINGS "${source}" xlib LIMIT_COUNT 1 REGEX "#include <(X11/|gdk/gdkx)")
        if(xlib OR source MATCHES "kernels[^/]*$")
            set_source_files_properties("${source}" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
        endif()
    endforeach()
endfunction()

function(lectora_library name)
    cmake_parse_arguments(ARG "" "" "ROOMS;LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
    foreach(room IN LISTS ARG_ROOMS)
        file(GLOB in_room CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${room}/*.cpp")
        list(APPEND sources ${in_room})
    endforeach()
    add_library(${name} STATIC ${sources})
    lectora_loners(${sources})
    target_link_libraries(${name} PUBLIC lectora_options ${ARG_LINK})
endfunction()

function(lectora_test name)
    cmake_parse_arguments(ARG "DISPLAY;SERIAL" "TIMEOUT" "LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
    add_executable(${name}_tests ${sources} "${PROJECT_SOURCE_DIR}/tests/support/own_root.cpp")
    # Of this source alone: another folder does not compile all tests anew.
    set_source_files_properties("${PROJECT_SOURCE_DIR}/tests/support/own_root.cpp" PROPERTIES
                                COMPILE_DEFINITIONS "LECTORA_TEST_FOLDER=\"${CMAKE_BINARY_DIR}\""
                                SKIP_UNITY_BUILD_INCLUSION ON)
    target_link_libraries(${name}_tests PRIVATE lectora_options ${ARG_LINK}
                          GTest::gmock GTest::gtest GTest::gtest_main)
    # Optimising the tests' own code takes longer than running it; under the sanitizers three times as long.
    target_compile_options(${name}_tests PRIVATE -O0)
    set(properties LABELS "${name}")
    if(ARG_SERIAL)
        list(APPEND properties RUN_SERIAL ON)
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    list(APPEND properties TIMEOUT ${ARG_TIMEOUT})
    if(ARG_DISPLAY)
        # One desktop serves the whole program: starting an X server for every case would cost minutes.
        add_test(NAME ${name} COMMAND "${PROJECT_SOURCE_DIR}/tests/support/virtual-desktop" --
                 $<TARGET_FILE:${name}_tests>)
        set_tests_properties(${name} PROPERTIES ${properties})
    else()
        # Each program makes itself a home and a root (tests/support/own_root.cpp).
        include(GoogleTest)
        gtest_discover_tests(${name}_tests DISCOVERY_MODE PRE_TEST PROPERTIES ${properties}
            ENVIRONMENT_MODIFICATION "LECTORA_ROOT=unset:")
    endif()
endfunction()
