#pragma once

#include <opc/core/InputStream.hpp>

namespace opc::model {

/// Rewinds a part's stream, which all its handles share, now and again at the end of the scope. Opening it again also
/// shows it what was written to the part meanwhile.
class StreamRewinder {
public:
    explicit StreamRewinder(InputStream& stream) : stream(stream) { rewind(); }
    StreamRewinder(const StreamRewinder&) = delete;
    StreamRewinder& operator=(const StreamRewinder&) = delete;
    ~StreamRewinder() {
        try {
            rewind();
        } catch (...) { // NOLINT(bugprone-empty-catch): the next reader gets the same failure
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
