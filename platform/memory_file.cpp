// Files in memory.
#include <cstdlib>
#include <cstring>

#include "velquad/framework.h"

namespace {

constexpr UINT kNoSchema = 0xFFFF;

}  // namespace

constinit CRuntimeClass CMemFile::classCMemFile = {"CMemFile", sizeof(CMemFile),     kNoSchema,
                                                   nullptr,    &CFile::GetThisClass, nullptr};

CMemFile::CMemFile(UINT growBytes) : growBytes_(growBytes) {}

CMemFile::CMemFile(BYTE* buffer, UINT size, UINT growBytes) : growBytes_(growBytes) {
    CMemFile::Attach(buffer, size, growBytes);
}

CMemFile::~CMemFile() {
    release();
}

CRuntimeClass* CMemFile::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CMemFile::GetThisClass() {
    return &classCMemFile;
}

void CMemFile::Attach(BYTE* buffer, UINT size, UINT growBytes) {
    release();
    data_ = buffer;
    capacity_ = size;
    length_ = growBytes == 0 ? size : 0;
    growBytes_ = growBytes;
    isOwner_ = false;
}

BYTE* CMemFile::Detach() {
    BYTE* data = std::exchange(data_, nullptr);
    isOwner_ = true;
    release();
    return data;
}

BOOL CMemFile::Open(const char* /*name*/, UINT /*flags*/) {
    return 0;
}

std::uint64_t CMemFile::GetPosition() const {
    return position_;
}

std::uint64_t CMemFile::GetLength() const {
    return length_;
}

void CMemFile::SetLength(std::uint64_t length) {
    reserve(length);
    if (length > length_) std::memset(data_ + length_, 0, static_cast<std::size_t>(length - length_));
    length_ = length;
    if (position_ > length_) position_ = length_;
}

std::uint64_t CMemFile::Seek(std::int64_t offset, UINT from) {
    const std::uint64_t origin = from == begin ? 0 : from == current ? position_ : length_;
    // Wraps around for a negative offset.
    const std::uint64_t position = origin + static_cast<std::uint64_t>(offset);
    if (offset < 0 ? position > origin : position < origin) AfxThrowFileException(CFileException::badSeek);
    position_ = position;
    return position_;
}

UINT CMemFile::Read(void* buffer, UINT count) {
    if (position_ >= length_) return 0;
    const std::uint64_t left = length_ - position_;
    const auto read = static_cast<UINT>(left < count ? left : count);
    std::memcpy(buffer, data_ + position_, read);
    position_ += read;
    return read;
}

void CMemFile::Write(const void* buffer, UINT count) {
    if (count == 0) return;
    if (position_ > std::numeric_limits<std::uint64_t>::max() - count)
        AfxThrowFileException(CFileException::diskFull);
    const std::uint64_t newPosition = position_ + count;
    reserve(newPosition);
    // A gap behind the old end is zero.
    if (position_ > length_) std::memset(data_ + length_, 0, static_cast<std::size_t>(position_ - length_));
    std::memcpy(data_ + position_, buffer, count);
    position_ = newPosition;
    if (length_ < newPosition) length_ = newPosition;
}

void CMemFile::Flush() {}

void CMemFile::Close() {
    release();
}

void CMemFile::Abort() {
    release();
}

void CMemFile::reserve(std::uint64_t length) {
    if (length <= capacity_) return;
    if (growBytes_ == 0) AfxThrowFileException(CFileException::diskFull);
    std::uint64_t capacity = capacity_ + capacity_ / 2;
    if (capacity < length) capacity = length;
    if (capacity > std::numeric_limits<std::uint64_t>::max() - growBytes_) throw std::bad_alloc();
    capacity = (capacity + growBytes_ - 1) / growBytes_ * growBytes_;
    // What is attached is the caller's: its contents move to memory of the file's own.
    void* const own = isOwner_ ? data_ : nullptr;
    auto* const data = static_cast<BYTE*>(std::realloc(own, static_cast<std::size_t>(capacity)));
    if (data == nullptr) throw std::bad_alloc();
    if (!isOwner_ && length_ > 0) std::memcpy(data, data_, static_cast<std::size_t>(length_));
    data_ = data;
    capacity_ = capacity;
    isOwner_ = true;
}

void CMemFile::release() {
    if (isOwner_) std::free(data_);
    data_ = nullptr;
    length_ = 0;
    capacity_ = 0;
    position_ = 0;
    isOwner_ = true;
}
