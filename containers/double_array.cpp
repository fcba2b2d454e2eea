// The growing array of doubles.
#include <cstddef>
#include <cstring>
#include <new>

#include "frame/convert.h"
#include "platform/module.h"
#include "velquad/containers.h"

namespace {

constexpr int kSlackDivisor = 8;
constexpr int kLeastSlack = 4;
constexpr int kMostSlack = 1024;
// Arrays up to this many bytes take the size that an archive tells even when its bytes end before; beyond it, the
// archive must be able to fill the memory that it asks for.
constexpr std::uint64_t kUnquestionedBytes = std::uint64_t{64} << 20;
// One call of the archive takes fewer bytes than 32 bits can count.
constexpr std::uint64_t kMostArchiveBytes = 0xFFFFFFFFU;

struct RegisterAtLoad {
    explicit RegisterAtLoad(CRuntimeClass* record) { AfxClassInit(record); }
};
VELQUAD_STATIC_OBJECT const RegisterAtLoad registerDoubleArray(CDoubleArray::GetThisClass());

// A negative count fails as one that no memory holds.
double* allocate(int count) {
    if (count < 0) throw std::bad_array_new_length();
    return new double[static_cast<std::size_t>(count)];
}

// An array without elements may have no memory.
void copy(double* to, const double* from, int count) {
    if (count > 0 && to != nullptr && from != nullptr)
        std::memmove(to, from, static_cast<std::size_t>(count) * sizeof(double));
}

void clear(double* first, int count) {
    if (count > 0 && first != nullptr)
        std::memset(first, 0, static_cast<std::size_t>(count) * sizeof(double));
}

int automaticSlack(int size) {
    const int slack = size / kSlackDivisor;
    if (slack < kLeastSlack) return kLeastSlack;
    return slack > kMostSlack ? kMostSlack : slack;
}

}  // namespace

namespace velquad::containers {

// The memory of an array. No member of the class itself, as all of those are exported.
struct ArrayMemory {
    // Elements that come in are cleared, unless the caller overwrites them at once.
    static void resize(CDoubleArray& array, int newSize, int newGrowBy, bool isCleared) {
        if (newSize < 0) throw std::bad_array_new_length();
        const int step = newGrowBy != -1 ? newGrowBy : array.growBy;
        if (newSize == 0) {
            delete[] array.data;
            array.data = nullptr;
            array.size = 0;
            array.capacity = 0;
            array.growBy = step;
            return;
        }
        if (newSize > array.capacity) {
            const int slack = step == 0 ? automaticSlack(array.size) : step;
            const int wanted = velquad::frame::wrapAdd(array.capacity, slack);
            const int newCapacity = array.data != nullptr && newSize < wanted ? wanted : newSize;
            double* const block = allocate(newCapacity);
            copy(block, array.data, array.size);
            delete[] array.data;
            array.data = block;
            array.capacity = newCapacity;
        }
        if (isCleared) clear(array.data + array.size, newSize - array.size);
        array.size = newSize;
        array.growBy = step;
    }

    // Makes room for `count` elements at `index`, whatever they hold.
    static void openGap(CDoubleArray& array, int index, int count) {
        const int oldSize = array.size;
        if (index < oldSize) {
            resize(array, velquad::frame::wrapAdd(oldSize, count), -1, true);
            copy(array.data + index + count, array.data + index, oldSize - index);
        } else {
            resize(array, velquad::frame::wrapAdd(index, count), -1, true);
        }
    }
};

}  // namespace velquad::containers

using velquad::containers::ArrayMemory;

constinit const CRuntimeClass CDoubleArray::classCDoubleArray = {
    "CDoubleArray", sizeof(CDoubleArray), 0, &CDoubleArray::CreateObject, &CDoubleArray::_GetBaseClass,
    nullptr};

CDoubleArray::CDoubleArray() = default;

CDoubleArray::CDoubleArray(int newSize, int newGrowBy) {
    static_assert(sizeof(CDoubleArray) == 32);
    ArrayMemory::resize(*this, newSize, newGrowBy, true);
}

CDoubleArray::~CDoubleArray() {
    delete[] data;
}

int CDoubleArray::GetSize() const {
    return size;
}

int CDoubleArray::GetUpperBound() const {
    return size - 1;
}

void CDoubleArray::SetSize(int newSize, int newGrowBy) {
    ArrayMemory::resize(*this, newSize, newGrowBy, true);
}

void CDoubleArray::FreeExtra() {
    if (size == capacity) return;
    double* const block = size == 0 ? nullptr : allocate(size);
    copy(block, data, size);
    delete[] data;
    data = block;
    capacity = size;
}

void CDoubleArray::RemoveAll() {
    ArrayMemory::resize(*this, 0, -1, true);
}

double CDoubleArray::GetAt(int index) const {
    return data[index];
}

double CDoubleArray::operator[](int index) const {
    return data[index];
}

double& CDoubleArray::ElementAt(int index) {
    return data[index];
}

double& CDoubleArray::operator[](int index) {
    return data[index];
}

void CDoubleArray::SetAt(int index, double value) {
    data[index] = value;
}

void CDoubleArray::SetAtGrow(int index, double value) {
    if (index >= size) ArrayMemory::resize(*this, velquad::frame::wrapAdd(index, 1), -1, true);
    data[index] = value;  // NOLINT(clang-analyzer-core.NullDereference): not null with an element
}

const double* CDoubleArray::GetData() const {
    return data;
}

double* CDoubleArray::GetData() {
    return data;
}

int CDoubleArray::Add(double value) {
    const int index = size;
    ArrayMemory::resize(*this, velquad::frame::wrapAdd(index, 1), -1, false);
    data[index] = value;  // NOLINT(clang-analyzer-core.NullDereference): not null with an element
    return index;
}

int CDoubleArray::Append(const CDoubleArray& other) {
    const int oldSize = size;
    const int count = other.size;
    ArrayMemory::resize(*this, velquad::frame::wrapAdd(oldSize, count), -1, false);
    copy(data + oldSize, other.data, count);
    return oldSize;
}

void CDoubleArray::Copy(const CDoubleArray& other) {
    ArrayMemory::resize(*this, other.size, -1, false);
    copy(data, other.data, other.size);
}

void CDoubleArray::InsertAt(int index, double value, int count) {
    if (index < 0 || count < 0) return;
    ArrayMemory::openGap(*this, index, count);
    for (int i = 0; i < count; ++i)
        data[index + i] = value;  // NOLINT(clang-analyzer-core.NullDereference): not null with an element
}

void CDoubleArray::InsertAt(int index, CDoubleArray* other) {
    const int count = other->size;
    if (count <= 0 || index < 0) return;
    if (other != this) {
        ArrayMemory::openGap(*this, index, count);
        copy(data + index, other->data, count);
        return;
    }
    // The gap stands between what was before `index` and what was behind it; behind the end, both are one.
    const int head = index < count ? index : count;
    ArrayMemory::openGap(*this, index, count);
    copy(data + index, data, head);
    copy(data + index + head, data + index + count, count - head);
}

void CDoubleArray::RemoveAt(int index, int count) {
    if (index < 0 || count < 0 || index > size || count > size - index) return;
    const int behind = size - index;
    if (behind != count) copy(data + index, data + index + count, behind - count);
    size -= count;
}

void CDoubleArray::Serialize(CArchive& archive) {
    if (archive.IsStoring() != 0) {
        const std::uint64_t bytes = static_cast<std::uint64_t>(size) * sizeof(double);
        if (bytes > kMostArchiveBytes) AfxThrowArchiveException(CArchiveException::genericException);
        archive.WriteCount(static_cast<std::uintptr_t>(size));
        archive.Write(data, static_cast<UINT>(bytes));
        return;
    }
    const std::uint64_t count = archive.ReadCount();
    if (count > kMostArchiveBytes / sizeof(double)) AfxThrowArchiveException(CArchiveException::endOfFile);
    const std::uint64_t bytes = count * sizeof(double);
    if (bytes > kUnquestionedBytes && bytes > archive.GetBytesLeft())
        AfxThrowArchiveException(CArchiveException::endOfFile);
    const int oldSize = size;
    ArrayMemory::resize(*this, static_cast<int>(count), -1, false);
    UINT read = 0;
    try {
        read = archive.Read(data, static_cast<UINT>(bytes));
    } catch (...) {
        clear(data + oldSize, size - oldSize);
        throw;
    }
    if (read == bytes) return;
    // Elements that are new and were not read are 0.0; one that was read in part keeps what was read.
    const int touched = static_cast<int>((read + sizeof(double) - 1) / sizeof(double));
    const int first = touched > oldSize ? touched : oldSize;
    if (touched > oldSize && read % sizeof(double) != 0) {
        // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): not null where something was read
        std::memset(reinterpret_cast<unsigned char*>(data) + read, 0, sizeof(double) - read % sizeof(double));
    }
    clear(data + first, size - first);
    AfxThrowArchiveException(CArchiveException::endOfFile);
}

CRuntimeClass* CDoubleArray::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CDoubleArray::GetThisClass() {
    // Registering changes the link of the list alone, which may change in a constant record.
    return const_cast<CRuntimeClass*>(&classCDoubleArray);
}

CRuntimeClass* CDoubleArray::_GetBaseClass() {
    return CObject::GetThisClass();
}

CObject* CDoubleArray::CreateObject() {
    return new CDoubleArray;
}

CArchive& operator>>(CArchive& archive, CDoubleArray*& result) {
    result = static_cast<CDoubleArray*>(archive.ReadObject(CDoubleArray::GetThisClass()));
    return archive;
}
