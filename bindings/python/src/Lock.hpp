#pragma once

#include <pybind11/pybind11.h>

#include <unistd.h>

#include <atomic>

/// @file
/// The interpreter's lock. When the interpreter ends, it unwinds the stack of each other thread that asks for the lock. Frames
/// of C++ can't stand that: their destructors would use Python's objects without the lock, and those that mustn't throw abort
/// the process. So such a thread stays here until the process has ended. Python 3.14 does the same. What the library has made
/// once is destroyed at the end of the process, so that waits for the threads that are still in the library.

namespace opcpython {

/// How many threads are in the library without the lock.
inline std::atomic<int> threadsInLibrary{0};

/// Waits at the end of the process until no thread is in the library, for some seconds: a thread may wait for a file.
void waitForThreadsInLibrary() noexcept;

/// @param take  asks for the lock
template <typename Take>
void takeLockOrStay(const Take& take) {
    struct Stay {
        bool hasLock = false;
        ~Stay() {
            while (!hasLock)
                ::pause();
        }
    } stay;
    take();
    stay.hasLock = true;
}

/// Other threads run Python while this object is there.
class LockReleased {
public:
    LockReleased() {
        ++threadsInLibrary;
        thread = PyEval_SaveThread();
    }
    LockReleased(const LockReleased&) = delete;
    LockReleased& operator=(const LockReleased&) = delete;
    ~LockReleased() {
        --threadsInLibrary;
        takeLockOrStay([this] { PyEval_RestoreThread(thread); });
    }

private:
    PyThreadState* thread;
};

/// This thread has the lock while this object is there. It may have had it before.
class LockTaken {
public:
    LockTaken() {
        if (wasInLibrary)
            --threadsInLibrary;
        takeLockOrStay([this] { before = PyGILState_Ensure(); });
    }
    LockTaken(const LockTaken&) = delete;
    LockTaken& operator=(const LockTaken&) = delete;
    ~LockTaken() {
        if (wasInLibrary)
            ++threadsInLibrary;
        PyGILState_Release(before);
    }

private:
    const bool wasInLibrary = PyGILState_Check() == 0;
    PyGILState_STATE before = PyGILState_UNLOCKED;
};

} // namespace opcpython
