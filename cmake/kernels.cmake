# Hot loops that exist once per instruction set. The sources are plain C++ and the same for every level; a
# level only tells the compiler which instructions it may choose from. With the number rules of the module all
# levels give the same bits.

if(WIN32)
    # 64-bit Windows keeps the stack aligned to 16 bytes only, which GCC's 32-byte spills do not survive.
    set(VELQUAD_KERNEL_LEVELS baseline v2)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|amd64")
    set(VELQUAD_KERNEL_LEVELS baseline v3 v4)
else()
    set(VELQUAD_KERNEL_LEVELS baseline)
endif()
set(velquadKernelOptions_baseline "")
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|amd64")
    set(velquadKernelOptions_baseline "-march=x86-64;-mtune=generic")
endif()
set(velquadKernelOptions_v2 "-march=x86-64-v2;-mtune=generic")
set(velquadKernelOptions_v3 "-march=x86-64-v3;-mtune=generic")
set(velquadKernelOptions_v4 "-march=x86-64-v4;-mtune=generic;-mprefer-vector-width=512")

# velquad_add_kernels(<source>...): compiles each source of the current room once per level, as part of
# velquad_objects, with VELQUAD_KERNEL_LEVEL set to the level's name. See frame/kernels.h for what goes in.
function(velquad_add_kernels)
    foreach(source IN LISTS ARGN)
        cmake_path(GET source STEM stem)
        foreach(level IN LISTS VELQUAD_KERNEL_LEVELS)
            set(unit ${CMAKE_CURRENT_BINARY_DIR}/kernels/${stem}_${level}.cpp)
            file(CONFIGURE OUTPUT ${unit} CONTENT
                "#define VELQUAD_KERNEL_LEVEL ${level}\n#include \"${CMAKE_CURRENT_SOURCE_DIR}/${source}\"  // NOLINT(bugprone-suspicious-include)\n")
            target_sources(velquad_objects PRIVATE ${unit})
            set_source_files_properties(${unit} TARGET_DIRECTORY velquad_objects PROPERTIES
                OBJECT_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${source}
                COMPILE_OPTIONS "${velquadKernelOptions_${level}};$<$<NOT:$<CONFIG:Debug>>:-O3>")
        endforeach()
    endforeach()
endfunction()
