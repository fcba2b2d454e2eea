// The matrix of doubles over one array.
#include <cstddef>

#include "frame/convert.h"
#include "velquad/containers.h"

namespace {

constexpr UINT kNoSchema = 0xFFFF;

int indexOf(int row, int columns, int column) {
    return velquad::frame::wrapAdd(velquad::frame::wrapMul(row, columns), column);
}

}  // namespace

constinit const CRuntimeClass CDoubleMatrix::classCDoubleMatrix = {
    "CDoubleMatrix", sizeof(CDoubleMatrix), kNoSchema, nullptr, &CDoubleMatrix::_GetBaseClass, nullptr};

CDoubleMatrix::CDoubleMatrix() = default;

CDoubleMatrix::CDoubleMatrix(int rows, int newColumns) {
    static_assert(sizeof(CDoubleMatrix) == 88);
    SetSize(rows, newColumns);
}

CDoubleMatrix::CDoubleMatrix(const CSize& size) {
    SetSize(size.cy, size.cx);
}

CDoubleMatrix::CDoubleMatrix(const CDoubleMatrix& other) {
    Copy(other);
}

const CDoubleMatrix& CDoubleMatrix::operator=(const CDoubleMatrix& other) {
    Copy(other);
    return *this;
}

CDoubleMatrix::~CDoubleMatrix() = default;

void CDoubleMatrix::SetSize(int rows, int newColumns) {
    values.SetSize(velquad::frame::wrapMul(newColumns, rows), -1);
    columns = newColumns;
    rowPointers.RemoveAll();
}

void CDoubleMatrix::SetSize(const CSize& size) {
    SetSize(size.cy, size.cx);
}

CSize CDoubleMatrix::GetSize() const {
    return columns < 1 ? CSize(0, 0) : CSize(columns, GetColumnSize());
}

int CDoubleMatrix::GetRowSize() const {
    return columns;
}

int CDoubleMatrix::GetColumnSize() const {
    return columns < 1 ? 0 : values.GetSize() / columns;
}

void CDoubleMatrix::Copy(const CDoubleMatrix& other) {
    if (this == &other) return;
    values.Copy(other.values);
    columns = other.columns;
    rowPointers.RemoveAll();
}

double CDoubleMatrix::GetAt(int row, int column) const {
    return values.GetAt(indexOf(row, columns, column));
}

double CDoubleMatrix::operator()(int row, int column) const {
    return values.GetAt(indexOf(row, columns, column));
}

double& CDoubleMatrix::ElementAt(int row, int column) {
    return values.ElementAt(indexOf(row, columns, column));
}

double& CDoubleMatrix::operator()(int row, int column) {
    return values.ElementAt(indexOf(row, columns, column));
}

void CDoubleMatrix::SetAt(int row, int column, double value) {
    values.SetAt(indexOf(row, columns, column), value);
}

double* CDoubleMatrix::GetRow(int row) {
    return values.GetData() + velquad::frame::wrapMul(row, columns);
}

const double* CDoubleMatrix::GetRow(int row) const {
    return values.GetData() + velquad::frame::wrapMul(row, columns);
}

double* CDoubleMatrix::GetData() {
    return values.GetData();
}

const double* CDoubleMatrix::GetData() const {
    return values.GetData();
}

void CDoubleMatrix::CheckMatrixPtr() {
    const int rows = GetColumnSize();
    rowPointers.SetSize(rows);
    if (rowPointers.GetSize() == 0) AfxThrowInvalidArgException();
    double* const first = values.GetData();
    for (int row = 0; row < rows; ++row)
        rowPointers[row] = first + static_cast<std::ptrdiff_t>(row) * columns;
}

double** CDoubleMatrix::GetMatrixPtr(int rowOffset, int columnOffset) {
    CheckMatrixPtr();
    const int rows = GetColumnSize();
    if (columnOffset != 0) {
        for (int row = 0; row < rows; ++row)
            rowPointers[row] -= columnOffset;
    }
    return &rowPointers[0] - rowOffset;
}

CRuntimeClass* CDoubleMatrix::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CDoubleMatrix::GetThisClass() {
    return const_cast<CRuntimeClass*>(&classCDoubleMatrix);
}

CRuntimeClass* CDoubleMatrix::_GetBaseClass() {
    return CObject::GetThisClass();
}
