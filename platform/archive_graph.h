// The objects and classes of an archive, by their indices.
#ifndef VELQUAD_PLATFORM_ARCHIVE_GRAPH_H
#define VELQUAD_PLATFORM_ARCHIVE_GRAPH_H

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "velquad/framework.h"

namespace velquad::platform {

class ArchiveGraph {
  public:
    explicit ArchiveGraph(CArchive& archive) : archive_(archive) {}

    CObject* readObject(const CRuntimeClass* requested);
    void writeObject(const CObject* object);
    void map(const CObject* object);

    /// Tells whether this is the innermost object that the archive is making.
    bool isMaking(const CObject* object) const { return beingMade_ == object; }

    /// @return how many indices are taken: making an object takes one, a reference takes none.
    std::size_t entryCount() const { return loaded_.size(); }

  private:
    // What has an index while loading: an object, or a class with its stored schema. Neither for null and for an
    // object that was given up.
    struct Entry {
        CObject* object;
        const CRuntimeClass* record;
        UINT schema;
    };

    std::size_t addEntry(CObject* object, const CRuntimeClass* record, UINT schema);
    const CRuntimeClass* readNewClass(const CRuntimeClass* requested, UINT& schema);
    const CRuntimeClass* knownClass(DWORD index, UINT& schema) const;
    CObject* knownObject(DWORD index, const CRuntimeClass* requested) const;
    CObject* readNewObject(const CRuntimeClass* record, UINT schema);
    void store(const void* address);
    void writeClass(const CRuntimeClass* record);
    void writeIndex(DWORD index, DWORD bigTag, WORD tag);

    CArchive& archive_;
    int depth_ = 0;
    std::vector<Entry> loaded_{Entry{nullptr, nullptr, 0}};
    const CObject* beingMade_ = nullptr;
    std::unordered_map<const void*, DWORD> stored_;  // indices of objects and class records, by address
};

}  // namespace velquad::platform

#endif  // VELQUAD_PLATFORM_ARCHIVE_GRAPH_H
