# zb_add_test(NAME [VIRTUAL_DEVICE | VIRTUAL_BUS] [WITHOUT_DAEMON] [PRINTING] [PRINT_QUEUE] SOURCES ... [LIBRARIES ...] [TIMEOUT seconds])
#
# A QtTest program that ctest runs. With VIRTUAL_DEVICE it runs inside a whole virtual device of its own, gone when the
# test ends, and is skipped where the machine allows none; with VIRTUAL_BUS only system bus, utility daemon and home
# folder are its own, which every machine allows and is quicker. WITHOUT_DAEMON leaves the daemon to the test.
# With PRINTING either has a print scheduler with the queue BrackenXL, and with PRINT_QUEUE the print queue daemon; the
# other tests do not pay for them.
# The locale and the time zone are fixed, since both are read once per process and change texts and time stamps.
find_package(Qt5 5.15 REQUIRED COMPONENTS Test)

set(ZB_TEST_ENVIRONMENT LC_ALL=C.UTF-8 TZ=UTC QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
    UBSAN_OPTIONS=print_stacktrace=1)

# The target whose precompiled <QtTest/QtTest> the tests of a folder use: zbtestheaders, or zbguitestheaders where they
# link Qt Quick. A test that links other parts of Qt, on which the header depends, compiles it again by itself.
set(ZB_TEST_HEADERS zbtestheaders)

# Compiles a test program quickly rather than for speed.
function(zb_compile_quickly name)
    target_compile_options(${name} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O0 -g1>)
    target_precompile_headers(${name} REUSE_FROM ${ZB_TEST_HEADERS})
    set_target_properties(${name} PROPERTIES PCH_WARN_INVALID OFF)
endfunction()

# Runs moc for those of SOURCES that include its output, which takes a twentieth of what CMake's own search for them takes
# and an object file less. A target with headers keeps the search.
function(zb_moc_quickly name)
    if("${ARGN}" MATCHES "\\.h(;|$)")
        return()
    endif()
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${name}_moc)
    foreach(source ${ARGN})
        get_filename_component(base ${source} NAME_WE)
        file(STRINGS ${source} include REGEX "#include \"${base}\\.moc\"")
        if(include)
            set(output ${CMAKE_CURRENT_BINARY_DIR}/${name}_moc/${base}.moc)
            qt5_generate_moc(${source} ${output} TARGET ${name})
            set_property(SOURCE ${source} APPEND PROPERTY OBJECT_DEPENDS ${output})
        endif()
    endforeach()
endfunction()

function(zb_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "VIRTUAL_DEVICE;VIRTUAL_BUS;WITHOUT_DAEMON;PRINTING;PRINT_QUEUE" "TIMEOUT"
        "SOURCES;LIBRARIES")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE Qt5::Test ${arg_LIBRARIES})
    zb_compile_quickly(${name})
    zb_moc_quickly(${name} ${arg_SOURCES})
    set(launcher)
    if(arg_VIRTUAL_DEVICE OR arg_VIRTUAL_BUS)
        set(launcher $<TARGET_FILE:zbvirtualdevice>)
        if(arg_VIRTUAL_BUS)
            list(APPEND launcher --bus-only)
        endif()
        if(arg_WITHOUT_DAEMON)
            list(APPEND launcher --without-daemon)
        endif()
        if(arg_PRINTING)
            list(APPEND launcher --with-printing)
        else()
            list(APPEND launcher --without-printing)
        endif()
        if(arg_PRINT_QUEUE)
            list(APPEND launcher --with-printqd)
        else()
            list(APPEND launcher --without-printqd)
        endif()
        list(APPEND launcher --)
        add_dependencies(${name} zbvirtualdevice zbutilityd)
        if(arg_PRINT_QUEUE)
            add_dependencies(${name} printqd printqnotifier)
        endif()
    endif()
    add_test(NAME ${name} COMMAND ${launcher} $<TARGET_FILE:${name}>)
    if(arg_VIRTUAL_DEVICE)
        # By the launcher's sentence and not by its exit status: QtTest ends with the number of failures, 77 as well.
        set_tests_properties(${name} PROPERTIES
            SKIP_REGULAR_EXPRESSION "^zbvirtualdevice: this machine does not allow ")
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "${ZB_TEST_ENVIRONMENT}")
endfunction()
