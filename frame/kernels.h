// Choice between the versions of a kernel that CMake compiles for several instruction sets.
//
// A kernel family consists of
//
//   blur_kernels.h     a struct of function pointers, and the declaration of the accessor
//                          struct BlurKernels { void (*addRows)(...); };
//                          const BlurKernels& blurKernels();
//   blur_kernels.cpp   the loops, in CMake given to velquad_add_kernels
//                          namespace velquad::array::VELQUAD_KERNEL_LEVEL {
//                          namespace { void addRows(...) {...} }
//                          extern const BlurKernels kBlurKernels;
//                          const BlurKernels kBlurKernels = {addRows};
//                          }
//   blur.cpp           once per family
//                          namespace velquad::array {
//                          VELQUAD_DEFINE_KERNELS(BlurKernels, kBlurKernels, blurKernels)
//                          }
//
// What a kernel file calls must be in an anonymous namespace, or VELQUAD_ALWAYS_INLINE, or an ordinary function
// of another file. Inline functions and templates of shared headers, the standard library's included, are not
// allowed there; the test `kernel_symbols` checks it.
#ifndef VELQUAD_FRAME_KERNELS_H
#define VELQUAD_FRAME_KERNELS_H

#include <cstddef>

/// Applies a macro to the name of every level that the module contains; further arguments are handed on.
#if defined(_WIN32)
#define VELQUAD_FOR_EACH_KERNEL_LEVEL(apply, ...) apply(baseline, __VA_ARGS__) apply(v2, __VA_ARGS__)
#elif defined(__x86_64__)
#define VELQUAD_FOR_EACH_KERNEL_LEVEL(apply, ...) \
    apply(baseline, __VA_ARGS__) apply(v3, __VA_ARGS__) apply(v4, __VA_ARGS__)
#else
#define VELQUAD_FOR_EACH_KERNEL_LEVEL(apply, ...) apply(baseline, __VA_ARGS__)
#endif

#define VELQUAD_DECLARE_KERNEL_TABLE(level, Table, name) \
    namespace level {                                    \
    extern const Table name;                             \
    }
#define VELQUAD_KERNEL_TABLE_ADDRESS(level, Table, name) &level::name,

/// Defines `const Table& accessor()`, which gives the table `name` of the level in use.
#define VELQUAD_DEFINE_KERNELS(Table, name, accessor)                                  \
    VELQUAD_FOR_EACH_KERNEL_LEVEL(VELQUAD_DECLARE_KERNEL_TABLE, Table, name)           \
    const Table& accessor() {                                                          \
        static constexpr const Table* kTables[] = {                                    \
            VELQUAD_FOR_EACH_KERNEL_LEVEL(VELQUAD_KERNEL_TABLE_ADDRESS, Table, name)}; \
        return *kTables[::velquad::frame::kernelLevel()];                              \
    }

namespace velquad::frame {

/// How many levels this machine can run, at least 1. Level 0 is the baseline, each further one is faster.
std::size_t kernelLevelCount();

/// @return the name of a level, as compilers call it: "baseline", "v2", "v3", "v4".
const char* kernelLevelName(std::size_t level);

/// The level in use: the last one that the machine can run, chosen when the module is loaded.
std::size_t kernelLevel();

/// Uses another level below `kernelLevelCount()`. For tests and benchmarks only; no result depends on it.
void selectKernelLevel(std::size_t level);

}  // namespace velquad::frame

#endif  // VELQUAD_FRAME_KERNELS_H
