#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "velquad/framework.h"

namespace {

/// The cause of the file's exception that a call throws; -1 for none.
int causeOf(const std::function<void()>& call) {
    try {
        call();
    } catch (CFileException* exception) {
        const int cause = exception->m_cause;
        exception->Delete();
        return cause;
    }
    return -1;
}

/// The life of a file's contents, the same for every kind of file. The file is empty.
void useFile(CFile& file) {
    EXPECT_EQ(file.GetLength(), 0U);
    file.Write("Hello, file", 11);
    EXPECT_EQ(file.GetLength(), 11U);
    EXPECT_EQ(file.GetPosition(), 11U);
    char text[16] = {};
    EXPECT_EQ(file.Read(text, 4), 0U);
    file.SeekToBegin();
    EXPECT_EQ(file.Read(text, 5), 5U);
    EXPECT_STREQ(text, "Hello");
    EXPECT_EQ(file.Seek(-4, CFile::end), 7U);
    EXPECT_EQ(file.Read(text, 16), 4U);
    EXPECT_EQ(std::memcmp(text, "file", 4), 0);
    EXPECT_EQ(file.Seek(2, CFile::begin), 2U);
    EXPECT_EQ(file.Seek(1, CFile::current), 3U);
    file.Write("p", 1);
    file.SeekToBegin();
    EXPECT_EQ(file.Read(text, 6), 6U);
    EXPECT_EQ(std::memcmp(text, "Helpo,", 6), 0);
    EXPECT_EQ(causeOf([&] { file.Seek(-12, CFile::end); }), CFileException::badSeek);
    EXPECT_EQ(file.GetPosition(), 6U);

    file.SetLength(5);
    EXPECT_EQ(file.GetLength(), 5U);
    file.SetLength(7);
    file.Seek(4, CFile::begin);
    EXPECT_EQ(file.Read(text, 16), 3U);
    EXPECT_EQ(std::memcmp(text, "o\0\0", 3), 0);
    // A gap behind the end is zero.
    file.Seek(9, CFile::begin);
    EXPECT_EQ(file.GetLength(), 7U);
    file.Write("!", 1);
    EXPECT_EQ(file.GetLength(), 10U);
    file.Seek(7, CFile::begin);
    EXPECT_EQ(file.Read(text, 16), 3U);
    EXPECT_EQ(std::memcmp(text, "\0\0!", 3), 0);
    file.Write("", 0);
    file.Flush();
    EXPECT_EQ(file.SeekToEnd(), 10U);
}

TEST(MemFile, KeepsItsContents) {
    CMemFile file;
    useFile(file);
    EXPECT_EQ(file.Open("name", CFile::modeRead), 0);
    file.Close();
    EXPECT_EQ(file.GetLength(), 0U);
    file.Write("again", 5);
    file.Abort();
    EXPECT_EQ(file.GetLength(), 0U);
}

TEST(MemFile, GrowsInAnyStep) {
    for (const UINT growBytes : {1U, 7U, 1024U}) {
        CMemFile file(growBytes);
        useFile(file);
        std::vector<BYTE> expected;
        file.SetLength(0);
        for (int i = 0; i < 3000; ++i) {
            const BYTE byte = static_cast<BYTE>(i * 7);
            expected.push_back(byte);
            file.Write(&byte, 1);
        }
        std::vector<BYTE> actual(3000);
        file.SeekToBegin();
        EXPECT_EQ(file.Read(actual.data(), 5000), 3000U);
        EXPECT_EQ(actual, expected);
    }
}

TEST(MemFile, WorksOnTheMemoryOfTheCaller) {
    BYTE room[4] = {1, 2, 3, 4};
    CMemFile file(room, 4);
    EXPECT_EQ(file.GetLength(), 4U);
    BYTE read[8] = {};
    EXPECT_EQ(file.Read(read, 8), 4U);
    EXPECT_EQ(read[3], 4);
    file.SeekToBegin();
    file.Write("\x09", 1);
    EXPECT_EQ(room[0], 9);
    EXPECT_EQ(causeOf([&] { file.Write("12345", 5); }), CFileException::diskFull);
    EXPECT_EQ(causeOf([&] { file.SetLength(5); }), CFileException::diskFull);
    EXPECT_EQ(room[1], 2);
    EXPECT_EQ(file.GetPosition(), 1U);
    EXPECT_EQ(file.Detach(), room);
    EXPECT_EQ(file.GetLength(), 0U);
}

TEST(MemFile, LeavesTheMemoryOfTheCallerWhenItIsFull) {
    BYTE room[4] = {};
    CMemFile file(room, 4, 8);
    EXPECT_EQ(file.GetLength(), 0U);
    file.Write("abcd", 4);
    EXPECT_EQ(room[3], 'd');
    file.Write("efgh", 4);
    file.SeekToBegin();
    char read[9] = {};
    EXPECT_EQ(file.Read(read, 8), 8U);
    EXPECT_STREQ(read, "abcdefgh");
    BYTE* own = file.Detach();
    EXPECT_NE(own, room);
    EXPECT_EQ(own[7], 'h');
    std::free(own);
    EXPECT_EQ(file.Detach(), nullptr);
}

TEST(MemFile, RefusesPositionsBeyond64Bits) {
    CMemFile file;
    file.Seek(INT64_MAX, CFile::begin);
    EXPECT_EQ(file.Seek(INT64_MAX, CFile::current), 0xFFFFFFFFFFFFFFFEU);
    EXPECT_EQ(causeOf([&] { file.Seek(2, CFile::current); }), CFileException::badSeek);
    EXPECT_EQ(causeOf([&] { file.Write("abc", 3); }), CFileException::diskFull);
    EXPECT_EQ(file.GetLength(), 0U);
    BYTE read = 0;
    EXPECT_EQ(file.Read(&read, 1), 0U);
}

TEST(MemFile, StaysAsItWasWhenMemoryIsLacking) {
    CMemFile file(4);
    file.Write("abcd", 4);
    velquad::test::failAllocation(1);
    bool hasThrown = false;
    try {
        file.Write("efgh", 4);
    } catch (const std::bad_alloc&) {
        hasThrown = true;
    }
    velquad::test::failAllocation(0);
    EXPECT_TRUE(hasThrown);
    EXPECT_EQ(file.GetLength(), 4U);
    EXPECT_EQ(file.GetPosition(), 4U);
}

/// A path that no file has, and none has afterwards.
class TemporaryPath {
  public:
    explicit TemporaryPath(const char* name) : path_(testing::TempDir() + "velquad_" + name) {
        std::remove(path_.c_str());
    }
    TemporaryPath(const TemporaryPath&) = delete;
    TemporaryPath& operator=(const TemporaryPath&) = delete;
    ~TemporaryPath() { std::remove(path_.c_str()); }
    const char* get() const { return path_.c_str(); }

  private:
    std::string path_;
};

TEST(File, KeepsItsContentsOnDisk) {
    const TemporaryPath path("file_test_contents");
    {
        CFile file(path.get(), CFile::modeCreate | CFile::modeReadWrite);
        useFile(file);
        file.Close();
        file.Close();
    }
    CFile file;
    ASSERT_NE(file.Open(path.get(), CFile::modeRead), 0);
    EXPECT_EQ(file.GetLength(), 10U);
    char text[3];
    EXPECT_EQ(file.Read(text, 3), 3U);
    EXPECT_EQ(std::memcmp(text, "Hel", 3), 0);
    EXPECT_NE(causeOf([&] { file.Write("x", 1); }), -1);
    file.Abort();
}

TEST(File, OpensAsItsFlagsTell) {
    const TemporaryPath path("file_test_flags");
    EXPECT_EQ(causeOf([&] { const CFile file(path.get(), CFile::modeRead); }), CFileException::fileNotFound);
    CFile file;
    EXPECT_EQ(file.Open(path.get(), CFile::modeReadWrite), 0);
    ASSERT_NE(file.Open(path.get(), CFile::modeCreate | CFile::modeWrite), 0);
    file.Write("12345", 5);
    ASSERT_NE(file.Open(path.get(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite), 0);
    EXPECT_EQ(file.GetLength(), 5U);
    ASSERT_NE(file.Open(path.get(), CFile::modeCreate | CFile::modeReadWrite), 0);
    EXPECT_EQ(file.GetLength(), 0U);
}

TEST(File, RefusesWhatNeedsAnOpenFile) {
    CFile file;
    BYTE byte = 0;
    EXPECT_EQ(causeOf([&] { file.Read(&byte, 1); }), CFileException::invalidFile);
    EXPECT_EQ(causeOf([&] { file.Write(&byte, 1); }), CFileException::invalidFile);
    EXPECT_EQ(causeOf([&] { file.GetLength(); }), CFileException::invalidFile);
    EXPECT_EQ(causeOf([&] { file.GetPosition(); }), CFileException::invalidFile);
    EXPECT_EQ(causeOf([&] { file.SeekToBegin(); }), CFileException::invalidFile);
    EXPECT_EQ(causeOf([&] { file.SetLength(1); }), CFileException::invalidFile);
    file.Flush();
    file.Close();
    file.Abort();
}

TEST(File, HoldsAnArchive) {
    const TemporaryPath path("file_test_archive");
    {
        CFile file(path.get(), CFile::modeCreate | CFile::modeWrite);
        CArchive archive(&file, CArchive::store);
        archive << 1.5 << 70000;
        archive.Close();
    }
    CFile file(path.get(), CFile::modeRead);
    CArchive archive(&file, CArchive::load);
    double number = 0;
    int count = 0;
    archive >> number >> count;
    EXPECT_EQ(number, 1.5);
    EXPECT_EQ(count, 70000);
    EXPECT_EQ(archive.GetBytesLeft(), 0U);
}

TEST(File, ClassesAreKnownAsWhatTheyAre) {
    const CMemFile file;
    EXPECT_NE(file.IsKindOf(CFile::GetThisClass()), 0);
    EXPECT_STREQ(file.GetRuntimeClass()->m_lpszClassName, "CMemFile");
    const CFileException fileException(CFileException::diskFull);
    EXPECT_NE(fileException.IsKindOf(CException::GetThisClass()), 0);
    EXPECT_STREQ(fileException.GetRuntimeClass()->m_lpszClassName, "CFileException");
    const CArchiveException archiveException(CArchiveException::badIndex);
    EXPECT_STREQ(archiveException.GetRuntimeClass()->m_lpszClassName, "CArchiveException");
    const CNotSupportedException notSupported;
    EXPECT_STREQ(notSupported.GetRuntimeClass()->m_lpszClassName, "CNotSupportedException");
}

}  // namespace
