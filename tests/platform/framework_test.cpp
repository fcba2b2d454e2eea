#include "velquad/framework.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "tests/support/allocation_failure.h"

namespace {

static_assert(sizeof(CPoint) == sizeof(tagPOINT));
static_assert(sizeof(CSize) == sizeof(tagSIZE));
static_assert(std::is_trivially_copyable_v<CPoint>);
static_assert(std::has_virtual_destructor_v<CObject>);
static_assert(!std::is_copy_constructible_v<CObject>);

class Shape : public CObject {
  public:
    ~Shape() override { ++destroyed; }
    CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    static CRuntimeClass* GetThisClass() { return &record; }
    static CObject* create() { return new Shape; }
    static CRuntimeClass record;
    static int destroyed;
};
CRuntimeClass Shape::record = {"Shape", sizeof(Shape), 3, &Shape::create, &CObject::GetThisClass, nullptr};
int Shape::destroyed = 0;

class RoundShape : public Shape {
  public:
    CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    static CRuntimeClass* GetThisClass() { return &record; }
    static CRuntimeClass record;
};
CRuntimeClass RoundShape::record = {"RoundShape", sizeof(RoundShape),   0xFFFF,
                                    nullptr,      &Shape::GetThisClass, nullptr};

TEST(RuntimeClass, TellsNameSizeAndSchema) {
    const Shape shape;
    const CRuntimeClass* record = shape.GetRuntimeClass();
    EXPECT_STREQ(record->m_lpszClassName, "Shape");
    EXPECT_EQ(record->m_nObjectSize, static_cast<int>(sizeof(Shape)));
    EXPECT_EQ(record->m_wSchema, 3u);
    EXPECT_STREQ(CObject::GetThisClass()->m_lpszClassName, "CObject");
    EXPECT_EQ(CObject::GetThisClass()->m_pfnGetBaseClass, nullptr);
}

TEST(RuntimeClass, KnowsItsBasesInAnyNumberOfSteps) {
    const RoundShape round;
    EXPECT_NE(round.IsKindOf(RoundShape::GetThisClass()), 0);
    EXPECT_NE(round.IsKindOf(Shape::GetThisClass()), 0);
    EXPECT_NE(round.IsKindOf(CObject::GetThisClass()), 0);
    const Shape shape;
    EXPECT_EQ(shape.IsKindOf(RoundShape::GetThisClass()), 0);
    EXPECT_EQ(shape.IsKindOf(CException::GetThisClass()), 0);
    EXPECT_EQ(shape.IsKindOf(nullptr), 0);
}

TEST(RuntimeClass, MakesObjectsThroughItsFactory) {
    CObject* object = Shape::GetThisClass()->CreateObject();
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->GetRuntimeClass(), Shape::GetThisClass());
    const int before = Shape::destroyed;
    delete object;
    EXPECT_EQ(Shape::destroyed, before + 1);
    EXPECT_EQ(RoundShape::GetThisClass()->CreateObject(), nullptr);
}

TEST(RuntimeClass, IsFoundByNameOnceRegistered) {
    static CRuntimeClass record = {"OnceRegistered", 8, 0, nullptr, &CObject::GetThisClass, nullptr};
    static CRuntimeClass other = {"OtherRegistered", 8, 0, nullptr, &CObject::GetThisClass, nullptr};
    EXPECT_EQ(CRuntimeClass::FromName("OnceRegistered"), nullptr);
    AfxClassInit(&record);
    AfxClassInit(&other);
    AfxClassInit(&record);
    AfxClassInit(nullptr);
    EXPECT_EQ(CRuntimeClass::FromName("OnceRegistered"), &record);
    EXPECT_EQ(CRuntimeClass::FromName("OtherRegistered"), &other);
    EXPECT_EQ(CRuntimeClass::FromName("onceregistered"), nullptr);
    EXPECT_EQ(CRuntimeClass::FromName(""), nullptr);
    EXPECT_EQ(CRuntimeClass::FromName(nullptr), nullptr);
}

TEST(Size, ComparesBothExtents) {
    EXPECT_EQ(CSize().cx, 0);
    EXPECT_EQ(CSize().cy, 0);
    CSize size(3, 4);
    EXPECT_TRUE(size == CSize(3, 4));
    EXPECT_TRUE(size != CSize(4, 3));
    size.SetSize(-1, 7);
    EXPECT_EQ(size.cx, -1);
    EXPECT_EQ(size.cy, 7);
    const tagSIZE plain{5, 6};
    EXPECT_TRUE(CSize(plain) == plain);
}

TEST(Point, AddsAndSubtracts) {
    const CPoint a(10, -20);
    const tagPOINT b{3, 5};
    EXPECT_TRUE(a + b == CPoint(13, -15));
    EXPECT_TRUE(a - b == CSize(7, -25));
    EXPECT_TRUE(a + CSize(1, 2) == CPoint(11, -18));
    EXPECT_TRUE(a - CSize(1, 2) == CPoint(9, -22));
    EXPECT_TRUE(-a == CPoint(-10, 20));
    CPoint moved(1, 1);
    moved += b;
    EXPECT_TRUE(moved == CPoint(4, 6));
    moved -= b;
    EXPECT_TRUE(moved == CPoint(1, 1));
    moved += CSize(2, 3);
    EXPECT_TRUE(moved == CPoint(3, 4));
    moved -= CSize(1, 1);
    EXPECT_TRUE(moved == CPoint(2, 3));
}

TEST(Point, MovesAndIsSet) {
    CPoint point;
    EXPECT_EQ(point.x, 0);
    EXPECT_EQ(point.y, 0);
    point.Offset(3, -4);
    EXPECT_TRUE(point == CPoint(3, -4));
    point.Offset(tagPOINT{1, 1});
    EXPECT_TRUE(point == CPoint(4, -3));
    point.Offset(tagSIZE{-4, 3});
    EXPECT_TRUE(point == CPoint());
    point.SetPoint(8, 9);
    EXPECT_TRUE(point != CPoint(9, 8));
    EXPECT_TRUE(point != CPoint(8, 8));
    EXPECT_TRUE(point == CPoint(CSize(8, 9)));
}

TEST(Point, WrapsAroundIn32Bits) {
    CPoint point(2147483647, -2147483647 - 1);
    point.Offset(1, -1);
    EXPECT_EQ(point.x, -2147483647 - 1);
    EXPECT_EQ(point.y, 2147483647);
    point -= tagPOINT{1, -1};
    EXPECT_EQ(point.x, 2147483647);
    EXPECT_EQ(point.y, -2147483647 - 1);
    EXPECT_EQ((-point).y, -2147483647 - 1);
}

TEST(Exception, IsThrownByPointerAndCaughtAsItsBase) {
    bool isCaught = false;
    try {
        AfxThrowInvalidArgException();
    } catch (CException* exception) {
        isCaught = true;
        EXPECT_NE(exception->IsKindOf(CInvalidArgException::GetThisClass()), 0);
        EXPECT_NE(exception->IsKindOf(CException::GetThisClass()), 0);
        EXPECT_NE(exception->IsKindOf(CObject::GetThisClass()), 0);
        exception->Delete();
    }
    EXPECT_TRUE(isCaught);
}

TEST(Exception, MayBeThrownAgainAfterDelete) {
    for (int round = 0; round < 3; ++round) {
        bool isCaught = false;
        try {
            AfxThrowInvalidArgException();
        } catch (CInvalidArgException* exception) {
            isCaught = true;
            EXPECT_STREQ(exception->GetRuntimeClass()->m_lpszClassName, "CInvalidArgException");
            exception->Delete();
        }
        EXPECT_TRUE(isCaught);
    }
}

TEST(Exception, IsThrownWithoutMemory) {
    bool isCaught = false;
    velquad::test::failAllocation(1);
    try {
        AfxThrowInvalidArgException();
    } catch (CInvalidArgException* exception) {
        isCaught = true;
        exception->Delete();
    }
    velquad::test::failAllocation(0);
    EXPECT_TRUE(isCaught);
}

TEST(Exception, IsInFlightInManyThreadsAtOnce) {
    std::vector<int> caught(4);
    std::vector<std::thread> threads;
    for (int& count : caught) {
        threads.emplace_back([&count] {
            for (int round = 0; round < 500; ++round) {
                try {
                    AfxThrowInvalidArgException();
                } catch (CException* exception) {
                    count += exception->IsKindOf(CInvalidArgException::GetThisClass()) != 0 ? 1 : 0;
                    exception->Delete();
                }
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const int count : caught)
        EXPECT_EQ(count, 500);
}

class CountedException : public CException {
  public:
    CountedException(BOOL isAutoDelete, int& destroyed) : CException(isAutoDelete), destroyed_(destroyed) {}
    ~CountedException() override { ++destroyed_; }

  private:
    int& destroyed_;
};

TEST(Exception, DeleteDestroysWhatNewMade) {
    int destroyed = 0;
    (new CountedException(TRUE, destroyed))->Delete();
    EXPECT_EQ(destroyed, 1);
    {
        CountedException onStack(FALSE, destroyed);
        onStack.Delete();
        EXPECT_EQ(destroyed, 1);
    }
    EXPECT_EQ(destroyed, 2);
}

class RecordingApplication : public CWinApp {
  public:
    void DoWaitCursor(int code) override {
        calls.push_back(code);
        CWinApp::DoWaitCursor(code);
    }
    std::vector<int> calls;
};

TEST(Application, IsThereWithoutAHost) {
    ASSERT_NE(AfxGetApp(), nullptr);
    EXPECT_EQ(AfxGetApp(), AfxGetApp());
    EXPECT_NE(AfxGetApp()->IsKindOf(CWinApp::GetThisClass()), 0);
}

TEST(Application, CountsNestedWaits) {
    CWinApp* application = AfxGetApp();
    ASSERT_EQ(application->GetWaitCursorCount(), 0);
    application->BeginWaitCursor();
    application->BeginWaitCursor();
    EXPECT_EQ(application->GetWaitCursorCount(), 2);
    application->RestoreWaitCursor();
    EXPECT_EQ(application->GetWaitCursorCount(), 2);
    application->EndWaitCursor();
    application->EndWaitCursor();
    EXPECT_EQ(application->GetWaitCursorCount(), 0);
    application->EndWaitCursor();
    EXPECT_EQ(application->GetWaitCursorCount(), 0);
}

TEST(Application, IsReplacedByTheHostsObjectWhileThatLives) {
    CWinApp* own = AfxGetApp();
    {
        RecordingApplication host;
        EXPECT_EQ(AfxGetApp(), &host);
        {
            CWaitCursor wait;
            EXPECT_EQ(host.GetWaitCursorCount(), 1);
            wait.Restore();
        }
        EXPECT_EQ(host.calls, (std::vector<int>{1, 0, -1}));
        EXPECT_EQ(own->GetWaitCursorCount(), 0);
    }
    EXPECT_EQ(AfxGetApp(), own);
}

TEST(Application, KeepsTheLatestHostWhenAnEarlierOneEnds) {
    CWinApp* own = AfxGetApp();
    auto* earlier = new RecordingApplication;
    {
        const RecordingApplication latest;
        delete earlier;
        EXPECT_EQ(AfxGetApp(), &latest);
    }
    EXPECT_EQ(AfxGetApp(), own);
}

}  // namespace
