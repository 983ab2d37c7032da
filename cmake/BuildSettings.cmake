# Compiler settings that hold for every target of the tree.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_INCLUDE_CURRENT_DIR ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# One place for programs and one for libraries, so that a program started from the build tree
# finds the others beside it.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align)
if(ZB_WARNINGS_AS_ERRORS)
    add_compile_options(-Werror)
endif()

add_compile_definitions(
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_DEPRECATED_WARNINGS
    QT_DISABLE_DEPRECATED_BEFORE=0x050F00)

add_link_options(-Wl,--as-needed)
# With clang a sanitizer's run-time library is in the program alone, and shared libraries leave its symbols open.
if(NOT ZB_SANITIZE OR NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
    add_link_options(-Wl,--no-undefined)
endif()

if(ZB_SANITIZE)
    add_compile_options(-fsanitize=${ZB_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ZB_SANITIZE})
endif()

if(ZB_COVERAGE)
    add_compile_options(--coverage -O0)
    add_link_options(--coverage)
endif()
