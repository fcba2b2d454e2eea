// A lock for critical sections of a few dozen instructions.
//
// Taking it costs one atomic exchange and giving it back a plain store, half of what a mutex costs; that is what
// keeps a movable block within the price of a few calls of malloc. A thread that finds the lock taken spins for a
// moment, then yields, then sleeps, so that an owner that was preempted gets the processor back even from a
// waiter of higher priority. The lock is constant-initialised and never destroyed: it works in constructors and
// destructors of static objects.
#ifndef VELQUAD_PLATFORM_SPIN_LOCK_H
#define VELQUAD_PLATFORM_SPIN_LOCK_H

#include <atomic>
#include <chrono>
#include <thread>

namespace velquad::platform {

class SpinLock {
  public:
    constexpr SpinLock() = default;
    SpinLock(const SpinLock&) = delete;
    SpinLock& operator=(const SpinLock&) = delete;

    void lock() noexcept {
        if (isHeld_.exchange(true, std::memory_order_acquire)) wait();
    }
    void unlock() noexcept { isHeld_.store(false, std::memory_order_release); }

  private:
    void wait() noexcept {
        constexpr int kSpins = 64;
        constexpr int kYields = 256;
        int round = 0;
        do {
            while (isHeld_.load(std::memory_order_relaxed)) {
                if (round >= kYields) {
                    std::this_thread::sleep_for(std::chrono::microseconds(50));
                } else if (round >= kSpins) {
                    std::this_thread::yield();
                }
                if (round < kYields) ++round;
            }
        } while (isHeld_.exchange(true, std::memory_order_acquire));
    }

    std::atomic<bool> isHeld_{false};
};

}  // namespace velquad::platform

#endif  // VELQUAD_PLATFORM_SPIN_LOCK_H
