// What a host sees of the module's life, on every system: the order of starting, a second life after unloading,
// threads that come and go.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/module.h"
#include "tests/module/probe.h"

extern "C" {
#include "tests/chost/load_module.h"
}

namespace {

using velquad::platform::ModuleEvent;

std::string probePath;

std::vector<ModuleEvent> eventsOf(const ProbeReport& report) {
    std::vector<ModuleEvent> events;
    for (std::size_t i = 0; i < report.eventCount; ++i)
        events.push_back(static_cast<ModuleEvent>(report.events[i]));
    return events;
}

class LoadedModule : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(loadModule(probePath.c_str()), 1);
        report_ = reinterpret_cast<ProbeFunction>(moduleFunction("probeReport"));
        tellAtEnd_ = reinterpret_cast<ProbeFunction>(moduleFunction("probeTellAtEnd"));
        ASSERT_NE(report_, nullptr);
        ASSERT_NE(tellAtEnd_, nullptr);
    }
    ProbeReport report() const {
        ProbeReport result{};
        report_(&result);
        return result;
    }

    ProbeFunction report_ = nullptr;
    ProbeFunction tellAtEnd_ = nullptr;
};

TEST_F(LoadedModule, HasRunItsHookThenStaticObjectsThenAttach) {
    const std::vector<ModuleEvent> events = eventsOf(report());
    ASSERT_GE(events.size(), 3u);
    EXPECT_EQ(events.front(), ModuleEvent::kHook);
    for (std::size_t i = 1; i + 1 < events.size(); ++i)
        EXPECT_EQ(events[i], ModuleEvent::kClassRegistered);
    EXPECT_EQ(events.back(), ModuleEvent::kAttached);
    EXPECT_TRUE(report().isInitialised);
    EXPECT_NE(report().instance, nullptr);
    EXPECT_EQ(report().libraryCount, 1u);
    EXPECT_TRUE(report().isClassKnown);
    EXPECT_EQ(unloadModule(), 1);
}

TEST_F(LoadedModule, TakesNoNoticeOfThreads) {
    const std::vector<ModuleEvent> before = eventsOf(report());
    for (int round = 0; round < 20; ++round)
        std::thread([] {}).join();
    EXPECT_EQ(eventsOf(report()), before);
    EXPECT_TRUE(report().isInitialised);
    EXPECT_EQ(unloadModule(), 1);
}

TEST_F(LoadedModule, DetachesBeforeItsFirstStaticObjectsEnd) {
    static ProbeReport last;
    last = {};
    tellAtEnd_(&last);
    EXPECT_EQ(unloadModule(), 1);
    const std::vector<ModuleEvent> events = eventsOf(last);
    ASSERT_GE(events.size(), 4u);
    EXPECT_EQ(events.back(), ModuleEvent::kDetached);
    EXPECT_FALSE(last.isInitialised);
    EXPECT_EQ(last.libraryCount, 0u);
    EXPECT_FALSE(last.isClassKnown);
}

TEST_F(LoadedModule, StartsAnewAfterItWasUnloaded) {
    const std::vector<ModuleEvent> first = eventsOf(report());
    ASSERT_EQ(unloadModule(), 1);
    SetUp();
    EXPECT_EQ(eventsOf(report()), first);
    EXPECT_TRUE(report().isClassKnown);
    EXPECT_EQ(unloadModule(), 1);
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc != 2) return 2;
    probePath = argv[1];
    return RUN_ALL_TESTS();
}
