// The class framework's stand-ins: what of them is not inline.

#include "velquad/framework.h"

#include <atomic>
#include <new>

namespace {

constexpr UINT kNoSchema = 0xFFFF;

// Room for an object that is constructed at its first use and never destroyed, so that it is there for whatever
// other static objects still do at the end of the process.
template <class T>
struct Room {
    alignas(T) unsigned char bytes[sizeof(T)];
};

constinit std::atomic<CWinApp*> hostApplication = nullptr;

}  // namespace

CObject* CRuntimeClass::CreateObject() const {
    return m_pfnCreateObject == nullptr ? nullptr : m_pfnCreateObject();
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const {
    if (base == nullptr) return 0;
    const CRuntimeClass* record = this;
    while (record != base) {
        if (record->m_pfnGetBaseClass == nullptr) return 0;
        record = record->m_pfnGetBaseClass();
        if (record == nullptr) return 0;
    }
    return 1;
}

constinit CRuntimeClass CObject::classCObject = {"CObject", sizeof(CObject), kNoSchema,
                                                 nullptr,   nullptr,         nullptr};

CObject::~CObject() = default;

CRuntimeClass* CObject::GetRuntimeClass() const {
    return GetThisClass();
}

void CObject::Serialize(CArchive& /*archive*/) {}

void CObject::AssertValid() const {}

void CObject::Dump(CDumpContext& /*context*/) const {}

BOOL CObject::IsKindOf(const CRuntimeClass* record) const {
    return GetRuntimeClass()->IsDerivedFrom(record);
}

CRuntimeClass* CObject::GetThisClass() {
    return &classCObject;
}

constinit CRuntimeClass CException::classCException = {"CException", sizeof(CException),     kNoSchema,
                                                       nullptr,      &CObject::GetThisClass, nullptr};

CException::CException(BOOL isAutoDelete) : isAutoDelete_(isAutoDelete) {}

CException::CException() : CException(TRUE) {}

CException::~CException() = default;

CRuntimeClass* CException::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CException::GetThisClass() {
    return &classCException;
}

void CException::Delete() {
    if (isAutoDelete_ != 0) delete this;
}

constinit CRuntimeClass CInvalidArgException::classCInvalidArgException = {"CInvalidArgException",
                                                                           sizeof(CInvalidArgException),
                                                                           kNoSchema,
                                                                           nullptr,
                                                                           &CException::GetThisClass,
                                                                           nullptr};

CInvalidArgException::CInvalidArgException(BOOL isAutoDelete) : CException(isAutoDelete) {}

CInvalidArgException::CInvalidArgException() = default;

CInvalidArgException::~CInvalidArgException() = default;

CRuntimeClass* CInvalidArgException::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CInvalidArgException::GetThisClass() {
    return &classCInvalidArgException;
}

void AfxThrowInvalidArgException() {
    static Room<CInvalidArgException> room;
    static CInvalidArgException* const exception = new (room.bytes) CInvalidArgException(FALSE);
    throw exception;
}

constinit CRuntimeClass CWinApp::classCWinApp = {"CWinApp", sizeof(CWinApp),        kNoSchema,
                                                 nullptr,   &CObject::GetThisClass, nullptr};

CWinApp::CWinApp() {
    hostApplication.store(this, std::memory_order_release);
}

CWinApp::CWinApp(ModuleOwn) {}

CWinApp::~CWinApp() {
    CWinApp* expected = this;
    hostApplication.compare_exchange_strong(expected, nullptr, std::memory_order_acq_rel);
}

CRuntimeClass* CWinApp::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CWinApp::GetThisClass() {
    return &classCWinApp;
}

void CWinApp::BeginWaitCursor() {
    DoWaitCursor(1);
}

void CWinApp::EndWaitCursor() {
    DoWaitCursor(-1);
}

void CWinApp::RestoreWaitCursor() {
    DoWaitCursor(0);
}

void CWinApp::DoWaitCursor(int code) {
    if (code == 0) return;
    int count = waitCursorCount_.load(std::memory_order_relaxed);
    while (!waitCursorCount_.compare_exchange_weak(count, count + code < 0 ? 0 : count + code,
                                                   std::memory_order_relaxed)) {
    }
}

int CWinApp::GetWaitCursorCount() const {
    return waitCursorCount_.load(std::memory_order_relaxed);
}

CWinApp* AfxGetApp() {
    CWinApp* host = hostApplication.load(std::memory_order_acquire);
    if (host != nullptr) return host;
    static Room<CWinApp> room;
    static CWinApp* const own = new (room.bytes) CWinApp(CWinApp::ModuleOwn{});
    return own;
}
