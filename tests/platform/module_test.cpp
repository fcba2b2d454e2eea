#include "platform/module.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "tests/support/allocation_failure.h"

namespace {

using velquad::platform::attachModule;
using velquad::platform::detachModule;
using velquad::platform::libraryCount;
using velquad::platform::ModuleEvent;
using velquad::platform::moduleRecord;
using velquad::platform::moduleTrace;
using velquad::platform::runHook;

std::vector<ModuleEvent> events() {
    return {moduleTrace().events, moduleTrace().events + moduleTrace().count};
}

// Lives longer than the attached module, and tells at the end of the process what happened.
bool mustTellAtExit = false;
struct TellAtExit {
    TellAtExit() {}
    ~TellAtExit() {
        if (!mustTellAtExit) return;
        for (const ModuleEvent event : events())
            std::fprintf(stderr, "event %d;", static_cast<int>(event));
        std::fprintf(stderr, "libraries %zu;", libraryCount());
    }
};
__attribute__((init_priority(VELQUAD_HOOK_PRIORITY + 1))) const TellAtExit tellAtExit;

// Registers a class while static objects are constructed, as the classes of the library do.
CRuntimeClass early = {"EarlyClass", 8, 0, nullptr, &CObject::GetThisClass, nullptr};
struct RegisterEarly {
    RegisterEarly() {
        wasAttached = moduleRecord().isInitialised;
        AfxClassInit(&early);
    }
    bool wasAttached;
};
VELQUAD_STATIC_OBJECT const RegisterEarly registerEarly;

// A static object without a priority.
struct PlainObject {
    PlainObject() : wasAttached(moduleRecord().isInitialised) {}
    bool wasAttached;
};
const PlainObject plainObject;

bool isOwnClass(const CRuntimeClass* record) {
    const CRuntimeClass* own = moduleRecord().classes;
    while (own != nullptr && own != record)
        own = own->m_pNextClass;
    return own != nullptr;
}

TEST(ModuleStart, RunsHookThenStaticObjectsThenAttach) {
    const std::vector<ModuleEvent> happened = events();
    ASSERT_GE(happened.size(), 3u);
    EXPECT_EQ(happened.front(), ModuleEvent::kHook);
    std::size_t position = 1;
    while (position < happened.size() && happened[position] == ModuleEvent::kClassRegistered)
        ++position;
    EXPECT_GE(position, 2u);
    ASSERT_LT(position, happened.size());
    EXPECT_EQ(happened[position], ModuleEvent::kAttached);
    EXPECT_FALSE(registerEarly.wasAttached);
    EXPECT_TRUE(plainObject.wasAttached);
}

TEST(ModuleStart, FillsTheModuleRecord) {
    EXPECT_TRUE(moduleRecord().isInitialised);
    EXPECT_NE(moduleRecord().instance, nullptr);
    EXPECT_EQ(libraryCount(), 1u);
}

TEST(ModuleStart, TakesTheClassesOfStaticObjectsOver) {
    EXPECT_TRUE(isOwnClass(&early));
    EXPECT_EQ(CRuntimeClass::FromName("EarlyClass"), &early);
}

TEST(ModuleStart, LeavesClassesThatComeLaterToTheHost) {
    static CRuntimeClass late = {"LateClass", 8, 0, nullptr, &CObject::GetThisClass, nullptr};
    AfxClassInit(&late);
    EXPECT_FALSE(isOwnClass(&late));
    EXPECT_EQ(CRuntimeClass::FromName("LateClass"), &late);
}

// What follows runs in processes of its own, so that this one stays attached.

void tellAtExitAndEnd() {
    mustTellAtExit = true;
    std::exit(0);
}

TEST(ModuleStartDeathTest, DetachesAtTheEndOfTheProcess) {
    EXPECT_EXIT(tellAtExitAndEnd(), testing::ExitedWithCode(0),
                "^event 0;(event 1;)+event 2;event 3;libraries 0;$");
}

void startAgainBehindAHost() {
    static CRuntimeClass hosts = {"HostsClass", 8, 0, nullptr, &CObject::GetThisClass, nullptr};
    static CRuntimeClass own = {"OwnClass", 8, 0, nullptr, &CObject::GetThisClass, nullptr};
    detachModule();
    AfxClassInit(&hosts);
    runHook();
    bool isRight = CRuntimeClass::FromName("HostsClass") == nullptr;
    AfxClassInit(&own);
    attachModule(&own);
    isRight = isRight && isOwnClass(&own) && !isOwnClass(&hosts) && moduleRecord().instance == &own;
    isRight = isRight && CRuntimeClass::FromName("HostsClass") == &hosts;
    isRight = isRight && CRuntimeClass::FromName("OwnClass") == &own;
    detachModule();
    isRight = isRight && CRuntimeClass::FromName("HostsClass") == &hosts;
    isRight = isRight && CRuntimeClass::FromName("OwnClass") == nullptr;
    std::_Exit(isRight ? 0 : 1);
}

TEST(ModuleStartDeathTest, SetsEarlierClassesAsideAndRestoresThem) {
    EXPECT_EXIT(startAgainBehindAHost(), testing::ExitedWithCode(0), "");
}

void startWithoutMemory() {
    detachModule();
    runHook();
    velquad::test::failAllocation(1);
    attachModule(&early);
    const bool hasFailed = velquad::test::hasAllocationFailed();
    velquad::test::failAllocation(0);
    const bool isRight =
        hasFailed && libraryCount() == 0 && moduleRecord().isInitialised && moduleRecord().instance == &early;
    detachModule();
    std::_Exit(isRight && !moduleRecord().isInitialised ? 0 : 1);
}

TEST(ModuleStartDeathTest, IgnoresALibraryRecordThatCannotBeAllocated) {
    EXPECT_EXIT(startWithoutMemory(), testing::ExitedWithCode(0), "");
}

}  // namespace
