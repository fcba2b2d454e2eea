# Two interface targets: what every translation unit of the module needs so that its results are the same bits
# everywhere, and what developers add to it.

# Reproducible numbers: no contraction of a*b+c, no reassociation. errno and floating-point traps are never
# read, so the compiler may inline sqrt and vectorise; neither changes a result.
add_library(velquad_number_rules INTERFACE)
target_compile_options(velquad_number_rules INTERFACE
    -ffp-contract=off -fno-math-errno -fno-trapping-math)

add_library(velquad_developer_options INTERFACE)
target_link_libraries(velquad_developer_options INTERFACE velquad_number_rules)
target_compile_options(velquad_developer_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wcast-align
    -Wnon-virtual-dtor -Woverloaded-virtual -Wdouble-promotion -Wnull-dereference -Wformat=2 -Wundef)
if(VELQUAD_WARNINGS_AS_ERRORS)
    target_compile_options(velquad_developer_options INTERFACE -Werror)
endif()
if(VELQUAD_SANITIZE)
    target_compile_options(velquad_number_rules INTERFACE
        -fsanitize=${VELQUAD_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    if(VELQUAD_SANITIZE MATCHES "address")
        # Takes half the time to compile. The thread sanitizer's code makes GCC warn at this level.
        target_compile_options(velquad_number_rules INTERFACE -O1)
    endif()
    target_compile_options(velquad_number_rules INTERFACE -g1)
    target_link_options(velquad_number_rules INTERFACE -fsanitize=${VELQUAD_SANITIZE})
endif()
if(VELQUAD_BUILD_FUZZERS)
    # Tells the fuzzers which branches an input takes.
    target_compile_options(velquad_number_rules INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(VELQUAD_COVERAGE)
    target_compile_options(velquad_number_rules INTERFACE --coverage -O0 -g)
    target_link_options(velquad_number_rules INTERFACE --coverage)
endif()
