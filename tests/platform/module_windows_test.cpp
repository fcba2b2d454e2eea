// What DllMain does with each reason. In a test program it is an ordinary function that nothing has called yet.
#include <gtest/gtest.h>

#include "platform/module.h"
#include "velquad/containers.h"
#include "velquad/framework.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* reserved);

namespace {

using velquad::platform::libraryCount;
using velquad::platform::moduleRecord;

HMODULE quietModule = nullptr;

BOOL WINAPI noteQuietModule(HMODULE module) {
    quietModule = module;
    return TRUE;
}

}  // namespace

// Taken instead of the import library's pointer; see block_failure_windows.cpp.
extern "C" {
extern BOOL(WINAPI* const __imp_DisableThreadLibraryCalls)(HMODULE module);
BOOL(WINAPI* const __imp_DisableThreadLibraryCalls)(HMODULE module) = noteQuietModule;
}

namespace {

class DllMainTest : public ::testing::Test {
  protected:
    // Detaching forgets the classes that were registered at load; other tests look them up.
    void TearDown() override {
        AfxClassInit(CObArray::GetThisClass());
        AfxClassInit(CDoubleArray::GetThisClass());
    }
};

TEST_F(DllMainTest, AttachesAndDetachesTheModule) {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    ASSERT_FALSE(moduleRecord().isInitialised);
    EXPECT_EQ(DllMain(instance, DLL_PROCESS_ATTACH, nullptr), 1);
    EXPECT_TRUE(moduleRecord().isInitialised);
    EXPECT_EQ(moduleRecord().instance, instance);
    EXPECT_EQ(libraryCount(), 1u);
    EXPECT_EQ(DllMain(instance, DLL_PROCESS_DETACH, nullptr), 1);
    EXPECT_FALSE(moduleRecord().isInitialised);
    EXPECT_EQ(libraryCount(), 0u);
}

TEST_F(DllMainTest, SwitchesTheNotificationsOfThreadsOff) {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    quietModule = nullptr;
    EXPECT_EQ(DllMain(instance, DLL_PROCESS_ATTACH, nullptr), 1);
    EXPECT_EQ(quietModule, instance);
    EXPECT_EQ(DllMain(instance, DLL_PROCESS_DETACH, nullptr), 1);
}

TEST_F(DllMainTest, AnswersAnyOtherReasonWithoutAction) {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    const std::size_t events = velquad::platform::moduleTrace().count;
    quietModule = nullptr;
    for (const DWORD reason :
         {DWORD{DLL_THREAD_ATTACH}, DWORD{DLL_THREAD_DETACH}, DWORD{4}, DWORD{0xFFFFFFFF}})
        EXPECT_EQ(DllMain(instance, reason, nullptr), 1);
    EXPECT_EQ(velquad::platform::moduleTrace().count, events);
    EXPECT_FALSE(moduleRecord().isInitialised);
    EXPECT_EQ(quietModule, nullptr);
}

}  // namespace
