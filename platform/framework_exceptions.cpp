// The exceptions that tell of archives, files and things not supported.
#include "velquad/framework.h"

namespace {

constexpr UINT kNoSchema = 0xFFFF;

constexpr CRuntimeClass exceptionRecord(const char* name, int size) {
    return {name, size, kNoSchema, nullptr, &CException::GetThisClass, nullptr};
}

}  // namespace

constinit CRuntimeClass CNotSupportedException::classCNotSupportedException =
    exceptionRecord("CNotSupportedException", sizeof(CNotSupportedException));

CNotSupportedException::CNotSupportedException() = default;

CNotSupportedException::~CNotSupportedException() = default;

CRuntimeClass* CNotSupportedException::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CNotSupportedException::GetThisClass() {
    return &classCNotSupportedException;
}

void AfxThrowNotSupportedException() {
    throw new CNotSupportedException;
}

constinit CRuntimeClass CFileException::classCFileException =
    exceptionRecord("CFileException", sizeof(CFileException));

CFileException::CFileException(int cause) : m_cause(cause) {}

CFileException::~CFileException() = default;

CRuntimeClass* CFileException::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CFileException::GetThisClass() {
    return &classCFileException;
}

void AfxThrowFileException(int cause) {
    throw new CFileException(cause);
}

constinit CRuntimeClass CArchiveException::classCArchiveException =
    exceptionRecord("CArchiveException", sizeof(CArchiveException));

CArchiveException::CArchiveException(int cause) : m_cause(cause) {}

CArchiveException::~CArchiveException() = default;

CRuntimeClass* CArchiveException::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CArchiveException::GetThisClass() {
    return &classCArchiveException;
}

void AfxThrowArchiveException(int cause) {
    throw new CArchiveException(cause);
}
