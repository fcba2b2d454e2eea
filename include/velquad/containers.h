/// @file
/// Serialisable arrays and matrices of doubles.
///
/// **Indices** count from 0 and are not tested, unless told otherwise.
/// **Failures.** Memory shortage throws `std::bad_alloc` and leaves the object as it was.
/// **Threads.** An object belongs to one thread at a time; getters that are not `const` write to it.
#ifndef VELQUAD_CONTAINERS_H
#define VELQUAD_CONTAINERS_H

#include "velquad/framework.h"
#include "velquad/platform.h"
#include "velquad/types.h"

namespace velquad::containers {
struct ArrayMemory;
}

/// A growing array of doubles that knows its class at run time and is stored in archives.
///
///   (1) Elements that come into the array are 0.0.
///   (2) The first allocation takes just the size asked for. An array that must grow takes `growBy` elements more
///       than it had, or all that is needed when that is more. With `growBy` 0 the step is an eighth of the size, at
///       least 4 and at most 1024: tell large sizes by `SetSize` first.
///   (3) Shrinking keeps the memory, size 0 releases it.
///
/// In an archive it is its size as a count, then the bytes of its elements.
class VELQUAD_API CDoubleArray : public CObject {
  public:
    /// An empty array.
    CDoubleArray();
    /// An empty array, then `SetSize(newSize, growBy)`.
    CDoubleArray(int newSize, int growBy);
    ~CDoubleArray() override;

    int GetSize() const;
    /// @return the last valid index, -1 for an empty array.
    int GetUpperBound() const;
    /// Sets the size.
    /// @param growBy  how much to grow by from now on; -1 leaves that as it is.
    /// @throws std::bad_array_new_length  for a negative size, with the array as it was.
    void SetSize(int newSize, int growBy = -1);
    /// Releases the memory behind the last element.
    void FreeExtra();
    /// Empties the array and releases its memory.
    void RemoveAll();

    double GetAt(int index) const;
    double operator[](int index) const;
    double& ElementAt(int index);
    double& operator[](int index);
    void SetAt(int index, double value);
    /// Stores a value; an index behind the end stretches the array.
    void SetAtGrow(int index, double value);
    /// @return the first element's address, null for an empty array; valid until the size changes.
    const double* GetData() const;
    double* GetData();

    /// Stores a value behind the last element. @return its index.
    int Add(double value);
    /// Stores the elements of another array, or its own, behind the last element. @return the size before.
    int Append(const CDoubleArray& other);
    /// Becomes a copy of another array; its own growth and memory stay.
    void Copy(const CDoubleArray& other);
    /// Inserts `count` times a value; behind the end the array is stretched and the elements between are 0.0. A
    /// negative index or count changes nothing.
    void InsertAt(int index, double value, int count = 1);
    /// Inserts the elements of another array, or its own as they were; an empty one changes nothing.
    void InsertAt(int index, CDoubleArray* other);
    /// Removes `count` elements; the memory stays. A range that leaves the array changes nothing.
    void RemoveAt(int index, int count = 1);

    /// Stores the array or loads it.
    /// @throws CArchiveException*  when the archive ends too early. The array then has the stored size and what was
    ///                             read of its elements; but it stays as it was when the stored size takes more than
    ///                             64 MB and what is left of the archive could not fill it. Storing more than
    ///                             4 GB writes nothing and throws as well.
    void Serialize(CArchive& archive) override;

    CRuntimeClass* GetRuntimeClass() const override;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass* _GetBaseClass();
    /// @return a new empty array, the caller's.
    static CObject* CreateObject();
    static const CRuntimeClass classCDoubleArray;  ///< Name "CDoubleArray", schema 0. Registered at load.

  private:
    friend struct velquad::containers::ArrayMemory;

    double* data = nullptr;
    int size = 0;
    int capacity = 0;
    int growBy = 0;
};

/// Loads an array that was stored as an object, with its class ahead of the content.
/// @param result  the array, the caller's if it is new; null if null was stored.
/// @throws CArchiveException*  for anything else than an array, among others.
VELQUAD_API CArchive& operator>>(CArchive& archive, CDoubleArray*& result);

#if defined(__GNUC__)
// Nobody deletes a matrix through a base: the class has none.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// A matrix of doubles, row by row in one array, with a table of row pointers on demand.
///
/// The number of rows is not stored: it is the number of elements divided by the number of columns, and 0 without
/// columns.
class VELQUAD_API CDoubleMatrix {
  public:
    /// An empty matrix.
    CDoubleMatrix();
    CDoubleMatrix(int rows, int columns);
    /// @param size  cx columns and cy rows.
    CDoubleMatrix(const CSize& size);
    CDoubleMatrix(const CDoubleMatrix& other);
    const CDoubleMatrix& operator=(const CDoubleMatrix& other);  // NOLINT: const as all callers know it
    ~CDoubleMatrix();

    /// Sets the size. Values keep their order row by row, not their row and column; new ones are 0.0.
    void SetSize(int rows, int columns);
    /// @param size  cx columns and cy rows.
    void SetSize(const CSize& size);
    /// @return cx columns and cy rows, (0, 0) without columns.
    CSize GetSize() const;
    /// @return the length of a row: the number of columns.
    int GetRowSize() const;
    /// @return the length of a column: the number of rows.
    int GetColumnSize() const;
    /// Becomes a copy of another matrix.
    void Copy(const CDoubleMatrix& other);

    double GetAt(int row, int column) const;
    double operator()(int row, int column) const;
    double& ElementAt(int row, int column);
    double& operator()(int row, int column);
    void SetAt(int row, int column, double value);
    /// @return the first element of a row.
    double* GetRow(int row);
    const double* GetRow(int row) const;
    /// @return the first element, null for an empty matrix.
    double* GetData();
    const double* GetData() const;

    /// Builds a table of row pointers.
    /// @param rowOffset, columnOffset  indices by which the first row and the first column are addressed; 1 and 1
    ///                                 make the tables that `matGaussJordanElimination` takes.
    /// @return the table; valid until the next call, `SetSize` or `Copy`.
    /// @throws CInvalidArgException*  for a matrix without rows.
    double** GetMatrixPtr(int rowOffset, int columnOffset);

    virtual CRuntimeClass* GetRuntimeClass() const;
    static CRuntimeClass* GetThisClass();
    static CRuntimeClass* _GetBaseClass();
    static const CRuntimeClass classCDoubleMatrix;  ///< Name "CDoubleMatrix", no schema, no factory.

  private:
    void CheckMatrixPtr();

    CDoubleArray values;
    CTypedPtrArray<CPtrArray, double*> rowPointers;
    int columns = 0;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

#endif  // VELQUAD_CONTAINERS_H
