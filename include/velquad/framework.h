/// @file
/// The class framework that the exported classes stand on: objects that know their class at run time and are
/// stored in archives, points and sizes with operators, arrays that check their bounds, files in memory and on
/// disk, exceptions that are thrown by pointer, and the application object.
///
/// A host that is built on the real class framework includes its headers before this one; then nothing is
/// declared here and the framework's own classes are used. In every other program the same few names are
/// declared here and exported by the module. Which of the two holds is decided in this file alone; a module and
/// its host must agree on it.
#ifndef VELQUAD_FRAMEWORK_H
#define VELQUAD_FRAMEWORK_H

#include "velquad/platform.h"

#if !defined(__AFX_H__) && !defined(__AFXWIN_H__)

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

class CArchive;
class CDumpContext;
class CObject;

namespace velquad::platform {
class ArchiveGraph;
}

/// Flag of a class's schema: objects of any stored version are read, and `CArchive::GetObjectSchema` tells which.
inline constexpr UINT VERSIONABLE_SCHEMA = 0x80000000U;

/// The record of a class at run time. One static record exists for each class that takes part; its address is the
/// identity of the class.
struct VELQUAD_API CRuntimeClass {
    const char* m_lpszClassName;  ///< Name, ASCII; what archives store.
    int m_nObjectSize;            ///< Size of an object in bytes.
    UINT m_wSchema;               ///< Version of the archive form; 0xFFFF for none. VERSIONABLE_SCHEMA may be
                                  ///< added by a class that reads the forms of other versions, too.
    CObject* (*m_pfnCreateObject)();  ///< Makes a default object; null for a class without such a factory.
    CRuntimeClass* (*m_pfnGetBaseClass)();  ///< Gives the base class's record; null for `CObject`.
    mutable CRuntimeClass* m_pNextClass;    ///< Link of the registration list, not for callers.

    /// Makes an object of the class on the heap; the caller deletes it.
    /// @return the object, or null for a class without a factory. Memory shortage throws `std::bad_alloc`.
    CObject* CreateObject() const;

    /// Tells whether the class is `base` or derives from it, in any number of steps.
    /// @return non-zero when it does; 0 otherwise and for a null `base`.
    BOOL IsDerivedFrom(const CRuntimeClass* base) const;

    /// Finds a registered class by its exact name.
    /// @return the record, or null for an unknown or null name.
    static CRuntimeClass* FromName(const char* name);
};

/// Registers a class, so that `CRuntimeClass::FromName` and archives find it. Registering a record twice changes
/// nothing. The record must live as long as the module is loaded. A null record is ignored.
VELQUAD_API void AfxClassInit(CRuntimeClass* record);

/// Base of all objects that know their class.
///
/// The order of the virtual functions is part of the interface.
class VELQUAD_API CObject {
  public:
    /// @return the record of the object's own class, never null.
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();
    /// Stores or loads the object; the base has nothing to store.
    virtual void Serialize(CArchive& archive);
    /// A place for checks of a class on itself; empty here.
    virtual void AssertValid() const;
    /// A place for a description of the object; empty here.
    virtual void Dump(CDumpContext& context) const;

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    /// Tells whether the object's class is `record` or derives from it.
    /// @return non-zero when it does; 0 otherwise and for null.
    BOOL IsKindOf(const CRuntimeClass* record) const;

    /// @return the record of `CObject` itself.
    static CRuntimeClass* GetThisClass();

    static CRuntimeClass classCObject;  ///< Name "CObject", no schema, no factory, no base.

  protected:
    CObject() = default;
};

/// The extent of a pixel rectangle, with operators. Has the layout of `tagSIZE`.
class CSize : public tagSIZE {
  public:
    /// (0, 0).
    CSize() : tagSIZE{0, 0} {}
    CSize(int width, int height) : tagSIZE{width, height} {}
    CSize(const tagSIZE& size) : tagSIZE(size) {}  // NOLINT: meant to convert

    bool operator==(const tagSIZE& other) const { return cx == other.cx && cy == other.cy; }
    bool operator!=(const tagSIZE& other) const { return !(*this == other); }
    // Exact matches for two objects of the class, which C++20 would find ambiguous with the operands reversed.
    bool operator==(const CSize& other) const { return cx == other.cx && cy == other.cy; }
    bool operator!=(const CSize& other) const { return !(*this == other); }
    /// Sets both extents.
    void SetSize(int width, int height) { *this = CSize(width, height); }
};

/// A pixel position, with operators. Has the layout of `tagPOINT`.
///
/// Sums and differences wrap around in 32 bits.
class CPoint : public tagPOINT {
  public:
    /// (0, 0).
    CPoint() : tagPOINT{0, 0} {}
    CPoint(int newX, int newY) : tagPOINT{newX, newY} {}
    CPoint(const tagPOINT& point) : tagPOINT(point) {}  // NOLINT: meant to convert
    explicit CPoint(const tagSIZE& size) : tagPOINT{size.cx, size.cy} {}

    bool operator==(const tagPOINT& other) const { return x == other.x && y == other.y; }
    bool operator!=(const tagPOINT& other) const { return !(*this == other); }
    // Exact matches for two objects of the class, which C++20 would find ambiguous with the operands reversed.
    bool operator==(const CPoint& other) const { return x == other.x && y == other.y; }
    bool operator!=(const CPoint& other) const { return !(*this == other); }

    /// Moves the point by a vector.
    void Offset(int dx, int dy) {
        x = sum(x, dx);
        y = sum(y, dy);
    }
    void Offset(const tagPOINT& vector) {
        x = sum(x, vector.x);
        y = sum(y, vector.y);
    }
    void Offset(const tagSIZE& vector) {
        x = sum(x, vector.cx);
        y = sum(y, vector.cy);
    }
    /// Sets both coordinates.
    void SetPoint(int newX, int newY) { *this = CPoint(newX, newY); }

    CPoint& operator+=(const tagPOINT& vector) {
        Offset(vector);
        return *this;
    }
    CPoint& operator+=(const tagSIZE& vector) {
        Offset(vector);
        return *this;
    }
    CPoint& operator-=(const tagPOINT& vector) {
        x = difference(x, vector.x);
        y = difference(y, vector.y);
        return *this;
    }
    CPoint& operator-=(const tagSIZE& vector) {
        x = difference(x, vector.cx);
        y = difference(y, vector.cy);
        return *this;
    }

    /// A point moved by a vector.
    CPoint operator+(const tagPOINT& vector) const { return CPoint(*this) += vector; }
    CPoint operator+(const tagSIZE& vector) const { return CPoint(*this) += vector; }
    CPoint operator-(const tagSIZE& vector) const { return CPoint(*this) -= vector; }
    /// The vector from `other` to this point.
    CSize operator-(const tagPOINT& other) const {
        return CSize(difference(x, other.x), difference(y, other.y));
    }
    /// The point mirrored at the origin.
    CPoint operator-() const { return CPoint(difference(0, x), difference(0, y)); }

  private:
    static int sum(LONG a, LONG b) {
        return static_cast<int>(static_cast<unsigned int>(a) + static_cast<unsigned int>(b));
    }
    static int difference(LONG a, LONG b) {
        return static_cast<int>(static_cast<unsigned int>(a) - static_cast<unsigned int>(b));
    }
};

/// Base of the exceptions of the framework. They are thrown by pointer, and whoever catches one for good calls
/// `Delete` on it once:
///
///     try {
///         matComputeVoronoiMap2D(map);
///     } catch (CException* exception) {
///         exception->Delete();
///     }
class VELQUAD_API CException : public CObject {
  public:
    /// @param isAutoDelete  non-zero for an object made by `new`, which `Delete` destroys; 0 for one that stays.
    explicit CException(BOOL isAutoDelete);
    /// An object made by `new`.
    CException();
    ~CException() override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass classCException;  ///< Name "CException", no schema, no factory, base `CObject`.

    /// Ends the exception's life, in the way that suits how it was made.
    void Delete();

  private:
    BOOL isAutoDelete_;
};

/// An argument was out of range: what the bounds-checked arrays throw.
class VELQUAD_API CInvalidArgException : public CException {
  public:
    explicit CInvalidArgException(BOOL isAutoDelete);
    CInvalidArgException();
    ~CInvalidArgException() override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    /// Name "CInvalidArgException", no schema, no factory, base `CException`.
    static CRuntimeClass classCInvalidArgException;
};

/// Throws a `CInvalidArgException*`.
///
/// The object is one for the whole process, is never written and never destroyed: any number of threads may have
/// it in flight at once, its `Delete` does nothing, and no memory is needed to make it.
[[noreturn]] VELQUAD_API void AfxThrowInvalidArgException();

/// Something was asked of an object that it cannot do: storing one whose class has no archive form.
class VELQUAD_API CNotSupportedException : public CException {
  public:
    CNotSupportedException();
    ~CNotSupportedException() override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    /// Name "CNotSupportedException", no schema, no factory, base `CException`.
    static CRuntimeClass classCNotSupportedException;
};

/// Throws a `CNotSupportedException*`.
[[noreturn]] VELQUAD_API void AfxThrowNotSupportedException();

/// A file could not be opened, read or written.
class VELQUAD_API CFileException : public CException {
  public:
    enum {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    explicit CFileException(int cause = none);
    ~CFileException() override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass classCFileException;  ///< Name "CFileException", no schema, no factory.

    int m_cause;  ///< One of the values above.
};

/// Throws a `CFileException*` with a cause.
[[noreturn]] VELQUAD_API void AfxThrowFileException(int cause);

/// The bytes of an archive are not what they should be, or the archive is used against its direction.
class VELQUAD_API CArchiveException : public CException {
  public:
    enum {
        none,
        genericException,  ///< Objects nest too deep, or the archive is closed.
        readOnly,          ///< Writing to an archive that loads.
        endOfFile,         ///< The bytes end too early, or a count is larger than what they can hold.
        writeOnly,         ///< Reading from an archive that stores.
        badIndex,          ///< A reference to no object or class.
        badClass,          ///< A class that is not known, cannot be made or is not the one expected.
        badSchema          ///< Another version of a class.
    };

    explicit CArchiveException(int cause = none);
    ~CArchiveException() override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass classCArchiveException;  ///< Name "CArchiveException", no schema, no factory.

    int m_cause;  ///< One of the values above.
};

/// Throws a `CArchiveException*` with a cause.
[[noreturn]] VELQUAD_API void AfxThrowArchiveException(int cause);

/// A file on disk, without a buffer of its own; base of the other files.
///
/// Failures throw a `CFileException*`. An object belongs to one thread at a time.
class VELQUAD_API CFile : public CObject {
  public:
    enum OpenFlags {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        modeCreate = 0x1000,      ///< Make the file, and empty one that exists.
        modeNoTruncate = 0x2000,  ///< With modeCreate: keep the contents of one that exists.
        typeBinary = 0x8000       ///< Without effect: bytes are never changed.
    };
    enum SeekPosition { begin = 0, current = 1, end = 2 };

    CFile();
    /// Opens a file. @throws CFileException*  when that fails.
    CFile(const char* name, UINT flags);
    ~CFile() override;

    /// Opens a file after closing the one that is open.
    /// @param name   path, in the encoding of the system.
    /// @param flags  one of the modes, with modeCreate as needed.
    /// @return non-zero when it is open; 0 otherwise.
    virtual BOOL Open(const char* name, UINT flags);
    virtual std::uint64_t GetPosition() const;
    virtual std::uint64_t GetLength() const;
    /// Cuts the file or extends it by zeros.
    virtual void SetLength(std::uint64_t length);
    /// Moves the position. @return the new one. Throws for one before the beginning.
    virtual std::uint64_t Seek(std::int64_t offset, UINT from);
    /// @return the bytes read: fewer than `count` at the end of the file only.
    virtual UINT Read(void* buffer, UINT count);
    virtual void Write(const void* buffer, UINT count);
    virtual void Flush();
    virtual void Close();
    /// Closes the file and ignores all failures.
    virtual void Abort();

    void SeekToBegin() { Seek(0, begin); }
    std::uint64_t SeekToEnd() { return Seek(0, end); }

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass classCFile;  ///< Name "CFile", no schema, no factory, base `CObject`.

  private:
    void* stream_ = nullptr;
};

/// A file in memory. Memory shortage throws `std::bad_alloc` and leaves the file as it was.
class VELQUAD_API CMemFile : public CFile {
  public:
    /// An empty file.
    /// @param growBytes  the memory grows by multiples of this and by at least a half; 0: it cannot grow.
    explicit CMemFile(UINT growBytes = 1024);
    /// A file on the caller's memory; see `Attach`.
    CMemFile(BYTE* buffer, UINT size, UINT growBytes = 0);
    ~CMemFile() override;

    /// Works on the caller's memory instead.
    /// @param buffer     must live as long as the file uses it.
    /// @param growBytes  0: the file has `size` bytes and writing beyond them throws. Otherwise the file is empty,
    ///                   and memory of its own takes the place of `buffer` when that is full.
    void Attach(BYTE* buffer, UINT size, UINT growBytes = 0);
    /// Gives the memory up and leaves an empty file. @return the memory, which the caller frees with `free` if it is
    /// not his already; null if there is none.
    BYTE* Detach();

    BOOL Open(const char* name, UINT flags) override;  ///< Not for files in memory: 0.
    std::uint64_t GetPosition() const override;
    std::uint64_t GetLength() const override;
    void SetLength(std::uint64_t length) override;
    std::uint64_t Seek(std::int64_t offset, UINT from) override;
    UINT Read(void* buffer, UINT count) override;
    void Write(const void* buffer, UINT count) override;
    void Flush() override;
    void Close() override;  ///< Releases the memory.
    void Abort() override;  ///< Releases the memory.

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass classCMemFile;  ///< Name "CMemFile", no schema, no factory, base `CFile`.

  private:
    void reserve(std::uint64_t length);
    void release();

    BYTE* data_ = nullptr;
    std::uint64_t length_ = 0;
    std::uint64_t capacity_ = 0;
    std::uint64_t position_ = 0;
    UINT growBytes_;
    bool isOwner_ = true;
};

/// A stream of numbers and objects into a file or out of it.
///
/// Numbers are stored as their bytes, the least significant first. A count takes 2 bytes; 0xFFFF is followed by
/// 4 bytes, and 0xFFFFFFFF there by 8. An object is
///
///     00 00                                        null
///     FF FF, schema, name length, name, contents   the first one of its class
///     nn nn with the top bit set, contents         one of a class that was stored before, which has the index n
///     nn nn                                        one that was stored before with the index n
///     FF 7F, nn nn nn nn                           either of the last two with an index of 0x7FFF and more; the
///                                                  top bit again tells a class from an object
///
/// Classes and objects take indices from 1 up in the order in which they appear first, a class before its object.
/// Loading gives back the same graph: two references to one object are one object again.
///
/// **Failures** throw a `CArchiveException*`, or what the file throws. Bytes from anywhere are safe to load: what
/// makes no sense is refused, and no memory is asked for that the remaining bytes could not fill. An object whose
/// loading fails is deleted; objects nest up to 1000 deep.
/// **Threads.** An object belongs to one thread at a time.
class VELQUAD_API CArchive {
  public:
    enum Mode { store = 0, load = 1, bNoFlushOnDelete = 2, bNoByteSwap = 4 };

    /// @param file        stays the caller's, who closes it behind the archive.
    /// @param mode        `store` or `load`, with `bNoFlushOnDelete` when the destructor shall not close the archive.
    /// @param bufferSize  bytes of the buffer, at least 128.
    /// @param buffer      the caller's memory for it; null for the archive's own.
    CArchive(CFile* file, UINT mode, int bufferSize = 4096, void* buffer = nullptr);
    /// Closes the archive and ignores failures: call `Close` to hear of them.
    ~CArchive();
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    BOOL IsLoading() const { return (mode_ & load) != 0 ? 1 : 0; }
    BOOL IsStoring() const { return (mode_ & load) == 0 ? 1 : 0; }
    BOOL IsByteSwapping() const { return 0; }
    BOOL IsBufferEmpty() const { return current_ == limit_ ? 1 : 0; }
    CFile* GetFile() const { return file_; }

    /// @return the bytes read: fewer than `count` at the end of the file only.
    UINT Read(void* bytes, UINT count);
    void Write(const void* bytes, UINT count);
    /// Hands what was written to the file, or moves the file's position back to what was not read yet.
    void Flush();
    /// Flushes, and lets the file go.
    void Close();
    /// Lets the file go without flushing.
    void Abort();

    /// The bytes that are left to load: in the buffer and in the file behind it.
    std::uint64_t GetBytesLeft() const;

    std::uintptr_t ReadCount();
    void WriteCount(std::uintptr_t count);

    /// Loads an object or a reference to one.
    /// @param requested  the class or a base of it; null for any.
    /// @return the object, which belongs to the caller if it is new; null if null was stored.
    /// @throws CNotSupportedException*  when a class without a schema is requested.
    CObject* ReadObject(const CRuntimeClass* requested);
    /// Stores an object, a reference when it was stored before, or null. An object must live as long as the archive
    /// stores.
    /// @throws CNotSupportedException*  for a class without a schema.
    void WriteObject(const CObject* object);
    /// Gives an object the next index, as if it had been stored or loaded here: so references to it can be stored.
    void MapObject(const CObject* object);

    /// The stored version of the object that is being loaded, for classes with VERSIONABLE_SCHEMA.
    /// @return the version at the first call within a `Serialize`, 0xFFFFFFFF afterwards and outside.
    UINT GetObjectSchema();
    void SetObjectSchema(UINT schema) { schema_ = schema; }

    /// Stores a number as its bytes; `bool` takes 1, `wchar_t` 2.
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    CArchive& operator<<(Number number) {
        const StoredAs<Number> stored = static_cast<StoredAs<Number>>(number);
        writeBytes(&stored, sizeof stored);
        return *this;
    }
    /// Loads a number. @throws CArchiveException*  when the bytes end.
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    CArchive& operator>>(Number& number) {
        StoredAs<Number> stored{};
        readBytes(&stored, sizeof stored);
        number = static_cast<Number>(stored);
        return *this;
    }

  private:
    friend class CObArray;
    friend class velquad::platform::ArchiveGraph;

    template <class Number>
    using StoredAs =
        std::conditional_t<std::is_same_v<Number, bool>, std::uint8_t,
                           std::conditional_t<std::is_same_v<Number, wchar_t>, std::uint16_t, Number>>;

    void writeBytes(const void* bytes, UINT count) {
        if ((mode_ & load) == 0 && count <= static_cast<std::size_t>(limit_ - current_)) {
            std::memcpy(current_, bytes, count);
            current_ += count;
        } else {
            Write(bytes, count);
        }
    }
    void readBytes(void* bytes, UINT count) {
        if ((mode_ & load) != 0 && count <= static_cast<std::size_t>(limit_ - current_)) {
            std::memcpy(bytes, current_, count);
            current_ += count;
        } else {
            readAcrossBuffers(bytes, count);
        }
    }
    void readAcrossBuffers(void* bytes, UINT count);
    void requireFile() const {
        if (file_ == nullptr) AfxThrowArchiveException(CArchiveException::genericException);
    }

    // While loading, bytes not read yet lie in [current_, limit_). While storing, [start_, current_) was written and
    // limit_ is the end of the buffer.
    CFile* file_;
    UINT mode_;
    UINT schema_ = std::numeric_limits<UINT>::max();
    BYTE* start_ = nullptr;
    BYTE* current_ = nullptr;
    BYTE* limit_ = nullptr;
    std::size_t bufferSize_ = 0;
    bool isBufferOwner_ = false;
    velquad::platform::ArchiveGraph* graph_ = nullptr;  // what has an index
};

/// Stores an object; see `CArchive::WriteObject`.
VELQUAD_API CArchive& operator<<(CArchive& archive, const CObject* object);
/// Loads an object of any class; see `CArchive::ReadObject`.
VELQUAD_API CArchive& operator>>(CArchive& archive, CObject*& object);
VELQUAD_API CArchive& operator>>(CArchive& archive, const CObject*& object);

namespace velquad {

/// What all arrays of the framework have in common. Each access checks its index.
///
/// An index outside the array, a negative size and a range that leaves the array throw a `CInvalidArgException*` and
/// change nothing. Memory shortage throws `std::bad_alloc`.
template <class Type, class Argument>
class BoundedArray {
  public:
    BoundedArray() = default;
    BoundedArray(const BoundedArray&) = delete;
    BoundedArray& operator=(const BoundedArray&) = delete;
    ~BoundedArray() { release(); }

    std::intptr_t GetSize() const { return m_nSize; }
    std::intptr_t GetCount() const { return m_nSize; }
    BOOL IsEmpty() const { return m_nSize == 0 ? 1 : 0; }
    std::intptr_t GetUpperBound() const { return m_nSize - 1; }

    /// Sets the number of elements; new ones are zero or default-constructed. Size 0 releases the memory.
    /// @param growBy  elements to allocate beyond what is needed; 0: about an eighth of the size; -1: as before.
    void SetSize(std::intptr_t size, std::intptr_t growBy = -1) {
        require(size >= 0);
        if (growBy >= 0) m_nGrowBy = growBy;
        if (size == 0) {
            release();
        } else {
            if (size > m_nMaxSize) move(capacityFor(size));
            while (m_nSize > size)
                m_pData[--m_nSize].~Type();
            for (; m_nSize < size; ++m_nSize)
                ::new (static_cast<void*>(m_pData + m_nSize)) Type();
        }
    }
    /// Releases the memory behind the last element.
    void FreeExtra() {
        if (m_nSize == 0) {
            release();
        } else if (m_nSize != m_nMaxSize) {
            move(m_nSize);
        }
    }
    void RemoveAll() { SetSize(0); }

    const Type& GetAt(std::intptr_t index) const { return m_pData[checked(index)]; }
    Type& GetAt(std::intptr_t index) { return m_pData[checked(index)]; }
    void SetAt(std::intptr_t index, Argument element) { m_pData[checked(index)] = element; }
    Type& ElementAt(std::intptr_t index) { return m_pData[checked(index)]; }
    const Type& ElementAt(std::intptr_t index) const { return m_pData[checked(index)]; }
    const Type& operator[](std::intptr_t index) const { return m_pData[checked(index)]; }
    Type& operator[](std::intptr_t index) { return m_pData[checked(index)]; }
    const Type* GetData() const { return m_pData; }
    Type* GetData() { return m_pData; }

    /// Stores an element and stretches the array when it lies behind the end.
    void SetAtGrow(std::intptr_t index, Argument element) {
        require(index >= 0 && index < std::numeric_limits<std::intptr_t>::max());
        Type copy(element);  // `element` may be one of the array
        if (index >= m_nSize) SetSize(index + 1);
        m_pData[index] = std::move(copy);
    }
    /// @return the index of the new element.
    std::intptr_t Add(Argument element) {
        const std::intptr_t index = m_nSize;
        SetAtGrow(index, element);
        return index;
    }
    /// @return the index of the first appended element. The array itself may be appended.
    std::intptr_t Append(const BoundedArray& other) {
        const std::intptr_t first = m_nSize;
        const std::intptr_t count = other.m_nSize;
        SetSize(first + count);
        for (std::intptr_t i = 0; i < count; ++i)
            m_pData[first + i] = other.m_pData[i];
        return first;
    }
    void Copy(const BoundedArray& other) {
        if (this == &other) return;
        SetSize(other.m_nSize);
        for (std::intptr_t i = 0; i < m_nSize; ++i)
            m_pData[i] = other.m_pData[i];
    }
    /// Inserts copies of an element; behind the end, the array is stretched.
    void InsertAt(std::intptr_t index, Argument element, std::intptr_t count = 1) {
        const std::intptr_t oldSize = m_nSize;
        const std::intptr_t end = index < oldSize ? oldSize : index;
        require(index >= 0 && count >= 0 && count <= std::numeric_limits<std::intptr_t>::max() - end);
        const Type copy(element);
        SetSize(end + count);
        for (std::intptr_t i = oldSize; i-- > index;)
            m_pData[i + count] = std::move(m_pData[i]);
        for (std::intptr_t i = 0; i < count; ++i)
            m_pData[index + i] = copy;
    }
    void RemoveAt(std::intptr_t index, std::intptr_t count = 1) {
        require(index >= 0 && count >= 0 && index <= m_nSize && count <= m_nSize - index);
        for (std::intptr_t i = index; i + count < m_nSize; ++i)
            m_pData[i] = std::move(m_pData[i + count]);
        for (std::intptr_t i = 0; i < count; ++i)
            m_pData[--m_nSize].~Type();
    }

  private:
    static void require(bool condition) {
        if (!condition) AfxThrowInvalidArgException();
    }
    std::intptr_t checked(std::intptr_t index) const {
        require(index >= 0 && index < m_nSize);
        return index;
    }
    std::intptr_t capacityFor(std::intptr_t size) const {
        if (m_pData == nullptr) return size;
        std::intptr_t growBy = m_nGrowBy;
        if (growBy == 0) {
            growBy = m_nSize / 8;
            growBy = growBy < 4 ? 4 : growBy;
            growBy = growBy > 1024 ? 1024 : growBy;
        }
        const bool isNear = size - m_nMaxSize < growBy;
        return isNear && m_nMaxSize <= std::numeric_limits<std::intptr_t>::max() - growBy
                   ? m_nMaxSize + growBy
                   : size;
    }
    // Moves the elements to a block with another capacity. NOLINTBEGIN(bugprone-sizeof-expression)
    void move(std::intptr_t capacity) {
        if (static_cast<std::size_t>(capacity) > std::numeric_limits<std::size_t>::max() / sizeof(Type) / 2)
            throw std::bad_alloc();
        // Ends the new block when an element cannot be moved.
        struct Block {
            void* memory;
            ~Block() { ::operator delete(memory); }
        } block{::operator new(static_cast<std::size_t>(capacity) * sizeof(Type))};
        Type* const data = static_cast<Type*>(block.memory);
        std::uninitialized_move(m_pData, m_pData + m_nSize, data);
        block.memory = nullptr;
        const std::intptr_t size = m_nSize;
        release();
        m_pData = data;
        m_nSize = size;
        m_nMaxSize = capacity;
    }  // NOLINTEND(bugprone-sizeof-expression)
    void release() {
        std::destroy(m_pData, m_pData + m_nSize);
        ::operator delete(static_cast<void*>(m_pData));
        m_pData = nullptr;
        m_nSize = 0;
        m_nMaxSize = 0;
    }

    Type* m_pData = nullptr;
    std::intptr_t m_nSize = 0;
    std::intptr_t m_nMaxSize = 0;
    std::intptr_t m_nGrowBy = 0;
};

}  // namespace velquad

/// An array of elements of any type.
template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray : public CObject, public velquad::BoundedArray<TYPE, ARG_TYPE> {};

/// An array of pointers; it owns none of them.
class VELQUAD_API CPtrArray : public CObject, public velquad::BoundedArray<void*, void*> {
  public:
    CPtrArray();
    ~CPtrArray() override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass classCPtrArray;  ///< Name "CPtrArray", no schema, no factory, base `CObject`.
};

/// An array of pointers to objects; it owns none of them.
class VELQUAD_API CObArray : public CObject, public velquad::BoundedArray<CObject*, CObject*> {
  public:
    CObArray();
    ~CObArray() override;

    /// Stores or loads the number of elements and each as `WriteObject` and `ReadObject` do. When loading fails, the
    /// elements that were read stay for the caller to delete, and the others are null; but an array that the archive
    /// itself was making takes the objects along that were made for it.
    void Serialize(CArchive& archive) override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CObject* CreateObject();
    static CRuntimeClass classCObArray;  ///< Name "CObArray", schema 0, base `CObject`. Registered at load.
};

/// An array of pointers with their type.
/// @tparam BASE_CLASS  `CPtrArray` or `CObArray`.
/// @tparam TYPE        a pointer type.
template <class BASE_CLASS, class TYPE>
class CTypedPtrArray : public BASE_CLASS {
  public:
    TYPE GetAt(std::intptr_t index) const { return static_cast<TYPE>(BASE_CLASS::GetAt(index)); }
    TYPE& ElementAt(std::intptr_t index) { return reinterpret_cast<TYPE&>(BASE_CLASS::ElementAt(index)); }
    TYPE operator[](std::intptr_t index) const { return static_cast<TYPE>(BASE_CLASS::GetAt(index)); }
    TYPE& operator[](std::intptr_t index) { return ElementAt(index); }
    void SetAt(std::intptr_t index, TYPE element) { BASE_CLASS::SetAt(index, element); }
    void SetAtGrow(std::intptr_t index, TYPE element) { BASE_CLASS::SetAtGrow(index, element); }
    std::intptr_t Add(TYPE element) { return BASE_CLASS::Add(element); }
    void InsertAt(std::intptr_t index, TYPE element, std::intptr_t count = 1) {
        BASE_CLASS::InsertAt(index, element, count);
    }
};

/// The running application, as far as the library knows it: whom it tells that the user has to wait.
///
/// A host that wants to show a wait cursor derives from this class, overrides `DoWaitCursor` and constructs one
/// object; from then on until it is destroyed that object is the running application.
class VELQUAD_API CWinApp : public CObject {
  public:
    /// Makes this object the running application.
    CWinApp();
    /// Makes the module's own object the running application again, if it is this one.
    ~CWinApp() override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass classCWinApp;  ///< Name "CWinApp", no schema, no factory, base `CObject`.

    /// Starts a wait; waits nest. Calls `DoWaitCursor(1)`.
    void BeginWaitCursor();
    /// Ends the innermost wait. Calls `DoWaitCursor(-1)`.
    void EndWaitCursor();
    /// Shows the wait cursor again if a wait is on. Calls `DoWaitCursor(0)`.
    void RestoreWaitCursor();

    /// Counts the waits. An override that shows a cursor calls this one too. May be called from any thread.
    /// @param code  1 to begin, -1 to end, 0 to restore; an end without a beginning is ignored.
    virtual void DoWaitCursor(int code);

    /// @return how many waits have begun and not ended.
    int GetWaitCursorCount() const;

  private:
    struct ModuleOwn {};
    explicit CWinApp(ModuleOwn);
    friend VELQUAD_API CWinApp* AfxGetApp();

    std::atomic<int> waitCursorCount_{0};
};

/// @return the running application: the host's object, or the module's own as long as there is none. Never null.
VELQUAD_API CWinApp* AfxGetApp();

/// Keeps the running application in a wait for the length of a scope.
class CWaitCursor {
  public:
    CWaitCursor() : application_(AfxGetApp()) { application_->BeginWaitCursor(); }
    ~CWaitCursor() { application_->EndWaitCursor(); }
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;
    /// Shows the wait cursor again, after something else was shown.
    void Restore() { application_->RestoreWaitCursor(); }

  private:
    CWinApp* application_;
};

#endif  // stand-ins

#endif  // VELQUAD_FRAMEWORK_H
