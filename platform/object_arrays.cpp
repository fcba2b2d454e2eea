// Arrays of pointers and of objects: what of them is not inline.
#include "platform/archive_graph.h"
#include "platform/module.h"
#include "velquad/framework.h"

namespace {

constexpr UINT kNoSchema = 0xFFFF;
// A reference in an archive takes no fewer bytes.
constexpr std::uint64_t kLeastReferenceSize = 2;

struct RegisterAtLoad {
    explicit RegisterAtLoad(CRuntimeClass* record) { AfxClassInit(record); }
};
VELQUAD_STATIC_OBJECT const RegisterAtLoad registerObArray(&CObArray::classCObArray);

}  // namespace

constinit CRuntimeClass CPtrArray::classCPtrArray = {"CPtrArray", sizeof(CPtrArray),      kNoSchema,
                                                     nullptr,     &CObject::GetThisClass, nullptr};

CPtrArray::CPtrArray() = default;

CPtrArray::~CPtrArray() = default;

CRuntimeClass* CPtrArray::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CPtrArray::GetThisClass() {
    return &classCPtrArray;
}

constinit CRuntimeClass CObArray::classCObArray = {
    "CObArray", sizeof(CObArray), 0, &CObArray::CreateObject, &CObject::GetThisClass, nullptr};

CObArray::CObArray() = default;

CObArray::~CObArray() = default;

CRuntimeClass* CObArray::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CObArray::GetThisClass() {
    return &classCObArray;
}

CObject* CObArray::CreateObject() {
    return new CObArray;
}

void CObArray::Serialize(CArchive& archive) {
    if (archive.IsStoring() != 0) {
        archive.WriteCount(static_cast<std::uintptr_t>(GetSize()));
        for (std::intptr_t i = 0; i < GetSize(); ++i)
            archive.WriteObject(GetAt(i));
        return;
    }
    const std::uintptr_t count = archive.ReadCount();
    if (count > archive.GetBytesLeft() / kLeastReferenceSize)
        AfxThrowArchiveException(CArchiveException::endOfFile);
    // Elements of before are not for the loaded array.
    RemoveAll();
    SetSize(static_cast<std::intptr_t>(count));
    velquad::platform::ArchiveGraph& graph = *archive.graph_;
    const bool isArchives = graph.isMaking(this);
    const std::size_t madeBefore = graph.madeCount();
    try {
        for (std::intptr_t i = 0; i < GetSize(); ++i) {
            SetAt(i, graph.readElement());
            if (!isArchives) graph.forgetMade(madeBefore);
        }
    } catch (...) {
        if (isArchives) {
            RemoveAll();
            graph.deleteMade(madeBefore);
        } else {
            graph.forgetMade(madeBefore);
        }
        throw;
    }
}
