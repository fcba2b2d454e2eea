// Loads whatever the bytes say: graphs of nodes, arrays of objects and arrays of doubles. Every load must end in
// objects or in the archive's exception, without a leak; what was loaded is stored and loaded again.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

#include "velquad/containers.h"
#include "velquad/framework.h"

namespace {

void require(bool condition) {
    if (!condition) __builtin_trap();
}

/// A node of a graph with numbers of its own. Nodes do not own each other.
class Node : public CObject {
  public:
    Node() { alive.insert(this); }
    ~Node() override { alive.erase(this); }
    CRuntimeClass* GetRuntimeClass() const override { return &record; }
    static CObject* create() { return new Node; }
    void Serialize(CArchive& archive) override {
        values.Serialize(archive);
        if (archive.IsStoring() != 0) {
            archive << first << second;
        } else {
            first = archive.ReadObject(&record);
            second = archive.ReadObject(&record);
        }
    }

    CDoubleArray values;
    CObject* first = nullptr;
    CObject* second = nullptr;
    static CRuntimeClass record;
    static std::set<const Node*> alive;
};
CRuntimeClass Node::record = {"N", sizeof(Node), 1, &Node::create, &CObject::GetThisClass, nullptr};
std::set<const Node*> Node::alive;

/// Adds an object and the elements of arrays, each once.
void collect(CObject* object, std::set<CObject*>& found) {
    if (object == nullptr || !found.insert(object).second) return;
    if (object->IsKindOf(CObArray::GetThisClass()) == 0) return;
    const auto& array = static_cast<const CObArray&>(*object);
    for (std::intptr_t i = 0; i < array.GetSize(); ++i)
        collect(array[i], found);
}

/// Deletes objects and all nodes.
void end(const std::vector<CObject*>& roots) {
    std::set<CObject*> found;
    for (CObject* root : roots)
        collect(root, found);
    for (CObject* object : found) {
        if (object->IsKindOf(&Node::record) == 0) delete object;
    }
    while (!Node::alive.empty())
        delete *Node::alive.begin();
}

/// Loads objects until the archive ends or is refused. @return the objects.
std::vector<CObject*> loadAll(const std::uint8_t* data, std::size_t size, int bufferSize) {
    std::vector<std::uint8_t> bytes(data, data + size);
    CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive archive(&file, CArchive::load, bufferSize);
    std::vector<CObject*> roots;
    try {
        while (archive.GetBytesLeft() > 0 && roots.size() < 64)
            roots.push_back(archive.ReadObject(nullptr));
    } catch (CArchiveException* exception) {
        require(exception->m_cause > CArchiveException::none &&
                exception->m_cause <= CArchiveException::badSchema);
        exception->Delete();
    }
    return roots;
}

std::vector<std::uint8_t> storeAll(const std::vector<CObject*>& roots) {
    CMemFile file;
    {
        CArchive archive(&file, CArchive::store);
        for (const CObject* root : roots)
            archive << root;
        archive.Close();
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(file.GetLength()));
    file.SeekToBegin();
    file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    AfxClassInit(&Node::record);
    if (size == 0) return 0;
    const std::vector<CObject*> roots = loadAll(data + 1, size - 1, 100 + data[0]);
    const std::vector<std::uint8_t> bytes = storeAll(roots);
    end(roots);
    const std::vector<CObject*> again = loadAll(bytes.data(), bytes.size(), 4096);
    require(again.size() == roots.size());
    require(storeAll(again) == bytes);
    end(again);
    return 0;
}
