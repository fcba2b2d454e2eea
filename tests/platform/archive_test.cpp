#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/archive_bytes.h"
#include "velquad/framework.h"

namespace {

using velquad::test::append;
using velquad::test::Bytes;
using velquad::test::loadBytes;
using velquad::test::newClass;
using velquad::test::storedBytes;

/// An object of the tests: a number and a reference to another one, which it does not own.
class Link : public CObject {
  public:
    explicit Link(BYTE newValue = 0) : value(newValue) { alive.insert(this); }
    ~Link() override { alive.erase(this); }
    CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    static CRuntimeClass* GetThisClass() { return &record; }
    static CObject* create() { return new Link; }
    void Serialize(CArchive& archive) override {
        if (archive.IsStoring() != 0) {
            archive << value;
            archive << next;
        } else {
            archive >> value;
            next = archive.ReadObject(Link::GetThisClass());
        }
    }

    BYTE value = 0;
    CObject* next = nullptr;
    static CRuntimeClass record;
    static std::set<const Link*> alive;
};
CRuntimeClass Link::record = {"Link", sizeof(Link), 3, &Link::create, &CObject::GetThisClass, nullptr};
std::set<const Link*> Link::alive;

/// A class that owns what it reads.
class Owner : public CObject {
  public:
    ~Owner() override { delete owned; }
    CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    static CRuntimeClass* GetThisClass() { return &record; }
    static CObject* create() { return new Owner; }
    void Serialize(CArchive& archive) override {
        if (archive.IsStoring() != 0) {
            archive << owned << BYTE{9};
        } else {
            BYTE end = 0;
            archive >> owned >> end;
        }
    }

    CObject* owned = nullptr;
    static CRuntimeClass record;
};
CRuntimeClass Owner::record = {"Owner", sizeof(Owner), 0, &Owner::create, &CObject::GetThisClass, nullptr};

/// Reads the forms of all versions.
class Versioned : public CObject {
  public:
    CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    static CRuntimeClass* GetThisClass() { return &record; }
    static CObject* create() { return new Versioned; }
    void Serialize(CArchive& archive) override {
        if (archive.IsStoring() != 0) return;
        schema = archive.GetObjectSchema();
        again = archive.GetObjectSchema();
    }

    UINT schema = 0;
    UINT again = 0;
    static CRuntimeClass record;
};
CRuntimeClass Versioned::record = {"Versioned",        sizeof(Versioned),      VERSIONABLE_SCHEMA | 2U,
                                   &Versioned::create, &CObject::GetThisClass, nullptr};

/// Known by name, but without an archive form or a factory.
CRuntimeClass noSchema = {"NoSchema", 8, 0xFFFF, &Link::create, &CObject::GetThisClass, nullptr};
CRuntimeClass noFactory = {"NoFactory", 8, 0, nullptr, &CObject::GetThisClass, nullptr};

class Archive : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        for (CRuntimeClass* record :
             {&Link::record, &Owner::record, &Versioned::record, &noSchema, &noFactory})
            AfxClassInit(record);
    }
    void SetUp() override { ASSERT_TRUE(Link::alive.empty()); }
    void TearDown() override { EXPECT_TRUE(Link::alive.empty()); }
};

CObject* readAny(CArchive& archive) {
    CObject* object = nullptr;
    archive >> object;
    return object;
}

TEST_F(Archive, StoresNumbersLeastSignificantByteFirst) {
    const Bytes bytes = storedBytes([](CArchive& archive) {
        archive << BYTE{0x12} << WORD{0x3456} << DWORD{0x789ABCDE} << std::int64_t{-2} << true << 1.0F << -2.0
                << static_cast<short>(-1) << L'A' << 'z';
    });
    EXPECT_EQ(bytes, (Bytes{0x12, 0x56, 0x34, 0xDE, 0xBC, 0x9A, 0x78, 0xFE, 0xFF, 0xFF, 0xFF,
                            0xFF, 0xFF, 0xFF, 0xFF, 0x01, 0x00, 0x00, 0x80, 0x3F, 0x00, 0x00,
                            0x00, 0x00, 0x00, 0x00, 0x00, 0xC0, 0xFF, 0xFF, 0x41, 0x00, 0x7A}));
    EXPECT_EQ(loadBytes(bytes,
                        [](CArchive& archive) {
                            BYTE byte = 0;
                            WORD word = 0;
                            DWORD dword = 0;
                            std::int64_t wide = 0;
                            bool isTrue = false;
                            float single = 0;
                            double number = 0;
                            short shorter = 0;
                            wchar_t letter = 0;
                            char character = 0;
                            archive >> byte >> word >> dword >> wide >> isTrue >> single >> number >>
                                shorter >> letter >> character;
                            EXPECT_EQ(byte, 0x12);
                            EXPECT_EQ(word, 0x3456);
                            EXPECT_EQ(dword, 0x789ABCDEU);
                            EXPECT_EQ(wide, -2);
                            EXPECT_TRUE(isTrue);
                            EXPECT_EQ(single, 1.0F);
                            EXPECT_EQ(number, -2.0);
                            EXPECT_EQ(shorter, -1);
                            EXPECT_EQ(letter, L'A');
                            EXPECT_EQ(character, 'z');
                            EXPECT_EQ(archive.GetBytesLeft(), 0U);
                        }),
              0);
}

struct CountForm {
    std::uint64_t count;
    Bytes bytes;
};

TEST_F(Archive, StoresCountsInTheirShortestForm) {
    const std::vector<CountForm> forms = {
        {0, {0x00, 0x00}},
        {1, {0x01, 0x00}},
        {0xFFFE, {0xFE, 0xFF}},
        {0xFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00}},
        {0x10000, {0xFF, 0xFF, 0x00, 0x00, 0x01, 0x00}},
        {0x80000000U, {0xFF, 0xFF, 0x00, 0x00, 0x00, 0x80}},
        {0xFFFFFFFEU, {0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF}},
        {0xFFFFFFFFU, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}},
        {0x123456789AU, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x9A, 0x78, 0x56, 0x34, 0x12, 0, 0, 0}}};
    for (const CountForm& form : forms) {
        SCOPED_TRACE(form.count);
        const auto count = static_cast<std::uintptr_t>(form.count);
        EXPECT_EQ(storedBytes([&](CArchive& archive) { archive.WriteCount(count); }), form.bytes);
        EXPECT_EQ(loadBytes(form.bytes, [&](CArchive& archive) { EXPECT_EQ(archive.ReadCount(), count); }),
                  0);
        for (std::size_t length = 0; length < form.bytes.size(); ++length) {
            const Bytes cut(form.bytes.begin(), form.bytes.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_EQ(loadBytes(cut, [](CArchive& archive) { archive.ReadCount(); }),
                      CArchiveException::endOfFile);
        }
    }
}

/// Three links: a -> b -> a, and a again, then null and c.
Bytes graphByHand() {
    Bytes bytes = newClass("Link", 3);             // class 1, object 2: a
    append(bytes, Bytes{0x0A});                    //   value
    append(bytes, Bytes{0x01, 0x80, 0x0B});        //   next: class 1, object 3: b, value
    append(bytes, Bytes{0x02, 0x00});              //     next: object 2
    append(bytes, Bytes{0x02, 0x00});              // object 2
    append(bytes, Bytes{0x00, 0x00});              // null
    append(bytes, Bytes{0x01, 0x80, 0x0C, 0, 0});  // class 1, object 4: c, value, null
    return bytes;
}

TEST_F(Archive, StoresAGraphAsTagsAndIndices) {
    Link a(10);
    Link b(11);
    Link c(12);
    a.next = &b;
    b.next = &a;
    const Bytes bytes =
        storedBytes([&](CArchive& archive) { archive << &a << &a << static_cast<CObject*>(nullptr) << &c; });
    EXPECT_EQ(bytes, graphByHand());
}

TEST_F(Archive, LoadsTheSameGraph) {
    for (const int bufferSize : {128, 4096}) {
        EXPECT_EQ(loadBytes(
                      graphByHand(),
                      [](CArchive& archive) {
                          const std::unique_ptr<CObject> object(readAny(archive));
                          auto* a = static_cast<Link*>(object.get());
                          ASSERT_EQ(a->GetRuntimeClass(), Link::GetThisClass());
                          EXPECT_EQ(a->value, 10);
                          const std::unique_ptr<Link> b(static_cast<Link*>(a->next));
                          EXPECT_EQ(b->value, 11);
                          EXPECT_EQ(b->next, a);
                          EXPECT_EQ(readAny(archive), a);
                          EXPECT_EQ(readAny(archive), nullptr);
                          const std::unique_ptr<CObject> c(archive.ReadObject(Link::GetThisClass()));
                          EXPECT_EQ(static_cast<Link*>(c.get())->value, 12);
                      },
                      bufferSize),
                  0);
    }
}

TEST_F(Archive, UsesBigTagsFromIndex7FFFOn) {
    // Objects 2 to 0x8001 of class 1.
    constexpr int kCount = 0x8000;
    std::vector<std::unique_ptr<Link>> links;
    for (int i = 0; i < kCount; ++i)
        links.push_back(std::make_unique<Link>(BYTE{7}));
    const auto indexed = [&links](int index) { return links[static_cast<std::size_t>(index - 2)].get(); };
    Bytes bytes = storedBytes([&](CArchive& archive) {
        for (const std::unique_ptr<Link>& link : links)
            archive << link.get();
        archive << indexed(0x7FFE) << indexed(0x7FFF) << indexed(0x8001);
        Owner owner;  // class 0x8002, object 0x8003
        archive << &owner;
        Owner other;  // object 0x8004, its class by a big tag
        archive << &other;
    });
    Bytes expected = newClass("Link", 3);
    append(expected, Bytes{0x07, 0x00, 0x00});
    for (int i = 1; i < kCount; ++i)
        append(expected, Bytes{0x01, 0x80, 0x07, 0x00, 0x00});
    append(expected, Bytes{0xFE, 0x7F});
    append(expected, Bytes{0xFF, 0x7F, 0xFF, 0x7F, 0x00, 0x00});
    append(expected, Bytes{0xFF, 0x7F, 0x01, 0x80, 0x00, 0x00});
    append(expected, newClass("Owner"));
    append(expected, Bytes{0x00, 0x00, 0x09});
    append(expected, Bytes{0xFF, 0x7F, 0x02, 0x80, 0x00, 0x80, 0x00, 0x00, 0x09});
    EXPECT_EQ(bytes, expected);
    links.clear();

    EXPECT_EQ(loadBytes(bytes,
                        [&](CArchive& archive) {
                            for (int i = 0; i < kCount; ++i)
                                links.emplace_back(static_cast<Link*>(readAny(archive)));
                            EXPECT_EQ(readAny(archive), indexed(0x7FFE));
                            EXPECT_EQ(readAny(archive), indexed(0x7FFF));
                            EXPECT_EQ(readAny(archive), indexed(0x8001));
                            const std::unique_ptr<CObject> owner(readAny(archive));
                            const std::unique_ptr<CObject> other(readAny(archive));
                            EXPECT_NE(owner, other);
                            EXPECT_EQ(other->GetRuntimeClass(), Owner::GetThisClass());
                        }),
              0);
}

TEST_F(Archive, SmallIndicesMayComeInTheBigForm) {
    Bytes bytes = newClass("Link", 3);
    append(bytes, Bytes{1, 0, 0});
    append(bytes, Bytes{0xFF, 0x7F, 0x01, 0x00, 0x00, 0x80, 2, 0, 0});
    append(bytes, Bytes{0xFF, 0x7F, 0x02, 0x00, 0x00, 0x00});
    append(bytes, Bytes{0xFF, 0x7F, 0x00, 0x00, 0x00, 0x00});
    EXPECT_EQ(loadBytes(bytes,
                        [](CArchive& archive) {
                            const std::unique_ptr<CObject> first(readAny(archive));
                            const std::unique_ptr<CObject> second(readAny(archive));
                            EXPECT_EQ(static_cast<Link*>(second.get())->value, 2);
                            EXPECT_EQ(readAny(archive), first.get());
                            EXPECT_EQ(readAny(archive), nullptr);
                        }),
              0);
}

int causeOfReading(const Bytes& bytes, const CRuntimeClass* requested = nullptr) {
    return loadBytes(bytes, [&](CArchive& archive) {
        const std::unique_ptr<CObject> object(archive.ReadObject(requested));
    });
}

TEST_F(Archive, RefusesReferencesToNothing) {
    EXPECT_EQ(causeOfReading({0x01, 0x00}), CArchiveException::badIndex);
    EXPECT_EQ(causeOfReading({0xFE, 0x7F}), CArchiveException::badIndex);
    EXPECT_EQ(causeOfReading({0x00, 0x80}), CArchiveException::badIndex);
    EXPECT_EQ(causeOfReading({0x01, 0x80}), CArchiveException::badIndex);
    EXPECT_EQ(causeOfReading({0xFF, 0x7F, 0xFF, 0xFF, 0xFF, 0x7F}), CArchiveException::badIndex);
    EXPECT_EQ(causeOfReading({0xFF, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF}), CArchiveException::badIndex);
    // A class where an object is due, and the other way round.
    Bytes asObject = newClass("Link", 3);
    append(asObject, Bytes{1, 0x01, 0x00});
    EXPECT_EQ(causeOfReading(asObject), CArchiveException::badIndex);
    Bytes asClass = newClass("Link", 3);
    append(asClass, Bytes{1, 0x02, 0x80});
    EXPECT_EQ(causeOfReading(asClass), CArchiveException::badIndex);
}

TEST_F(Archive, RefusesClassesThatItCannotMake) {
    EXPECT_EQ(causeOfReading(newClass("Nothing")), CArchiveException::badClass);
    EXPECT_EQ(causeOfReading(newClass("")), CArchiveException::badClass);
    EXPECT_EQ(causeOfReading(newClass("link", 3)), CArchiveException::badClass);
    EXPECT_EQ(causeOfReading(newClass(std::string("Link\0", 5), 3)), CArchiveException::badClass);
    EXPECT_EQ(causeOfReading(newClass("NoFactory")), CArchiveException::badClass);
    EXPECT_EQ(causeOfReading(newClass(std::string(64, 'x'))), CArchiveException::badClass);
    EXPECT_EQ(causeOfReading(newClass(std::string(63, 'x'))), CArchiveException::badClass);
    Bytes withoutSchema{0xFF, 0xFF, 0xFF, 0xFF, 8, 0};
    append(withoutSchema, "NoSchema");
    EXPECT_EQ(causeOfReading(withoutSchema), CArchiveException::badClass);
}

TEST_F(Archive, RefusesOtherVersions) {
    EXPECT_EQ(causeOfReading(newClass("Link", 2)), CArchiveException::badSchema);
    EXPECT_EQ(causeOfReading(newClass("Link", 4)), CArchiveException::badSchema);
}

TEST_F(Archive, TellsTheVersionToClassesThatReadThemAll) {
    Bytes bytes = newClass("Versioned", 1);
    append(bytes, Bytes{0x01, 0x80});
    EXPECT_EQ(loadBytes(bytes,
                        [](CArchive& archive) {
                            for (int i = 0; i < 2; ++i) {
                                const std::unique_ptr<CObject> object(readAny(archive));
                                const auto* versioned = static_cast<Versioned*>(object.get());
                                EXPECT_EQ(versioned->schema, 1U);
                                EXPECT_EQ(versioned->again, 0xFFFFFFFFU);
                            }
                            EXPECT_EQ(archive.GetObjectSchema(), 0xFFFFFFFFU);
                        }),
              0);
    Versioned versioned;
    EXPECT_EQ(storedBytes([&](CArchive& archive) { archive << &versioned; }), newClass("Versioned", 2));
}

TEST_F(Archive, RefusesOtherClassesThanRequested) {
    Bytes bytes = newClass("Link", 3);
    append(bytes, Bytes{1, 0, 0});
    EXPECT_EQ(causeOfReading(bytes, Link::GetThisClass()), 0);
    EXPECT_EQ(causeOfReading(bytes, Owner::GetThisClass()), CArchiveException::badClass);
    // By reference to the class, and by reference to the object.
    for (const BYTE tag : {BYTE{0x80}, BYTE{0x00}}) {
        Bytes twice = bytes;
        append(twice, Bytes{static_cast<BYTE>(tag == 0 ? 2 : 1), tag, 1, 0, 0});
        EXPECT_EQ(loadBytes(twice,
                            [](CArchive& archive) {
                                const std::unique_ptr<CObject> first(readAny(archive));
                                archive.ReadObject(Owner::GetThisClass());
                            }),
                  CArchiveException::badClass);
    }
    EXPECT_EQ(causeOfReading(bytes, CObject::GetThisClass()), -1);
}

TEST_F(Archive, DeletesWhatItMadeWhenLoadingFails) {
    Bytes bytes = newClass("Owner");
    append(bytes, newClass("CObArray"));
    append(bytes, Bytes{3, 0});
    append(bytes, newClass("Link", 3));
    append(bytes, Bytes{5, 0, 0});
    append(bytes, Bytes{0x05, 0x80, 6, 0, 0});
    // The third element is missing: each prefix fails and leaves nothing behind.
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        const std::ptrdiff_t before = velquad::test::liveAllocations();
        {
            const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_EQ(causeOfReading(cut), CArchiveException::endOfFile) << length;
        }
        EXPECT_EQ(velquad::test::liveAllocations(), before) << length;
        EXPECT_TRUE(Link::alive.empty()) << length;
    }
}

TEST_F(Archive, DeletesArraysWithinArraysWhenLoadingFails) {
    // [[link, link], first link again, [] and what is missing]
    Bytes bytes = newClass("CObArray");
    append(bytes, Bytes{4, 0, 0x01, 0x80, 2, 0});
    append(bytes, newClass("Link", 3));
    append(bytes, Bytes{5, 0, 0});
    append(bytes, Bytes{0x04, 0x80, 6, 0, 0});
    append(bytes, Bytes{0x05, 0x00});
    append(bytes, Bytes{0x01, 0x80, 0, 0});
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        const std::ptrdiff_t before = velquad::test::liveAllocations();
        {
            const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_EQ(causeOfReading(cut), CArchiveException::endOfFile) << length;
        }
        EXPECT_EQ(velquad::test::liveAllocations(), before) << length;
        EXPECT_TRUE(Link::alive.empty()) << length;
    }
    // Complete, it is the caller's with all that is in it.
    append(bytes, Bytes{0, 0});
    EXPECT_EQ(loadBytes(bytes,
                        [](CArchive& archive) {
                            const std::unique_ptr<CObject> object(readAny(archive));
                            auto& array = static_cast<CObArray&>(*object);
                            ASSERT_EQ(array.GetSize(), 4);
                            const std::unique_ptr<CObArray> inner(static_cast<CObArray*>(array[0]));
                            const std::unique_ptr<CObject> last(array[2]);
                            EXPECT_EQ(inner->GetAt(0), array[1]);
                            EXPECT_EQ(array[3], nullptr);
                            delete inner->GetAt(0);
                            delete inner->GetAt(1);
                        }),
              0);
}

TEST_F(Archive, ForgetsObjectsThatWereGivenUp) {
    // Reading the link fails behind its value; the index that it had refers to nothing from then on.
    Bytes bytes = newClass("Link", 3);
    append(bytes, Bytes{1, 0x09, 0x00, 0x02, 0x00});
    EXPECT_EQ(loadBytes(bytes,
                        [](CArchive& archive) {
                            bool hasThrown = false;
                            try {
                                readAny(archive);
                            } catch (CArchiveException* exception) {
                                hasThrown = true;
                                exception->Delete();
                            }
                            EXPECT_TRUE(hasThrown);
                            readAny(archive);
                        }),
              CArchiveException::badIndex);
}

TEST_F(Archive, BoundsTheDepthOfObjects) {
    // A chain of arrays of one element each.
    const auto chain = [](int depth) {
        Bytes bytes = newClass("CObArray");
        for (int i = 1; i < depth; ++i)
            append(bytes, Bytes{1, 0, 0x01, 0x80});
        append(bytes, Bytes{0, 0});
        return bytes;
    };
    EXPECT_EQ(loadBytes(chain(1000),
                        [](CArchive& archive) {
                            CObject* object = readAny(archive);
                            int depth = 0;
                            while (object != nullptr) {
                                auto* array = static_cast<CObArray*>(object);
                                object = array->IsEmpty() != 0 ? nullptr : array->GetAt(0);
                                delete array;
                                ++depth;
                            }
                            EXPECT_EQ(depth, 1000);
                        }),
              0);
    EXPECT_EQ(causeOfReading(chain(1001)), CArchiveException::genericException);
    EXPECT_EQ(causeOfReading(chain(200000)), CArchiveException::genericException);

    std::vector<std::unique_ptr<Link>> links;
    for (int i = 0; i < 1001; ++i) {
        links.push_back(std::make_unique<Link>(BYTE{1}));
        if (i > 0) links[static_cast<std::size_t>(i)]->next = links[static_cast<std::size_t>(i - 1)].get();
    }
    int cause = 0;
    try {
        storedBytes([&](CArchive& archive) { archive << links.back().get(); });
    } catch (CArchiveException* exception) {
        cause = exception->m_cause;
        exception->Delete();
    }
    EXPECT_EQ(cause, CArchiveException::genericException);
}

TEST_F(Archive, RefusesCountsThatTheBytesCannotFill) {
    for (const Bytes& count :
         {Bytes{0xFF, 0xFF, 0x00, 0x00, 0x00, 0x80}, Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F},
          Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0x80}, Bytes{0x03, 0x00}}) {
        Bytes bytes = newClass("CObArray");
        append(bytes, count);
        append(bytes, Bytes{0, 0, 0, 0});
        EXPECT_EQ(causeOfReading(bytes), CArchiveException::endOfFile);
    }
    Bytes filled = newClass("CObArray");
    append(filled, Bytes{2, 0, 0, 0, 0, 0});
    EXPECT_EQ(causeOfReading(filled), 0);
}

TEST_F(Archive, ArrayOfTheCallerKeepsWhatWasRead) {
    Bytes bytes{3, 0};
    append(bytes, newClass("Link", 3));
    append(bytes, Bytes{5, 0, 0});
    append(bytes, Bytes{0xFE, 0x7F, 0, 0});
    CObArray array;
    EXPECT_EQ(loadBytes(bytes, [&](CArchive& archive) { array.Serialize(archive); }),
              CArchiveException::badIndex);
    ASSERT_EQ(array.GetSize(), 3);
    EXPECT_EQ(static_cast<Link*>(array[0])->value, 5);
    EXPECT_EQ(array[1], nullptr);
    EXPECT_EQ(array[2], nullptr);
    delete array[0];
}

TEST_F(Archive, WorksInItsDirectionOnly) {
    CMemFile file;
    int cause = -1;
    {
        CArchive archive(&file, CArchive::store);
        EXPECT_NE(archive.IsStoring(), 0);
        EXPECT_EQ(archive.IsLoading(), 0);
        EXPECT_EQ(archive.GetFile(), &file);
        try {
            BYTE byte = 0;
            archive >> byte;
        } catch (CArchiveException* exception) {
            cause = exception->m_cause;
            exception->Delete();
        }
        EXPECT_EQ(cause, CArchiveException::writeOnly);
    }
    EXPECT_EQ(loadBytes({1, 2, 3}, [](CArchive& archive) { archive << BYTE{1}; }),
              CArchiveException::readOnly);
    EXPECT_EQ(loadBytes({1, 2, 3},
                        [](CArchive& archive) {
                            archive.Close();
                            BYTE byte = 0;
                            archive >> byte;
                        }),
              CArchiveException::genericException);
}

TEST_F(Archive, RefusesToStoreClassesWithoutAForm) {
    class Formless : public CObject {};
    const Formless formless;
    bool hasThrown = false;
    try {
        storedBytes([&](CArchive& archive) { archive << &formless; });
    } catch (CNotSupportedException* exception) {
        hasThrown = true;
        exception->Delete();
    }
    EXPECT_TRUE(hasThrown);
}

TEST_F(Archive, TakesBlocksOfAnySizeThroughAnyBuffer) {
    std::mt19937 random(4);
    for (const int bufferSize : {-5, 0, 1, 128, 129, 1000, 4096}) {
        std::vector<Bytes> blocks;
        for (int i = 0; i < 60; ++i) {
            Bytes block(random() % (i % 10 == 0 ? 9000U : 300U));
            for (BYTE& byte : block)
                byte = static_cast<BYTE>(random());
            blocks.push_back(block);
        }
        const Bytes bytes = storedBytes(
            [&](CArchive& archive) {
                for (const Bytes& block : blocks)
                    archive.Write(block.data(), static_cast<UINT>(block.size()));
            },
            bufferSize);
        Bytes joined;
        for (const Bytes& block : blocks)
            append(joined, block);
        ASSERT_EQ(bytes, joined);
        EXPECT_EQ(loadBytes(
                      bytes,
                      [&](CArchive& archive) {
                          std::uint64_t left = joined.size();
                          for (const Bytes& block : blocks) {
                              Bytes read(block.size());
                              EXPECT_EQ(archive.GetBytesLeft(), left);
                              ASSERT_EQ(archive.Read(read.data(), static_cast<UINT>(read.size())),
                                        read.size());
                              ASSERT_EQ(read, block);
                              left -= block.size();
                          }
                          BYTE more[3];
                          EXPECT_EQ(archive.Read(more, 3), 0U);
                      },
                      bufferSize),
                  0);
    }
}

TEST_F(Archive, ClosingGivesUnreadBytesBackToTheFile) {
    Bytes bytes(1000, 7);
    CMemFile file(bytes.data(), 1000);
    {
        CArchive archive(&file, CArchive::load, 512);
        BYTE read[10];
        EXPECT_EQ(archive.Read(read, 10), 10U);
        EXPECT_EQ(file.GetPosition(), 512U);
        archive.Close();
        EXPECT_EQ(archive.GetFile(), nullptr);
    }
    EXPECT_EQ(file.GetPosition(), 10U);
}

TEST_F(Archive, DestructorStoresWhatIsLeftUnlessToldNotTo) {
    CMemFile file;
    { CArchive(&file, CArchive::store) << BYTE{1}; }
    EXPECT_EQ(file.GetLength(), 1U);
    { CArchive(&file, CArchive::store | CArchive::bNoFlushOnDelete) << BYTE{1}; }
    EXPECT_EQ(file.GetLength(), 1U);
    // A file that cannot grow: the failure is not told here, but the process goes on.
    BYTE room[1] = {0};
    CMemFile fixedFile(room, 1);
    { CArchive(&fixedFile, CArchive::store) << DWORD{1}; }
    EXPECT_EQ(fixedFile.GetLength(), 1U);
}

TEST_F(Archive, WorksInTheBufferOfTheCaller) {
    BYTE buffer[256] = {};
    CMemFile file;
    {
        CArchive archive(&file, CArchive::store, 256, buffer);
        archive << BYTE{0x5A};
        EXPECT_EQ(buffer[0], 0x5A);
        archive.Close();
    }
    EXPECT_EQ(file.GetLength(), 1U);
}

TEST_F(Archive, MappedObjectsAreStoredAsReferences) {
    Link known(1);
    const Bytes bytes = storedBytes([&](CArchive& archive) {
        archive.MapObject(&known);
        archive.MapObject(&known);
        archive.MapObject(nullptr);
        archive << &known;
    });
    EXPECT_EQ(bytes, (Bytes{0x01, 0x00}));
    EXPECT_EQ(loadBytes(bytes,
                        [&](CArchive& archive) {
                            archive.MapObject(&known);
                            EXPECT_EQ(readAny(archive), &known);
                        }),
              0);
}

TEST_F(Archive, ReleasesEverythingWhenMemoryIsLacking) {
    Bytes bytes = newClass("Owner");
    append(bytes, newClass("CObArray"));
    append(bytes, Bytes{2, 0});
    append(bytes, newClass("Link", 3));
    append(bytes, Bytes{5, 0, 0});
    append(bytes, Bytes{0x05, 0x80, 6, 0, 0, 9});
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
        try {
            CArchive archive(&file, CArchive::load);
            std::unique_ptr<CObject> object(readAny(archive));
            auto* array = static_cast<CObArray*>(static_cast<Owner*>(object.get())->owned);
            delete array->GetAt(0);
            delete array->GetAt(1);
            return false;
        } catch (const std::bad_alloc&) {
            return true;
        }
    });
    EXPECT_GE(count, 8U);
}

TEST_F(Archive, FlippedBytesEndInTheArchivesException) {
    std::mt19937 random(6);
    const Bytes original = graphByHand();
    int refused = 0;
    for (int round = 0; round < 3000; ++round) {
        Bytes bytes = original;
        bytes[random() % bytes.size()] ^= static_cast<BYTE>(1U << (random() % 8U));
        if (round % 2 == 0) bytes[random() % bytes.size()] = static_cast<BYTE>(random());
        const int cause = loadBytes(bytes, [](CArchive& archive) {
            for (int i = 0; i < 4; ++i)
                readAny(archive);
        });
        ASSERT_GE(cause, 0);
        refused += cause != 0 ? 1 : 0;
        // Links do not own each other, so one that fails behind a complete next one leaves that to this test.
        while (!Link::alive.empty())
            delete *Link::alive.begin();
    }
    EXPECT_GT(refused, 500);
}

}  // namespace
