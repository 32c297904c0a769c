#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace opc::scanning {

/// Pieces of work that several threads do at the same time, and that are handed on in the order in which they began.
///
/// It is bounded: no piece begins while as many have begun and aren't handed on as the window holds. So one slow piece
/// doesn't stop the others, and doesn't let them pile up either. All members can be called from any thread.
///
/// @tparam Entry  what a piece of work has; a class that isn't final. It stays in its place until it is handed on
template <typename Entry>
class OrderedWindow {
public:
    explicit OrderedWindow(std::size_t size) : most(size) {}

    /// Begins the next piece. Waits while the window is full.
    /// @param arguments  of the entry's constructor
    template <typename... Arguments>
    Entry& begin(Arguments&&... arguments) {
        std::unique_lock<std::mutex> lock(mutex);
        moved.wait(lock, [this] { return slots.size() < most; });
        slots.push_back(std::make_unique<Slot>(std::forward<Arguments>(arguments)...));
        return *slots.back();
    }

    /// The piece is done, for `take` to hand it on.
    void end(Entry& entry) {
        const std::lock_guard<std::mutex> lock(mutex);
        slotOf(entry).hasEnded = true;
        while (doneCount < slots.size() && slots[doneCount]->hasEnded)
            ++doneCount;
        if (doneCount >= wanted)
            done.notify_one();
    }

    /// The piece is done. Hands it on, if those before are, and those behind it that are done.
    /// @param use  called with each; the calls never overlap, and the entry is gone after its call
    template <typename Use>
    void end(Entry& entry, const Use& use) {
        const std::lock_guard<std::mutex> lock(mutex);
        slotOf(entry).hasEnded = true;
        if (!isFirst(entry))
            return;
        for (; isFirstDone(); slots.pop_front())
            use(*slots.front());
        moved.notify_all();
    }

    /// Hands on the first pieces. Waits until one is done; there must be one. To wake a thread takes as long as some pieces of
    /// work, so it waits a millisecond for more of them.
    /// @param wish  how many of them it would like to have
    std::vector<Entry> take(std::size_t wish) {
        std::unique_lock<std::mutex> lock(mutex);
        wanted = std::min(wish, slots.size());
        if (!done.wait_for(lock, std::chrono::milliseconds(1), [this] { return doneCount >= wanted; })) {
            wanted = 1;
            done.wait(lock, [this] { return doneCount != 0; });
        }
        wanted = NOTHING;
        std::vector<Entry> taken;
        for (; doneCount != 0 && taken.size() < wish; --doneCount, slots.pop_front())
            taken.push_back(std::move(static_cast<Entry&>(*slots.front())));
        moved.notify_all();
        return taken;
    }

    /// Waits until all pieces before this one are handed on.
    void waitUntilFirst(const Entry& entry) {
        std::unique_lock<std::mutex> lock(mutex);
        moved.wait(lock, [&] { return isFirst(entry); });
    }

    /// How many have begun and aren't handed on, and whether `take` would wait.
    /// @{
    std::size_t size() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return slots.size();
    }
    bool canTake() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return isFirstDone();
    }
    /// @}

private:
    static constexpr std::size_t NOTHING = static_cast<std::size_t>(-1);

    struct Slot : Entry {
        using Entry::Entry;
        bool hasEnded = false;
    };

    static Slot& slotOf(Entry& entry) { return static_cast<Slot&>(entry); }
    bool isFirst(const Entry& entry) const { return slots.front().get() == &entry; }
    bool isFirstDone() const { return !slots.empty() && slots.front()->hasEnded; }

    const std::size_t most;
    mutable std::mutex mutex;
    std::condition_variable moved; ///< the first piece has changed
    std::condition_variable done;  ///< as many are done as `take` wants
    std::deque<std::unique_ptr<Slot>> slots;
    std::size_t doneCount = 0;    ///< of the first pieces, for `take`
    std::size_t wanted = NOTHING; ///< by `take`
};

} // namespace opc::scanning
