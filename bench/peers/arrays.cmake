# Images and volumes next to OpenCV, where the variables peer_opencv_... name it, and ITK.
velquad_add_benchmarks(peer_arrays
    array_bench.cpp
)

if(peer_opencv_libraries)
    target_sources(peer_arrays_bench PRIVATE array_opencv_bench.cpp)
    target_include_directories(peer_arrays_bench SYSTEM PRIVATE ${peer_opencv_includes})
    target_link_libraries(peer_arrays_bench PRIVATE ${peer_opencv_libraries})
endif()

# The package file of ITK also asks for everything that its readers of files need.
find_path(VELQUAD_PEER_ITK_INCLUDE itkResampleImageFilter.h PATH_SUFFIXES ITK-5.4 ITK-5.3 ITK-5.2)
mark_as_advanced(VELQUAD_PEER_ITK_INCLUDE)
set(peer_itk_libraries)
if(VELQUAD_PEER_ITK_INCLUDE)
    get_filename_component(peer_itk_version ${VELQUAD_PEER_ITK_INCLUDE} NAME)
    string(REPLACE ITK "" peer_itk_suffix ${peer_itk_version})
    foreach(name ITKSmoothing ITKTransform ITKCommon itkvnl_algo itkvnl itksys)
        find_library(VELQUAD_PEER_${name} NAMES ${name}${peer_itk_suffix} ${name})
        mark_as_advanced(VELQUAD_PEER_${name})
        if(VELQUAD_PEER_${name})
            list(APPEND peer_itk_libraries ${VELQUAD_PEER_${name}})
        endif()
    endforeach()
endif()
# Its headers refuse compilers other than the one that it was packaged with.
if(peer_itk_libraries AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_sources(peer_arrays_bench PRIVATE array_itk_bench.cpp)
    target_include_directories(peer_arrays_bench SYSTEM PRIVATE ${VELQUAD_PEER_ITK_INCLUDE})
    target_link_libraries(peer_arrays_bench PRIVATE ${peer_itk_libraries})
else()
    message(STATUS "Benchmarks against ITK skipped: it is not installed, or not for this compiler")
endif()
