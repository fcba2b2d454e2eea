// The message queue of a thread: a list of posted messages, first in first out, with a range filter on the way
// out.
//
// A queue lies in the storage of its thread and enters the registry, a list through all queues, at the first
// call that needs it; it leaves the registry when the thread ends. One lock guards the registry and all queues,
// so that a queue cannot end while another thread posts to it. Thread ids are counted, not taken from the
// system, which soon uses them again: a late message never reaches a stranger.

#include <chrono>
#include <cstdint>
#include <mutex>
#include <new>
#include <utility>

#include "velquad/platform.h"

namespace {

constexpr std::size_t kMostMessages = 10000;
constexpr UINT kSystemKeyDown = 0x0104;
constexpr UINT kSystemKeyUp = 0x0105;

struct Node {
    MSG message;
    Node* next;
};

// One thread's messages. Constant-initialised and without a destructor, so that objects of the thread that are
// destroyed later than the queue may still ask it. All members but `id` belong to whoever holds the registry's
// lock.
class Queue {
  public:
    DWORD id() const { return id_; }

    bool append(Node* node) {
        if (hasEnded_ || count_ == kMostMessages) return false;
        node->next = nullptr;
        (last_ == nullptr ? head_ : last_->next) = node;
        last_ = node;
        ++count_;
        return true;
    }

    // Copies the first message in the range, with 0 to 0 for any, and takes it out when `removed` is given.
    bool findMessage(UINT first, UINT last, MSG* message, Node** removed) {
        const bool isAny = first == 0 && last == 0;
        Node* previous = nullptr;
        for (Node* node = head_; node != nullptr; previous = node, node = node->next) {
            const UINT kind = node->message.message;
            if (!isAny && (kind < first || kind > last)) continue;
            *message = node->message;
            if (removed != nullptr) *removed = unlink(previous, node);
            return true;
        }
        return false;
    }

    // Enters the registry's list under a fresh id.
    void begin();

    // Leaves the registry's list for good and gives up its messages.
    Node* end();

    static Queue* find(DWORD id);

  private:
    Node* unlink(Node* previous, Node* node) {
        (previous == nullptr ? head_ : previous->next) = node->next;
        if (last_ == node) last_ = previous;
        --count_;
        return node;
    }

    DWORD id_ = 0;
    bool hasEnded_ = false;
    std::size_t count_ = 0;
    Node* head_ = nullptr;
    Node* last_ = nullptr;
    Queue* nextQueue_ = nullptr;
};

// Constant-initialised and never destroyed: threads may end after the static objects of the process.
struct Registry {
    std::mutex mutex;
    Queue* first = nullptr;
    DWORD lastId = 0;
};
constinit Registry registry;

thread_local constinit Queue threadQueue;
thread_local constinit MessageDispatchHandler dispatchHandler = nullptr;

Queue* Queue::find(DWORD id) {
    Queue* queue = registry.first;
    while (queue != nullptr && queue->id_ != id)
        queue = queue->nextQueue_;
    return queue;
}

void Queue::begin() {
    DWORD id = 0;
    do {
        id = ++registry.lastId;
    } while (id == 0 || find(id) != nullptr);
    id_ = id;
    nextQueue_ = registry.first;
    registry.first = this;
}

Node* Queue::end() {
    Queue** link = &registry.first;
    while (*link != this)
        link = &(*link)->nextQueue_;
    *link = nextQueue_;
    hasEnded_ = true;
    last_ = nullptr;
    count_ = 0;
    return std::exchange(head_, nullptr);
}

// Ends the queue with its thread.
struct QueueLife {
    QueueLife() {
        const std::lock_guard lock(registry.mutex);
        threadQueue.begin();
    }
    QueueLife(const QueueLife&) = delete;
    QueueLife& operator=(const QueueLife&) = delete;
    ~QueueLife() {
        Node* node = nullptr;
        {
            const std::lock_guard lock(registry.mutex);
            node = threadQueue.end();
        }
        while (node != nullptr)
            delete std::exchange(node, node->next);
    }
};

Queue& ownQueue() {
    if (threadQueue.id() == 0) {
        static thread_local QueueLife life;
    }
    return threadQueue;
}

DWORD millisecondsNow() {
    using std::chrono::steady_clock;
    const auto sinceStart = steady_clock::now().time_since_epoch();
    return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

Node* makeNode(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return new (std::nothrow) Node{{window, message, wParam, lParam, millisecondsNow(), {0, 0}}, nullptr};
}

bool appendTo(DWORD id, Node* node) {
    if (node == nullptr) return false;
    {
        const std::lock_guard lock(registry.mutex);
        Queue* queue = Queue::find(id);
        if (queue != nullptr && queue->append(node)) return true;
    }
    delete node;
    return false;
}

// The character of a virtual key, without regard to modifiers; 0 for a key that has none.
WPARAM characterOf(WPARAM key) {
    constexpr WPARAM kCancel = 0x03;
    constexpr WPARAM kBackspace = 0x08;
    constexpr WPARAM kTab = 0x09;
    constexpr WPARAM kReturn = 0x0D;
    constexpr WPARAM kToLowerCase = 'a' - 'A';
    switch (key) {
        case kCancel:
        case kBackspace:
        case kTab:
        case kReturn:
        case VK_ESCAPE:
        case ' ':
            return key;
        default:
            if (key >= '0' && key <= '9') return key;
            return key >= 'A' && key <= 'Z' ? key + kToLowerCase : 0;
    }
}

// Windows themselves have no messages here. The all-ones window asks for thread messages, as null does.
bool asksForThreadMessages(HWND window) {
    return window == nullptr || reinterpret_cast<std::uintptr_t>(window) == UINTPTR_MAX;
}

}  // namespace

extern "C" BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT flags) {
    Queue& queue = ownQueue();
    if (message == nullptr || !asksForThreadMessages(window)) return 0;
    Node* taken = nullptr;
    {
        const std::lock_guard lock(registry.mutex);
        Node** removed = (flags & PM_REMOVE) != 0 ? &taken : nullptr;
        if (!queue.findMessage(first, last, message, removed)) return 0;
    }
    delete taken;
    return 1;
}

extern "C" BOOL TranslateMessage(const MSG* message) {
    if (message == nullptr) return 0;
    switch (message->message) {
        case WM_KEYDOWN: {
            const WPARAM character = characterOf(message->wParam);
            if (character != 0) {
                // A full queue loses the character, as it would lose the key press itself.
                appendTo(ownQueue().id(), makeNode(message->hwnd, WM_CHAR, character, message->lParam));
            }
            return 1;
        }
        case WM_KEYUP:
        case kSystemKeyDown:
        case kSystemKeyUp:
            return 1;
        default:
            return 0;
    }
}

extern "C" LRESULT DispatchMessageW(const MSG* message) {
    if (message == nullptr || dispatchHandler == nullptr) return 0;
    return dispatchHandler(message);
}

extern "C" BOOL PostThreadMessageW(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam) {
    return appendTo(threadId, makeNode(nullptr, message, wParam, lParam)) ? 1 : 0;
}

extern "C" DWORD GetCurrentThreadId() {
    return ownQueue().id();
}

extern "C" MessageDispatchHandler SetMessageDispatchHandler(MessageDispatchHandler handler) {
    const MessageDispatchHandler previous = dispatchHandler;
    dispatchHandler = handler;
    return previous;
}
