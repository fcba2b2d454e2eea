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

    /// @name Elements of arrays that the archive is making
    /// Until the outermost of such arrays is complete nobody else can reach them, so they end with an array that
    /// fails. What other objects read is their own business.
    /// @{

    /// Reads an element and remembers it if it was made for that.
    CObject* readElement();
    /// @return how many elements are remembered.
    std::size_t madeCount() const { return made_.size(); }
    /// Deletes the elements from the one with this number on.
    void deleteMade(std::size_t first);
    /// Forgets them.
    void forgetMade(std::size_t first) { made_.resize(first); }
    /// @}

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
    std::vector<CObject*> made_;                     // null for a reference
    std::unordered_map<const void*, DWORD> stored_;  // indices of objects and class records, by address
};

}  // namespace velquad::platform

#endif  // VELQUAD_PLATFORM_ARCHIVE_GRAPH_H
