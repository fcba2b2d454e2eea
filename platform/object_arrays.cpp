// Arrays of pointers and of objects: what of them is not inline.
#include <memory>
#include <vector>

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
    // Nobody but the archive can reach the elements of an array that it is making.
    const bool isArchives = archive.graph_->isMaking(this);
    std::vector<std::unique_ptr<CObject>> made;
    if (isArchives) made.reserve(count);
    try {
        for (std::intptr_t i = 0; i < GetSize(); ++i) {
            const std::size_t before = archive.graph_->entryCount();
            SetAt(i, archive.ReadObject(nullptr));
            if (isArchives && archive.graph_->entryCount() != before) made.emplace_back(GetAt(i));
        }
    } catch (...) {
        if (isArchives) RemoveAll();
        throw;
    }
    for (std::unique_ptr<CObject>& element : made)
        static_cast<void>(element.release());
}
