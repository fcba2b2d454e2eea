// Archives from bytes that a test wrote by hand, and the bytes of archives that the library wrote.
#ifndef VELQUAD_TESTS_SUPPORT_ARCHIVE_BYTES_H
#define VELQUAD_TESTS_SUPPORT_ARCHIVE_BYTES_H

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "velquad/framework.h"

namespace velquad::test {

using Bytes = std::vector<BYTE>;

/// The bytes that `write` stores.
inline Bytes storedBytes(const std::function<void(CArchive&)>& write, int bufferSize = 4096) {
    CMemFile file;
    {
        CArchive archive(&file, CArchive::store, bufferSize);
        write(archive);
        archive.Close();
    }
    Bytes bytes(static_cast<std::size_t>(file.GetLength()));
    file.SeekToBegin();
    file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
    return bytes;
}

/// Hands an archive that loads the bytes to `read`.
/// @return the cause of the archive's exception that `read` threw, 0 for none, -1 for another exception of the
///         framework.
inline int loadBytes(Bytes bytes, const std::function<void(CArchive&)>& read, int bufferSize = 4096) {
    CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive archive(&file, CArchive::load, bufferSize);
    try {
        read(archive);
    } catch (CArchiveException* exception) {
        const int cause = exception->m_cause;
        exception->Delete();
        return cause;
    } catch (CException* exception) {
        exception->Delete();
        return -1;
    }
    return 0;
}

/// The bytes of a text, for names of classes.
inline void append(Bytes& bytes, const std::string& text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

inline void append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

/// The first bytes of an object whose class comes for the first time.
inline Bytes newClass(const std::string& name, BYTE schema = 0) {
    Bytes bytes{0xFF, 0xFF, schema, 0x00, static_cast<BYTE>(name.size()), 0x00};
    append(bytes, name);
    return bytes;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_ARCHIVE_BYTES_H
