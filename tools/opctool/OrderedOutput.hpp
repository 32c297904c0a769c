#pragma once

#include <opc/scanning/OrderedWindow.hpp>

#include <atomic>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <utility>

namespace opctool {

class Progress;

/// The output of files that are read at the same time, in the order in which they were begun.
///
/// What a file prints is kept until all files before it have ended. It is bounded twice: a file that prints much waits
/// for its turn and then prints directly; and no file begins while many others wait for their turn.
class OrderedOutput {
public:
    enum class Stream { Output, Errors };

    /// The output of one file, for one thread.
    class Turn {
    public:
        explicit Turn(OrderedOutput& owner) : owner(owner) {}

        void write(Stream stream, const char* text, std::size_t size);

        /// Calls this when the file has ended and all files before it have: for sums over all files, in their order. The
        /// calls of two files never overlap.
        void whenDone(std::function<void()> call) { done = std::move(call); }

    private:
        friend class OrderedOutput;

        OrderedOutput& owner;
        std::string output;
        std::string errors;
        std::function<void()> done;
    };

    /// @param output    must outlive this object, as must `errors` and `progress`
    /// @param between   what is written between the outputs of two files
    /// @param window    how many files may have begun whose output isn't written yet
    OrderedOutput(std::ostream& output, std::ostream& errors, Progress& progress, std::string between,
                  std::size_t window);
    ~OrderedOutput();

    /// Begins the next file. Waits while the window is full.
    Turn& begin() { return turns.begin(*this); }

    /// The file has printed all. The turn is gone after that.
    void end(Turn& turn);

    /// Whether the output can't be written any more.
    bool hasFailed() const { return failed; }

private:
    void flush(Turn& turn);
    void handOn(Turn& turn);

    std::ostream& output;
    std::ostream& errors;
    Progress& progress;
    const std::string between;
    bool hasWritten = false;     ///< output of an earlier file
    bool hasWrittenTurn = false; ///< output of the first of the turns
    std::atomic<bool> failed{false};
    opc::scanning::OrderedWindow<Turn> turns;
};

} // namespace opctool
