# What the examples share: strict options, and a small library for pictures, files and the command line.
option(EXAMPLE_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
set(EXAMPLE_SANITIZE "" CACHE STRING "Sanitizers, for example address,undefined")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

add_library(example_options INTERFACE)
target_compile_features(example_options INTERFACE cxx_std_17)
target_compile_options(example_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wcast-align
    -Wnon-virtual-dtor -Woverloaded-virtual -Wdouble-promotion -Wformat=2 -Wundef
    $<$<CXX_COMPILER_ID:GNU>:-Wclobbered>)
if(EXAMPLE_WARNINGS_AS_ERRORS)
    target_compile_options(example_options INTERFACE -Werror)
endif()
if(EXAMPLE_SANITIZE)
    target_compile_options(example_options INTERFACE
        -fsanitize=${EXAMPLE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
    target_link_options(example_options INTERFACE -fsanitize=${EXAMPLE_SANITIZE})
endif()

add_library(example_common STATIC EXCLUDE_FROM_ALL
    ${CMAKE_CURRENT_LIST_DIR}/image_io.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ink.cpp
    ${CMAKE_CURRENT_LIST_DIR}/program.cpp
    ${CMAKE_CURRENT_LIST_DIR}/text.cpp)
set_target_properties(example_common PROPERTIES CXX_EXTENSIONS OFF)
target_include_directories(example_common PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(example_common PUBLIC VELQUAD::VELQUAD example_options PRIVATE PNG::PNG)
