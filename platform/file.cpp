// Files on disk, on top of the C library without its buffering.
#include <cerrno>
#include <cstdio>

#include "velquad/framework.h"

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

constexpr UINT kNoSchema = 0xFFFF;

std::FILE* streamOf(void* stream) {
    if (stream == nullptr) AfxThrowFileException(CFileException::invalidFile);
    return static_cast<std::FILE*>(stream);
}

bool seekStream(std::FILE* stream, std::int64_t offset, int origin) {
#if defined(_WIN32)
    return _fseeki64(stream, offset, origin) == 0;
#else
    return fseeko(stream, offset, origin) == 0;
#endif
}

std::uint64_t tellStream(std::FILE* stream) {
#if defined(_WIN32)
    const std::int64_t position = _ftelli64(stream);
#else
    const std::int64_t position = ftello(stream);
#endif
    if (position < 0) AfxThrowFileException(CFileException::badSeek);
    return static_cast<std::uint64_t>(position);
}

bool resizeStream(std::FILE* stream, std::uint64_t length) {
    if (std::fflush(stream) != 0) return false;
#if defined(_WIN32)
    return _chsize_s(_fileno(stream), static_cast<std::int64_t>(length)) == 0;
#else
    return ftruncate(fileno(stream), static_cast<std::int64_t>(length)) == 0;
#endif
}

int causeOfOpening(int error) {
    switch (error) {
        case ENOENT:
            return CFileException::fileNotFound;
        case EACCES:
        case EISDIR:
            return CFileException::accessDenied;
        case EMFILE:
        case ENFILE:
            return CFileException::tooManyOpenFiles;
        case ENOTDIR:
        case EINVAL:
            return CFileException::badPath;
        default:
            return CFileException::genericException;
    }
}

int causeOfWriting(int error) {
    return error == ENOSPC ? CFileException::diskFull : CFileException::hardIO;
}

std::FILE* openStream(const char* name, UINT flags) {
    const UINT access = flags & (CFile::modeWrite | CFile::modeReadWrite);
    if ((flags & CFile::modeCreate) == 0) return std::fopen(name, access == CFile::modeRead ? "rb" : "r+b");
    if ((flags & CFile::modeNoTruncate) != 0) {
        std::FILE* existing = std::fopen(name, "r+b");
        if (existing != nullptr) return existing;
    }
    return std::fopen(name, "w+b");
}

}  // namespace

constinit CRuntimeClass CFile::classCFile = {"CFile", sizeof(CFile),          kNoSchema,
                                             nullptr, &CObject::GetThisClass, nullptr};

CFile::CFile() = default;

CFile::CFile(const char* name, UINT flags) {
    stream_ = openStream(name, flags);
    if (stream_ == nullptr) AfxThrowFileException(causeOfOpening(errno));
    std::setvbuf(static_cast<std::FILE*>(stream_), nullptr, _IONBF, 0);
}

CFile::~CFile() {
    if (stream_ != nullptr) std::fclose(static_cast<std::FILE*>(stream_));
}

CRuntimeClass* CFile::GetRuntimeClass() const {
    return GetThisClass();
}

CRuntimeClass* CFile::GetThisClass() {
    return &classCFile;
}

BOOL CFile::Open(const char* name, UINT flags) {
    Close();
    stream_ = openStream(name, flags);
    if (stream_ == nullptr) return 0;
    std::setvbuf(static_cast<std::FILE*>(stream_), nullptr, _IONBF, 0);
    return 1;
}

std::uint64_t CFile::GetPosition() const {
    return tellStream(streamOf(stream_));
}

std::uint64_t CFile::GetLength() const {
    std::FILE* stream = streamOf(stream_);
    const std::uint64_t position = tellStream(stream);
    if (!seekStream(stream, 0, SEEK_END)) AfxThrowFileException(CFileException::badSeek);
    const std::uint64_t length = tellStream(stream);
    if (!seekStream(stream, static_cast<std::int64_t>(position), SEEK_SET))
        AfxThrowFileException(CFileException::badSeek);
    return length;
}

void CFile::SetLength(std::uint64_t length) {
    if (!resizeStream(streamOf(stream_), length)) AfxThrowFileException(causeOfWriting(errno));
}

std::uint64_t CFile::Seek(std::int64_t offset, UINT from) {
    std::FILE* stream = streamOf(stream_);
    const int origin = from == begin ? SEEK_SET : from == current ? SEEK_CUR : SEEK_END;
    if (!seekStream(stream, offset, origin)) AfxThrowFileException(CFileException::badSeek);
    return tellStream(stream);
}

UINT CFile::Read(void* buffer, UINT count) {
    std::FILE* stream = streamOf(stream_);
    // The C standard asks for a seek between writing and reading.
    seekStream(stream, 0, SEEK_CUR);
    const std::size_t read = std::fread(buffer, 1, count, stream);
    if (read < count && std::ferror(stream) != 0) {
        std::clearerr(stream);
        AfxThrowFileException(CFileException::hardIO);
    }
    return static_cast<UINT>(read);
}

void CFile::Write(const void* buffer, UINT count) {
    std::FILE* stream = streamOf(stream_);
    seekStream(stream, 0, SEEK_CUR);
    if (std::fwrite(buffer, 1, count, stream) != count) {
        std::clearerr(stream);
        AfxThrowFileException(causeOfWriting(errno));
    }
}

void CFile::Flush() {
    if (stream_ != nullptr && std::fflush(static_cast<std::FILE*>(stream_)) != 0)
        AfxThrowFileException(causeOfWriting(errno));
}

void CFile::Close() {
    if (stream_ == nullptr) return;
    auto* stream = static_cast<std::FILE*>(std::exchange(stream_, nullptr));
    if (std::fclose(stream) != 0) AfxThrowFileException(causeOfWriting(errno));
}

void CFile::Abort() {
    if (stream_ != nullptr) std::fclose(static_cast<std::FILE*>(std::exchange(stream_, nullptr)));
}
