#include "UnfinishedFile.hpp"

#include <opc/physical/UnfinishedFiles.hpp>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>

namespace opc::physical::zip {

// A signal can come at any moment. So entries are never freed, and each is read only while it has a process.
struct UnfinishedFile::Entry {
    std::atomic<bool> used{true};
    std::atomic<pid_t> process{0}; ///< that makes the file; 0: none. A forked one leaves it alone
    std::atomic<int> folder{-1};
    std::array<char, 256> name{};
    Entry* next = nullptr;

    static std::atomic<Entry*> first;

    /// An entry that is no longer used, or a new one.
    static Entry* take() {
        for (Entry* entry = first; entry; entry = entry->next)
            if (bool used = false; entry->used.compare_exchange_strong(used, true))
                return entry;
        auto* const made = new Entry;
        made->next = first;
        while (!first.compare_exchange_weak(made->next, made)) {
        }
        return made;
    }
};

std::atomic<UnfinishedFile::Entry*> UnfinishedFile::Entry::first{nullptr};

static_assert(std::atomic<void*>::is_always_lock_free && std::atomic<pid_t>::is_always_lock_free,
              "a signal handler reads them");

UnfinishedFile::UnfinishedFile() : entry(Entry::take()) {
}

UnfinishedFile::~UnfinishedFile() {
    forget();
    entry->used = false;
}

void UnfinishedFile::remember(int folder, const std::string& name) noexcept {
    entry->folder = folder;
    const std::size_t length = std::min(name.size(), entry->name.size() - 1);
    std::copy_n(name.data(), length, entry->name.data());
    entry->name[length] = '\0';
    entry->process = ::getpid();
}

void UnfinishedFile::forget() noexcept {
    entry->process = 0;
}

void UnfinishedFile::removeAll() noexcept {
    const pid_t self = ::getpid();
    for (const Entry* entry = Entry::first; entry; entry = entry->next)
        if (entry->process == self)
            ::unlinkat(entry->folder, entry->name.data(), 0);
}

} // namespace opc::physical::zip

void opc::physical::removeUnfinishedFiles() noexcept {
    const int before = errno;
    zip::UnfinishedFile::removeAll();
    errno = before;
}
