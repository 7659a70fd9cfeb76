// SPDX-License-Identifier: GPL-3.0-or-later
#include "picture/workers.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace polyfab {
namespace {

constexpr int most = 16;

class Pool {
  public:
    explicit Pool(int size) {
        try {
            while (static_cast<int>(threads.size()) + 1 < size) {
                threads.emplace_back([this] { serve(); });
            }
        } catch (const std::system_error&) { // those that there are do it
        }
    }
    ~Pool() {
        {
            const std::lock_guard lock(mutex);
            ends = true;
        }
        wake.notify_all();
        for (std::thread& thread : threads) thread.join();
    }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    int size() const { return static_cast<int>(threads.size()) + 1; }

    void run(int count, const std::function<void(int)>& part) {
        {
            const std::lock_guard lock(mutex);
            job = &part;
            parts = count;
            next = 0;
        }
        wake.notify_all();
        takeParts(part);
        // Who has not come by now finds nothing to do and is not waited for.
        std::unique_lock lock(mutex);
        job = nullptr;
        left.wait(lock, [this] { return helping == 0; });
    }

  private:
    void takeParts(const std::function<void(int)>& part) {
        for (int i = next++; i < parts; i = next++) part(i);
    }

    void serve() {
        std::unique_lock lock(mutex);
        for (;;) {
            wake.wait(lock, [this] { return ends || (job != nullptr && next < parts); });
            if (ends) return;
            ++helping;
            const std::function<void(int)>& part = *job; // is there until the last helper has left
            lock.unlock();
            takeParts(part);
            lock.lock();
            if (--helping == 0) left.notify_one();
        }
    }

    std::mutex mutex;
    std::condition_variable wake, left;
    const std::function<void(int)>* job = nullptr; ///< null: nobody may begin
    int parts = 0;
    std::atomic<int> next = 0;
    int helping = 0; ///< threads of the pool that are at it
    bool ends = false;
    std::vector<std::thread> threads;
};

int wanted = 0;

Pool& pool() {
    static int made = -1;
    static std::unique_ptr<Pool> present;
    if (made != wanted) {
        const int processors = static_cast<int>(std::thread::hardware_concurrency());
        present.reset();
        present = std::make_unique<Pool>(std::clamp(wanted > 0 ? wanted : processors, 1, most));
        made = wanted;
    }
    return *present;
}

} // namespace

void inParallel(int count, const std::function<void(int)>& part) {
    if (count > 1) return pool().run(count, part);
    for (int i = 0; i < count; ++i) part(i);
}

void inPieces(std::size_t count, std::size_t size,
              const std::function<void(std::size_t, std::size_t)>& piece) {
    const std::size_t pieces = (count + size - 1) / size;
    inParallel(static_cast<int>(pieces), [&](int i) {
        const std::size_t from = static_cast<std::size_t>(i) * size;
        piece(from, std::min(from + size, count));
    });
}

int workers() { return pool().size(); }

void setWorkers(int count) { wanted = count; }

} // namespace polyfab
