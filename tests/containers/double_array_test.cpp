#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/archive_bytes.h"
#include "velquad/containers.h"

namespace {

using velquad::test::append;
using velquad::test::Bytes;
using velquad::test::loadBytes;
using velquad::test::newClass;
using velquad::test::storedBytes;

using Values = std::vector<double>;

static_assert(sizeof(CDoubleArray) == 32);

/// Shows the elements behind the end, which an array with a capacity has.
int capacityOf(const CDoubleArray& array) {
    // The fields in their order: class, data, size, capacity, growth.
    int capacity = 0;
    std::memcpy(&capacity, reinterpret_cast<const unsigned char*>(&array) + 20, sizeof capacity);
    return capacity;
}

Values valuesOf(const CDoubleArray& array) {
    return array.GetSize() == 0 ? Values{} : Values(array.GetData(), array.GetData() + array.GetSize());
}

/// An array with these values. Arrays cannot be copied.
std::unique_ptr<CDoubleArray> arrayOf(const Values& values) {
    auto array = std::make_unique<CDoubleArray>(static_cast<int>(values.size()), -1);
    for (std::size_t i = 0; i < values.size(); ++i)
        array->SetAt(static_cast<int>(i), values[i]);
    return array;
}

TEST(DoubleArray, BeginsEmpty) {
    const CDoubleArray array;
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetUpperBound(), -1);
    EXPECT_EQ(array.GetData(), nullptr);
    EXPECT_EQ(capacityOf(array), 0);
}

TEST(DoubleArray, FirstAllocationHasNoSlack) {
    CDoubleArray array;
    array.SetSize(3, -1);
    EXPECT_EQ(capacityOf(array), 3);
    EXPECT_EQ(valuesOf(array), (Values{0, 0, 0}));
    array.SetSize(0, -1);
    EXPECT_EQ(array.GetData(), nullptr);
    EXPECT_EQ(capacityOf(array), 0);
    array.SetSize(5, -1);
    EXPECT_EQ(capacityOf(array), 5);
    const CDoubleArray sized(7, 3);
    EXPECT_EQ(sized.GetSize(), 7);
    EXPECT_EQ(capacityOf(sized), 7);
    const CDoubleArray empty(0, 3);
    EXPECT_EQ(empty.GetData(), nullptr);
}

struct Growth {
    int size;
    int capacityAfterAdd;
};

TEST(DoubleArray, GrowsByAnEighthWithinBounds) {
    for (const Growth& growth :
         {Growth{3, 7}, Growth{31, 35}, Growth{39, 43}, Growth{40, 45}, Growth{100, 112}, Growth{8191, 9214},
          Growth{8192, 9216}, Growth{8200, 9224}, Growth{10000, 11024}}) {
        CDoubleArray array(growth.size, -1);
        EXPECT_EQ(array.Add(1.5), growth.size);
        EXPECT_EQ(capacityOf(array), growth.capacityAfterAdd);
        EXPECT_EQ(array[growth.size], 1.5);
    }
}

TEST(DoubleArray, GrowsByTheCallersStep) {
    CDoubleArray array(3, 5);
    array.SetSize(4);
    EXPECT_EQ(capacityOf(array), 8);
    array.SetSize(8, 2);
    EXPECT_EQ(capacityOf(array), 8);
    array.SetSize(9);
    EXPECT_EQ(capacityOf(array), 10);
    array.SetSize(100);
    EXPECT_EQ(capacityOf(array), 100);
    array.SetSize(101, 0);
    EXPECT_EQ(capacityOf(array), 112);
    // The step stays over an empty array.
    array.SetSize(0, 6);
    array.SetSize(1);
    EXPECT_EQ(capacityOf(array), 1);
    array.SetSize(2);
    EXPECT_EQ(capacityOf(array), 7);
}

TEST(DoubleArray, OldSizeDecidesAboutTheSlack) {
    CDoubleArray array(100, 0);
    array.SetSize(10);
    EXPECT_EQ(capacityOf(array), 100);
    array.SetSize(101);
    // An eighth of 10 is below 4.
    EXPECT_EQ(capacityOf(array), 104);
}

TEST(DoubleArray, ElementsThatComeInAreZero) {
    const auto array = arrayOf({1, 2, 3});
    array->SetSize(2, -1);
    EXPECT_EQ(capacityOf(*array), 3);
    array->SetSize(3, -1);
    EXPECT_EQ(valuesOf(*array), (Values{1, 2, 0}));
    array->SetSize(6, -1);
    EXPECT_EQ(valuesOf(*array), (Values{1, 2, 0, 0, 0, 0}));
}

TEST(DoubleArray, RefusesNegativeSizesAndStaysAsItWas) {
    const auto array = arrayOf({1, 2});
    EXPECT_THROW(array->SetSize(-1), std::bad_alloc);
    EXPECT_THROW(array->SetSize(std::numeric_limits<int>::min(), 3), std::bad_alloc);
    EXPECT_THROW(array->SetAtGrow(std::numeric_limits<int>::max(), 1.0), std::bad_alloc);
    EXPECT_THROW((CDoubleArray{-5, 0}), std::bad_alloc);
    EXPECT_EQ(valuesOf(*array), (Values{1, 2}));
}

TEST(DoubleArray, FreesItsSlack) {
    const auto array = arrayOf({1, 2, 3});
    array->Add(4);
    EXPECT_EQ(capacityOf(*array), 7);
    array->FreeExtra();
    EXPECT_EQ(capacityOf(*array), 4);
    EXPECT_EQ(valuesOf(*array), (Values{1, 2, 3, 4}));
    const double* before = array->GetData();
    array->FreeExtra();
    EXPECT_EQ(array->GetData(), before);
    array->RemoveAt(0, 4);
    EXPECT_EQ(capacityOf(*array), 4);
    array->FreeExtra();
    EXPECT_EQ(array->GetData(), nullptr);
    EXPECT_EQ(capacityOf(*array), 0);
}

TEST(DoubleArray, ReadsAndWritesElements) {
    CDoubleArray array(3, -1);
    array.SetAt(0, 1.0);
    array.ElementAt(1) = 2.0;
    array[2] = 3.0;
    const CDoubleArray& constant = array;
    EXPECT_EQ(constant.GetAt(0), 1.0);
    EXPECT_EQ(constant[1], 2.0);
    EXPECT_EQ(array.GetAt(2), 3.0);
    EXPECT_EQ(array.GetUpperBound(), 2);
    EXPECT_EQ(constant.GetData(), array.GetData());
    array.SetAtGrow(1, 9.0);
    EXPECT_EQ(array.GetSize(), 3);
    array.SetAtGrow(5, 7.0);
    EXPECT_EQ(valuesOf(array), (Values{1, 9, 3, 0, 0, 7}));
    array.RemoveAll();
    EXPECT_EQ(array.GetData(), nullptr);
}

TEST(DoubleArray, AddClearsNothingButCountsUp) {
    CDoubleArray array;
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(array.Add(i), i);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(array[i], i);
}

TEST(DoubleArray, AppendsAnotherArrayAndItself) {
    const auto array = arrayOf({1, 2});
    EXPECT_EQ(array->Append(*arrayOf({3, 4, 5})), 2);
    EXPECT_EQ(valuesOf(*array), (Values{1, 2, 3, 4, 5}));
    EXPECT_EQ(array->Append(CDoubleArray()), 5);
    EXPECT_EQ(array->Append(*array), 5);
    EXPECT_EQ(valuesOf(*array), (Values{1, 2, 3, 4, 5, 1, 2, 3, 4, 5}));
    CDoubleArray empty;
    EXPECT_EQ(empty.Append(empty), 0);
    EXPECT_EQ(empty.GetData(), nullptr);
}

TEST(DoubleArray, CopiesAnotherArray) {
    const auto array = arrayOf({1, 2, 3});
    array->Copy(*arrayOf({7, 8}));
    EXPECT_EQ(valuesOf(*array), (Values{7, 8}));
    EXPECT_EQ(capacityOf(*array), 3);
    array->Copy(*array);
    EXPECT_EQ(valuesOf(*array), (Values{7, 8}));
    array->Copy(*arrayOf({1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(array->GetSize(), 9);
    EXPECT_EQ((*array)[8], 9.0);
    array->Copy(CDoubleArray());
    EXPECT_EQ(array->GetData(), nullptr);
}

TEST(DoubleArray, InsertsInsideAndBehindTheEnd) {
    auto array = arrayOf({1, 2, 3});
    array->InsertAt(1, 7.0, 2);
    EXPECT_EQ(valuesOf(*array), (Values{1, 7, 7, 2, 3}));
    array->InsertAt(0, 5.0);
    EXPECT_EQ(valuesOf(*array), (Values{5, 1, 7, 7, 2, 3}));
    array = arrayOf({1, 2, 3});
    array->InsertAt(5, 7.0, 2);
    EXPECT_EQ(valuesOf(*array), (Values{1, 2, 3, 0, 0, 7, 7}));
    array = arrayOf({1, 2, 3});
    array->InsertAt(3, 7.0);
    EXPECT_EQ(valuesOf(*array), (Values{1, 2, 3, 7}));
    array->InsertAt(2, 9.0, 0);
    EXPECT_EQ(valuesOf(*array), (Values{1, 2, 3, 7}));
    array->InsertAt(6, 9.0, 0);
    EXPECT_EQ(valuesOf(*array), (Values{1, 2, 3, 7, 0, 0}));
    array->InsertAt(-1, 9.0);
    array->InsertAt(0, 9.0, -2);
    EXPECT_EQ(array->GetSize(), 6);
}

TEST(DoubleArray, InsertsAnotherArrayAndItself) {
    const Values original{1, 2, 3};
    const auto other = arrayOf({8, 9});
    for (int index = 0; index <= 5; ++index) {
        SCOPED_TRACE(index);
        Values expected = original;
        const auto place = static_cast<std::size_t>(index);
        if (expected.size() < place) expected.resize(place);
        Values expectedOwn = expected;
        expected.insert(expected.begin() + index, {8, 9});
        expectedOwn.insert(expectedOwn.begin() + index, original.begin(), original.end());

        const auto array = arrayOf(original);
        array->InsertAt(index, other.get());
        EXPECT_EQ(valuesOf(*array), expected);
        const auto own = arrayOf(original);
        own->InsertAt(index, own.get());
        EXPECT_EQ(valuesOf(*own), expectedOwn);
    }
    const auto array = arrayOf(original);
    CDoubleArray empty;
    array->InsertAt(7, &empty);
    EXPECT_EQ(valuesOf(*array), original);
}

TEST(DoubleArray, RemovesElementsAndKeepsItsMemory) {
    auto array = arrayOf({1, 2, 3, 4});
    array->RemoveAt(1, 2);
    EXPECT_EQ(valuesOf(*array), (Values{1, 4}));
    EXPECT_EQ(capacityOf(*array), 4);
    array->RemoveAt(0);
    EXPECT_EQ(valuesOf(*array), (Values{4}));
    array = arrayOf({1, 2, 3});
    array->RemoveAt(1, 2);
    EXPECT_EQ(valuesOf(*array), (Values{1}));
    array->RemoveAt(1, 0);
    EXPECT_EQ(array->GetSize(), 1);
    array->RemoveAt(0, 2);
    array->RemoveAt(-1, 1);
    array->RemoveAt(0, -1);
    array->RemoveAt(2, 0);
    EXPECT_EQ(valuesOf(*array), (Values{1}));
}

TEST(DoubleArray, StaysAsItWasWhenMemoryIsLacking) {
    const auto array = arrayOf({1, 2, 3});
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        array->SetSize(3);
        int capacity = capacityOf(*array);
        try {
            array->FreeExtra();
            capacity = 3;
            array->SetSize(50, 9);
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(valuesOf(*array), (Values{1, 2, 3}));
            EXPECT_EQ(capacityOf(*array), capacity);
            return true;
        }
        return false;
    });
    EXPECT_EQ(count, 2U);
}

TEST(DoubleArray, KnowsItsClass) {
    EXPECT_EQ(CRuntimeClass::FromName("CDoubleArray"), CDoubleArray::GetThisClass());
    EXPECT_EQ(CDoubleArray::GetThisClass(), &CDoubleArray::classCDoubleArray);
    EXPECT_EQ(CDoubleArray::_GetBaseClass(), CObject::GetThisClass());
    EXPECT_EQ(CDoubleArray::classCDoubleArray.m_wSchema, 0U);
    EXPECT_EQ(CDoubleArray::classCDoubleArray.m_nObjectSize, static_cast<int>(sizeof(CDoubleArray)));
    const std::unique_ptr<CObject> object(CRuntimeClass::FromName("CDoubleArray")->CreateObject());
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->GetRuntimeClass(), CDoubleArray::GetThisClass());
    EXPECT_NE(object->IsKindOf(CObject::GetThisClass()), 0);
}

/// 1.0 and -2.5, the least significant byte first.
const Bytes kOne{0, 0, 0, 0, 0, 0, 0xF0, 0x3F};
const Bytes kMinusTwoAndAHalf{0, 0, 0, 0, 0, 0, 0x04, 0xC0};

TEST(DoubleArrayArchive, IsACountAndTheElements) {
    const auto array = arrayOf({1.0, -2.5});
    Bytes expected{2, 0};
    append(expected, kOne);
    append(expected, kMinusTwoAndAHalf);
    EXPECT_EQ(storedBytes([&](CArchive& archive) { array->Serialize(archive); }), expected);
    CDoubleArray loaded;
    EXPECT_EQ(loadBytes(expected, [&](CArchive& archive) { loaded.Serialize(archive); }), 0);
    EXPECT_EQ(valuesOf(loaded), (Values{1.0, -2.5}));
    EXPECT_EQ(capacityOf(loaded), 2);
}

TEST(DoubleArrayArchive, EmptyArrayIsACountAlone) {
    CDoubleArray empty;
    EXPECT_EQ(storedBytes([&](CArchive& archive) { empty.Serialize(archive); }), (Bytes{0, 0}));
    const auto array = arrayOf({1, 2, 3});
    EXPECT_EQ(loadBytes({0, 0}, [&](CArchive& archive) { array->Serialize(archive); }), 0);
    EXPECT_EQ(array->GetData(), nullptr);
    EXPECT_EQ(capacityOf(*array), 0);
}

TEST(DoubleArrayArchive, ObjectHasItsClassAhead) {
    const auto array = arrayOf({1.0});
    const auto other = arrayOf({});
    const Bytes bytes =
        storedBytes([&](CArchive& archive) { archive << array.get() << other.get() << array.get(); });
    Bytes expected = newClass("CDoubleArray");
    append(expected, Bytes{1, 0});
    append(expected, kOne);
    append(expected, Bytes{0x01, 0x80, 0, 0});
    append(expected, Bytes{0x02, 0x00});
    EXPECT_EQ(bytes, expected);
    EXPECT_EQ(loadBytes(bytes,
                        [](CArchive& archive) {
                            CDoubleArray* first = nullptr;
                            CDoubleArray* second = nullptr;
                            CDoubleArray* again = nullptr;
                            EXPECT_EQ(&(archive >> first), &archive);
                            archive >> second >> again;
                            const std::unique_ptr<CDoubleArray> owner(first);
                            const std::unique_ptr<CDoubleArray> secondOwner(second);
                            EXPECT_EQ(valuesOf(*first), (Values{1.0}));
                            EXPECT_EQ(second->GetSize(), 0);
                            EXPECT_EQ(again, first);
                        }),
              0);
}

TEST(DoubleArrayArchive, RefusesObjectsOfOtherClasses) {
    Bytes bytes = newClass("CObArray");
    append(bytes, Bytes{0, 0});
    EXPECT_EQ(loadBytes(bytes,
                        [](CArchive& archive) {
                            CDoubleArray* array = nullptr;
                            archive >> array;
                        }),
              CArchiveException::badClass);
    EXPECT_EQ(loadBytes(newClass("CDoubleArray", 1),
                        [](CArchive& archive) {
                            CDoubleArray* array = nullptr;
                            archive >> array;
                        }),
              CArchiveException::badSchema);
    EXPECT_EQ(loadBytes({0, 0},
                        [](CArchive& archive) {
                            CDoubleArray* array = nullptr;
                            archive >> array;
                            EXPECT_EQ(array, nullptr);
                        }),
              0);
}

TEST(DoubleArrayArchive, KeepsWhatWasReadOfAShortArchive) {
    Bytes bytes{4, 0};
    append(bytes, kOne);
    append(bytes, kMinusTwoAndAHalf);
    for (const auto& before : {Values{}, Values{5}, Values{5, 5, 5, 5, 5, 5}}) {
        const auto array = arrayOf(before);
        EXPECT_EQ(loadBytes(bytes, [&](CArchive& archive) { array->Serialize(archive); }),
                  CArchiveException::endOfFile);
        const double old = before.size() > 3 ? 5.0 : 0.0;
        EXPECT_EQ(valuesOf(*array), (Values{1.0, -2.5, old, old}));
    }
    // Half an element: its other bytes are those of 0.0 in a new element.
    Bytes half{1, 0, 0, 0, 0, 0, 0, 0, 0xF0};
    const auto array = arrayOf({});
    EXPECT_EQ(loadBytes(half, [&](CArchive& archive) { array->Serialize(archive); }),
              CArchiveException::endOfFile);
    ASSERT_EQ(array->GetSize(), 1);
    EXPECT_EQ((*array)[0], std::ldexp(1.0, -1008));
}

TEST(DoubleArrayArchive, TakesItsStoredSizeFromAShortArchiveUpTo64Megabytes) {
    struct Stored {
        Bytes count;
        int size;
    };
    for (const Stored& stored : {Stored{{0x10, 0x27}, 10000}, Stored{{0xFF, 0xFF, 0, 0, 0x80, 0}, 8388608}}) {
        SCOPED_TRACE(stored.size);
        Bytes bytes = stored.count;
        append(bytes, kOne);
        append(bytes, kMinusTwoAndAHalf);
        const auto array = arrayOf({7});
        EXPECT_EQ(loadBytes(bytes, [&](CArchive& archive) { array->Serialize(archive); }),
                  CArchiveException::endOfFile);
        ASSERT_EQ(array->GetSize(), stored.size);
        EXPECT_EQ(array->GetAt(0), 1.0);
        EXPECT_EQ(array->GetAt(1), -2.5);
        EXPECT_EQ(array->GetAt(2), 0.0);
        EXPECT_EQ(array->GetAt(stored.size - 1), 0.0);
    }
}

TEST(DoubleArrayArchive, EveryTruncationEndsInTheArchivesException) {
    const auto array = arrayOf({1, 2, 3});
    const Bytes bytes = storedBytes([&](CArchive& archive) { archive << array.get(); });
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const std::ptrdiff_t before = velquad::test::liveAllocations();
        {
            const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_EQ(loadBytes(cut,
                                [](CArchive& archive) {
                                    CDoubleArray* loaded = nullptr;
                                    archive >> loaded;
                                }),
                      CArchiveException::endOfFile);
        }
        EXPECT_EQ(velquad::test::liveAllocations(), before);
    }
}

TEST(DoubleArrayArchive, AsksForNoMemoryThatTheArchiveCannotFill) {
    for (const Bytes& count :
         {Bytes{0xFF, 0xFF, 0x00, 0x00, 0x00, 0x80}, Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F},
          Bytes{0xFF, 0xFF, 0x01, 0x00, 0x00, 0x20}, Bytes{0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF},
          Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 1, 0, 0, 0, 1, 0, 0, 0},
          Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x1F}, Bytes{0xFF, 0xFF, 0x01, 0x00, 0x80, 0x00}}) {
        Bytes bytes = count;
        append(bytes, kOne);
        const auto array = arrayOf({7, 8});
        CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
        CArchive archive(&file, CArchive::load);
        const std::size_t before = velquad::test::allocationCount();
        int cause = 0;
        std::size_t allocations = 0;
        try {
            array->Serialize(archive);
        } catch (CArchiveException* exception) {
            allocations = velquad::test::allocationCount() - before;
            cause = exception->m_cause;
            exception->Delete();
        }
        EXPECT_EQ(cause, CArchiveException::endOfFile);
        // The exception and what the run-time library needs to throw it.
        EXPECT_LE(allocations, 2U);
        EXPECT_EQ(valuesOf(*array), (Values{7, 8}));
    }
}

TEST(DoubleArrayArchive, LargeArraysGoThereAndBack) {
    std::mt19937_64 random(8);
    for (const int size : {8192, 8193, 65534, 65535, 65536, 200000}) {
        CDoubleArray array(size, -1);
        for (int i = 0; i < size; ++i)
            array[i] = static_cast<double>(random());
        const Bytes bytes = storedBytes([&](CArchive& archive) {
            archive << BYTE{1};
            array.Serialize(archive);
            archive << BYTE{2};
        });
        ASSERT_EQ(bytes.size(), static_cast<std::size_t>(size) * 8 + (size < 65535 ? 4U : 8U));
        CDoubleArray loaded;
        EXPECT_EQ(loadBytes(bytes,
                            [&](CArchive& archive) {
                                BYTE first = 0;
                                BYTE last = 0;
                                archive >> first;
                                loaded.Serialize(archive);
                                archive >> last;
                                EXPECT_EQ(first + last, 3);
                            }),
                  0);
        EXPECT_EQ(valuesOf(loaded), valuesOf(array));
        Bytes shorter(bytes.begin(), bytes.end() - 2);
        EXPECT_EQ(loadBytes(shorter,
                            [&](CArchive& archive) {
                                BYTE first = 0;
                                archive >> first;
                                loaded.Serialize(archive);
                            }),
                  CArchiveException::endOfFile);
    }
}

}  // namespace
