#pragma once

#include <opc/core/InputStream.hpp>

namespace opc::model {

/// Takes a part's stream, which all its handles share, to its start, and again when it goes out of scope.
/// Opening it anew is also what shows it what has been written to the part meanwhile.
class StreamRewinder {
public:
    explicit StreamRewinder(InputStream& stream) : stream(stream) { rewind(); }
    StreamRewinder(const StreamRewinder&) = delete;
    StreamRewinder& operator=(const StreamRewinder&) = delete;
    ~StreamRewinder() {
        try {
            rewind();
        } catch (...) { // NOLINT(bugprone-empty-catch): the next reader meets the same failure
        }
    }

private:
    void rewind() {
        stream.close();
        stream.open();
    }

    InputStream& stream;
};

} // namespace opc::model
