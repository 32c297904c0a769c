#include "OrderedOutput.hpp"

#include "Progress.hpp"

#include <ostream>
#include <utility>

namespace opctool {

namespace {

/// How much of a file is kept before it waits for its turn.
constexpr std::size_t KEPT = std::size_t{64} * 1024;

} // namespace

void OrderedOutput::Turn::write(Stream stream, const char* text, std::size_t size) {
    (stream == Stream::Output ? output : errors).append(text, size);
    if (output.size() + errors.size() < KEPT)
        return;
    owner.turns.waitUntilFirst(*this);
    owner.flush(*this);
}

OrderedOutput::OrderedOutput(std::ostream& output, std::ostream& errors, Progress& progress,
                             std::string between, std::size_t window)
    : output(output), errors(errors), progress(progress), between(std::move(between)), turns(window) {
}

OrderedOutput::~OrderedOutput() = default;

void OrderedOutput::end(Turn& turn) {
    turns.end(turn, [this](Turn& ended) { handOn(ended); });
}

void OrderedOutput::handOn(Turn& turn) {
    flush(turn);
    if (turn.done)
        turn.done();
    hasWritten = hasWritten || hasWrittenTurn;
    hasWrittenTurn = false;
}

/// Only for the first of the turns: nobody else writes then.
void OrderedOutput::flush(Turn& turn) {
    if (turn.output.empty() && turn.errors.empty())
        return;
    progress.pause([&] {
        if (!turn.output.empty()) {
            if (hasWritten && !hasWrittenTurn)
                output << between;
            hasWrittenTurn = true;
            output.write(turn.output.data(), static_cast<std::streamsize>(turn.output.size()));
        }
        if (!turn.errors.empty()) {
            output.flush(); // so that a terminal shows them in this order
            errors.write(turn.errors.data(), static_cast<std::streamsize>(turn.errors.size()));
        }
    });
    failed = !output;
    turn.output.clear();
    turn.errors.clear();
}

} // namespace opctool
