// Archives: numbers and graphs of objects as bytes.
//
// Loading trusts nothing. Each index, tag and count is checked before it is used; memory grows with the bytes that
// were really read; the depth of nested objects is bounded, as each level takes stack.
#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "platform/archive_graph.h"
#include "velquad/framework.h"

namespace {

constexpr WORD kNullTag = 0;
constexpr WORD kNewClassTag = 0xFFFF;
constexpr WORD kClassTag = 0x8000;
constexpr WORD kBigTag = 0x7FFF;  // a 32-bit tag follows
constexpr DWORD kBigClassTag = 0x80000000U;
constexpr DWORD kLastIndex = 0x3FFFFFFE;
constexpr std::size_t kLongestName = 63;
constexpr std::size_t kSmallestBuffer = 128;
constexpr int kDeepestNesting = 1000;
constexpr UINT kNoSchema = 0xFFFF;
constexpr UINT kNoObjectSchema = std::numeric_limits<UINT>::max();

[[noreturn]] void fail(int cause) {
    AfxThrowArchiveException(cause);
}

// Counts a level of nested objects for the length of a scope.
class Nesting {
  public:
    explicit Nesting(int& depth) : depth_(depth) {
        if (depth_ >= kDeepestNesting) fail(CArchiveException::genericException);
        ++depth_;
    }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    ~Nesting() { --depth_; }

  private:
    int& depth_;
};

}  // namespace

namespace velquad::platform {

std::size_t ArchiveGraph::addEntry(CObject* object, const CRuntimeClass* record, UINT schema) {
    if (loaded_.size() > kLastIndex) fail(CArchiveException::badIndex);
    loaded_.push_back({object, record, schema});
    return loaded_.size() - 1;
}

// Schema, length of the name and name follow.
const CRuntimeClass* ArchiveGraph::readNewClass(const CRuntimeClass* requested, UINT& schema) {
    WORD storedSchema = 0;
    WORD length = 0;
    char name[kLongestName + 1] = {};
    archive_ >> storedSchema >> length;
    if (length > kLongestName) fail(CArchiveException::badClass);
    archive_.readBytes(name, length);
    // A name with a zero in it is none.
    const CRuntimeClass* record = std::strlen(name) == length ? CRuntimeClass::FromName(name) : nullptr;
    if (record == nullptr || (record->m_wSchema & kNoSchema) == kNoSchema) fail(CArchiveException::badClass);
    schema = storedSchema;
    const bool isVersionable = (record->m_wSchema & VERSIONABLE_SCHEMA) != 0;
    if (!isVersionable && record->m_wSchema != schema) fail(CArchiveException::badSchema);
    addEntry(nullptr, record, schema);
    if (requested != nullptr && record->IsDerivedFrom(requested) == 0) fail(CArchiveException::badClass);
    return record;
}

const CRuntimeClass* ArchiveGraph::knownClass(DWORD index, UINT& schema) const {
    if (index >= loaded_.size() || loaded_[index].record == nullptr) fail(CArchiveException::badIndex);
    schema = loaded_[index].schema;
    return loaded_[index].record;
}

CObject* ArchiveGraph::knownObject(DWORD index, const CRuntimeClass* requested) const {
    if (index == 0) return nullptr;
    if (index >= loaded_.size() || loaded_[index].object == nullptr) fail(CArchiveException::badIndex);
    CObject* object = loaded_[index].object;
    if (requested != nullptr && object->IsKindOf(requested) == 0) fail(CArchiveException::badClass);
    return object;
}

CObject* ArchiveGraph::readNewObject(const CRuntimeClass* record, UINT schema) {
    const Nesting nesting(depth_);
    std::unique_ptr<CObject> object(record->CreateObject());
    if (object == nullptr) fail(CArchiveException::badClass);
    const std::size_t index = addEntry(object.get(), nullptr, 0);
    const std::size_t madeBefore = made_.size();
    const CObject* const outer = std::exchange(beingMade_, object.get());
    const UINT outerSchema = std::exchange(archive_.schema_, schema);
    const auto restore = [&] {
        beingMade_ = outer;
        archive_.schema_ = outerSchema;
        // A class derived from the array may own its elements.
        if (depth_ == 1 || record != CObArray::GetThisClass()) forgetMade(madeBefore);
    };
    try {
        object->Serialize(archive_);
    } catch (...) {
        restore();
        // Nothing may refer to what ends here, nor to what was made for it and may end with it.
        for (std::size_t i = index; i < loaded_.size(); ++i)
            loaded_[i].object = nullptr;
        throw;
    }
    restore();
    return object.release();
}

CObject* ArchiveGraph::readElement() {
    const std::size_t slot = made_.size();
    made_.push_back(nullptr);
    const std::size_t entriesBefore = loaded_.size();
    CObject* object = readObject(nullptr);
    if (loaded_.size() != entriesBefore) made_[slot] = object;
    return object;
}

void ArchiveGraph::deleteMade(std::size_t first) {
    while (made_.size() > first) {
        delete made_.back();
        made_.pop_back();
    }
}

CObject* ArchiveGraph::readObject(const CRuntimeClass* requested) {
    if (requested != nullptr && requested->m_wSchema == kNoSchema) AfxThrowNotSupportedException();
    WORD tag = 0;
    archive_ >> tag;
    DWORD index = 0;
    UINT schema = 0;
    if (tag == kNewClassTag) {
        const CRuntimeClass* record = readNewClass(requested, schema);
        return readNewObject(record, schema);
    }
    if (tag == kBigTag) {
        archive_ >> index;
    } else {
        index = (static_cast<DWORD>(tag & kClassTag) << 16) | static_cast<DWORD>(tag & ~kClassTag);
    }
    if ((index & kBigClassTag) == 0) return knownObject(index, requested);
    const CRuntimeClass* record = knownClass(index & ~kBigClassTag, schema);
    if (requested != nullptr && record->IsDerivedFrom(requested) == 0) fail(CArchiveException::badClass);
    return readNewObject(record, schema);
}

void ArchiveGraph::writeIndex(DWORD index, DWORD bigTag, WORD tag) {
    if (index < kBigTag) {
        archive_ << static_cast<WORD>(tag | index);
    } else {
        archive_ << kBigTag << (bigTag | index);
    }
}

void ArchiveGraph::store(const void* address) {
    if (stored_.size() >= kLastIndex) fail(CArchiveException::badIndex);
    stored_.emplace(address, static_cast<DWORD>(stored_.size() + 1));
}

void ArchiveGraph::writeClass(const CRuntimeClass* record) {
    if ((record->m_wSchema & kNoSchema) == kNoSchema) AfxThrowNotSupportedException();
    const auto known = stored_.find(record);
    if (known != stored_.end()) {
        writeIndex(known->second, kBigClassTag, kClassTag);
        return;
    }
    const std::size_t length = std::strlen(record->m_lpszClassName);
    // A longer name could not be loaded again.
    if (length > kLongestName) AfxThrowNotSupportedException();
    archive_ << kNewClassTag << static_cast<WORD>(record->m_wSchema) << static_cast<WORD>(length);
    archive_.writeBytes(record->m_lpszClassName, static_cast<UINT>(length));
    store(record);
}

void ArchiveGraph::writeObject(const CObject* object) {
    if (object == nullptr) {
        archive_ << kNullTag;
        return;
    }
    const auto known = stored_.find(object);
    if (known != stored_.end()) {
        writeIndex(known->second, 0, 0);
        return;
    }
    const Nesting nesting(depth_);
    writeClass(object->GetRuntimeClass());
    store(object);
    // `Serialize` stores and loads alike; while it stores, it does not change its object.
    const_cast<CObject*>(object)->Serialize(archive_);
}

void ArchiveGraph::map(const CObject* object) {
    if (object == nullptr) return;
    if (archive_.IsLoading() != 0) {
        addEntry(const_cast<CObject*>(object), nullptr, 0);
    } else if (stored_.count(object) == 0) {
        store(object);
    }
}

}  // namespace velquad::platform

CArchive::CArchive(CFile* file, UINT mode, int bufferSize, void* buffer)
    : file_(file), mode_(mode), bufferSize_(static_cast<std::size_t>(std::max(bufferSize, 0))) {
    if (buffer == nullptr || bufferSize_ < kSmallestBuffer) {
        bufferSize_ = std::max(bufferSize_, kSmallestBuffer);
        isBufferOwner_ = true;
    }
    auto graph = std::make_unique<velquad::platform::ArchiveGraph>(*this);
    start_ = isBufferOwner_ ? new BYTE[bufferSize_] : static_cast<BYTE*>(buffer);
    graph_ = graph.release();
    current_ = start_;
    limit_ = IsLoading() != 0 ? start_ : start_ + bufferSize_;
}

CArchive::~CArchive() {
    if (file_ != nullptr && (mode_ & bNoFlushOnDelete) == 0) {
        try {
            Close();
        } catch (CException* exception) {
            exception->Delete();
        } catch (...) {  // NOLINT(bugprone-empty-catch): a destructor cannot tell
        }
    }
    delete graph_;
    if (isBufferOwner_) delete[] start_;
}

UINT CArchive::Read(void* bytes, UINT count) {
    if (IsLoading() == 0) fail(CArchiveException::writeOnly);
    requireFile();
    auto* to = static_cast<BYTE*>(bytes);
    UINT left = count;
    while (left > 0) {
        if (current_ == limit_) {
            if (left >= bufferSize_) {
                // Nothing is gained by a way through the buffer.
                const UINT read = file_->Read(to, left);
                if (read == 0) break;
                to += read;
                left -= read;
                continue;
            }
            current_ = start_;
            limit_ = start_;
            limit_ += file_->Read(start_, static_cast<UINT>(bufferSize_));
            if (current_ == limit_) break;
        }
        const auto taken =
            static_cast<UINT>(std::min<std::size_t>(left, static_cast<std::size_t>(limit_ - current_)));
        std::memcpy(to, current_, taken);
        current_ += taken;
        to += taken;
        left -= taken;
    }
    return count - left;
}

void CArchive::readAcrossBuffers(void* bytes, UINT count) {
    if (Read(bytes, count) != count) fail(CArchiveException::endOfFile);
}

void CArchive::Write(const void* bytes, UINT count) {
    if (IsLoading() != 0) fail(CArchiveException::readOnly);
    requireFile();
    if (count == 0) return;
    if (count > static_cast<std::size_t>(limit_ - current_)) Flush();
    if (count >= bufferSize_) {
        file_->Write(bytes, count);
        return;
    }
    std::memcpy(current_, bytes, count);
    current_ += count;
}

void CArchive::Flush() {
    requireFile();
    if (IsLoading() != 0) {
        if (current_ != limit_) file_->Seek(current_ - limit_, CFile::current);
        current_ = start_;
        limit_ = start_;
    } else if (current_ != start_) {
        file_->Write(start_, static_cast<UINT>(current_ - start_));
        current_ = start_;
    }
}

void CArchive::Close() {
    Flush();
    Abort();
}

void CArchive::Abort() {
    file_ = nullptr;
    current_ = start_;
    // Every access takes the way that finds the file missing.
    limit_ = start_;
}

std::uint64_t CArchive::GetBytesLeft() const {
    requireFile();
    const std::uint64_t buffered = IsLoading() != 0 ? static_cast<std::uint64_t>(limit_ - current_) : 0;
    const std::uint64_t length = file_->GetLength();
    const std::uint64_t position = file_->GetPosition();
    return buffered + (length > position ? length - position : 0);
}

std::uintptr_t CArchive::ReadCount() {
    WORD shortCount = 0;
    *this >> shortCount;
    if (shortCount != std::numeric_limits<WORD>::max()) return shortCount;
    DWORD count = 0;
    *this >> count;
    if (count != std::numeric_limits<DWORD>::max()) return count;
    std::uint64_t longCount = 0;
    *this >> longCount;
    return static_cast<std::uintptr_t>(longCount);
}

void CArchive::WriteCount(std::uintptr_t count) {
    if (count < std::numeric_limits<WORD>::max()) {
        *this << static_cast<WORD>(count);
        return;
    }
    *this << std::numeric_limits<WORD>::max();
    if (count < std::numeric_limits<DWORD>::max()) {
        *this << static_cast<DWORD>(count);
        return;
    }
    *this << std::numeric_limits<DWORD>::max() << static_cast<std::uint64_t>(count);
}

CObject* CArchive::ReadObject(const CRuntimeClass* requested) {
    return graph_->readObject(requested);
}

void CArchive::WriteObject(const CObject* object) {
    graph_->writeObject(object);
}

void CArchive::MapObject(const CObject* object) {
    graph_->map(object);
}

UINT CArchive::GetObjectSchema() {
    return std::exchange(schema_, kNoObjectSchema);
}

CArchive& operator<<(CArchive& archive, const CObject* object) {
    archive.WriteObject(object);
    return archive;
}

CArchive& operator>>(CArchive& archive, CObject*& object) {
    object = archive.ReadObject(nullptr);
    return archive;
}

CArchive& operator>>(CArchive& archive, const CObject*& object) {
    object = archive.ReadObject(nullptr);
    return archive;
}
