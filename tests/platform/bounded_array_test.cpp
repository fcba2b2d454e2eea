#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>
#include <string>

#include "tests/support/allocation_failure.h"
#include "velquad/framework.h"

namespace {

static_assert(sizeof(CPtrArray) == 40);
static_assert(sizeof(CObArray) == 40);
static_assert(sizeof(CTypedPtrArray<CPtrArray, double*>) == 40);

bool throwsInvalidArgument(const std::function<void()>& call) {
    try {
        call();
    } catch (CInvalidArgException* exception) {
        exception->Delete();
        return true;
    }
    return false;
}

TEST(PtrArray, GrowsAndKeepsItsElements) {
    int targets[20];
    CPtrArray array;
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetUpperBound(), -1);
    EXPECT_NE(array.IsEmpty(), 0);
    EXPECT_EQ(array.GetData(), nullptr);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(array.Add(&targets[i]), i);
    EXPECT_EQ(array.GetCount(), 20);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(array[i], &targets[i]);
    array.SetSize(2);
    array.SetSize(4);
    EXPECT_EQ(array.GetAt(1), &targets[1]);
    EXPECT_EQ(array.GetAt(2), nullptr);
    array.FreeExtra();
    EXPECT_EQ(array.GetAt(1), &targets[1]);
    array.RemoveAll();
    EXPECT_EQ(array.GetData(), nullptr);
    array.FreeExtra();
    EXPECT_EQ(array.GetSize(), 0);
}

TEST(PtrArray, ChecksItsBounds) {
    CPtrArray array;
    array.SetSize(3);
    for (const std::intptr_t index : {std::intptr_t{-1}, std::intptr_t{3}, INTPTR_MIN, INTPTR_MAX}) {
        EXPECT_TRUE(throwsInvalidArgument([&] { static_cast<void>(array.GetAt(index)); }));
        EXPECT_TRUE(throwsInvalidArgument([&] { array.SetAt(index, nullptr); }));
        EXPECT_TRUE(throwsInvalidArgument([&] { array.ElementAt(index) = nullptr; }));
        EXPECT_TRUE(throwsInvalidArgument([&] { array[index] = nullptr; }));
    }
    EXPECT_TRUE(throwsInvalidArgument([&] { array.SetSize(-1); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.SetAtGrow(-1, nullptr); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.InsertAt(-1, nullptr); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.InsertAt(0, nullptr, -1); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.InsertAt(0, nullptr, INTPTR_MAX); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.InsertAt(INTPTR_MAX, nullptr, 1); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.SetAtGrow(INTPTR_MAX, nullptr); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.RemoveAt(-1); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.RemoveAt(0, -1); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.RemoveAt(0, 4); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.RemoveAt(3, 1); }));
    EXPECT_TRUE(throwsInvalidArgument([&] { array.RemoveAt(1, INTPTR_MAX); }));
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_FALSE(throwsInvalidArgument([&] { array.RemoveAt(3, 0); }));
}

TEST(PtrArray, RefusesSizesThatNoMemoryHolds) {
    CPtrArray array;
    array.SetSize(2);
    EXPECT_THROW(array.SetSize(INTPTR_MAX), std::bad_alloc);
    EXPECT_EQ(array.GetSize(), 2);
}

TEST(TypedPtrArray, HandsOutItsType) {
    double values[3] = {1, 2, 3};
    CTypedPtrArray<CPtrArray, double*> array;
    EXPECT_EQ(array.Add(&values[0]), 0);
    array.SetAtGrow(2, &values[2]);
    array.ElementAt(1) = &values[1];
    EXPECT_EQ(*array[1], 2.0);
    array[1] += 1;
    EXPECT_EQ(*array.GetAt(1), 3.0);
    array.SetAt(0, &values[2]);
    EXPECT_EQ(*array[0], 3.0);
    array.InsertAt(0, &values[0], 2);
    EXPECT_EQ(array.GetSize(), 5);
    EXPECT_EQ(*array[1], 1.0);
    EXPECT_TRUE(throwsInvalidArgument([&] { array[5] = nullptr; }));
    const auto& constant = array;
    EXPECT_EQ(*constant[0], 1.0);
    EXPECT_NE(array.IsKindOf(CPtrArray::GetThisClass()), 0);
}

TEST(Array, HoldsElementsOfAnyType) {
    CArray<std::string> array;
    array.Add("one");
    array.Add("two");
    array.InsertAt(1, "between", 2);
    EXPECT_EQ(array.GetSize(), 4);
    EXPECT_EQ(array[0], "one");
    EXPECT_EQ(array[2], "between");
    EXPECT_EQ(array[3], "two");
    // An element of the array itself survives the move.
    for (int i = 0; i < 20; ++i)
        array.Add(array[0]);
    EXPECT_EQ(array[23], "one");
    array.InsertAt(0, array[3]);
    EXPECT_EQ(array[0], "two");
    array.RemoveAt(1, 2);
    EXPECT_EQ(array[1], "between");
    array.InsertAt(30, "far");
    EXPECT_EQ(array.GetSize(), 31);
    EXPECT_EQ(array[29], "");

    CArray<std::string> copy;
    copy.Copy(array);
    copy.Copy(copy);
    EXPECT_EQ(copy.GetSize(), 31);
    EXPECT_EQ(copy.Append(copy), 31);
    EXPECT_EQ(copy[61], "far");
    EXPECT_TRUE(throwsInvalidArgument([&] { copy[62] = ""; }));
}

TEST(Array, ReleasesEverythingWhenMemoryIsLacking) {
    const std::size_t count = velquad::test::forEachFailingAllocation([] {
        try {
            CArray<std::string> array;
            array.Add("a text that is too long for the object itself");
            array.Add("another text that is too long for the object");
            array.InsertAt(0, array[1], 20);
            array.FreeExtra();
            return array.GetSize() != 22;
        } catch (const std::bad_alloc&) {
            return true;
        }
    });
    EXPECT_GE(count, 20U);
}

/// Copies until it is told not to.
struct Reluctant {
    Reluctant() = default;
    Reluctant(const Reluctant& other) : value(other.value) {
        if (--copiesLeft == 0) throw std::bad_alloc();
    }
    Reluctant& operator=(const Reluctant&) = default;
    int value = 0;
    static int copiesLeft;
};
int Reluctant::copiesLeft = 0;

TEST(Array, StaysAsItWasWhenAnElementCannotBeMoved) {
    CArray<Reluctant> array;
    array.SetSize(3);
    array[2].value = 7;
    const std::ptrdiff_t before = velquad::test::liveAllocations();
    bool hasThrown = false;
    Reluctant::copiesLeft = 2;
    try {
        array.SetSize(10);
    } catch (const std::bad_alloc&) {
        hasThrown = true;
    }
    EXPECT_TRUE(hasThrown);
    EXPECT_EQ(velquad::test::liveAllocations(), before);
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array[2].value, 7);
}

TEST(ObArray, IsKnownByNameAndStoresNothingItself) {
    EXPECT_EQ(CRuntimeClass::FromName("CObArray"), CObArray::GetThisClass());
    const std::unique_ptr<CObject> object(CObArray::GetThisClass()->CreateObject());
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->GetRuntimeClass(), CObArray::GetThisClass());
    EXPECT_EQ(CRuntimeClass::FromName("CPtrArray"), nullptr);
    EXPECT_EQ(CPtrArray::GetThisClass()->CreateObject(), nullptr);
    const CPtrArray pointers;
    EXPECT_EQ(pointers.GetRuntimeClass(), CPtrArray::GetThisClass());
}

}  // namespace
