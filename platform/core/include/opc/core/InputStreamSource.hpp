#pragma once

#include <opc/core/InputStream.hpp>

#include <boost/iostreams/categories.hpp>

#include <ios>

namespace opc {

/// A source for a stream of Boost.Iostreams over an `InputStream`, which must outlive it.
///
/// Cheap to copy, as Boost.Iostreams asks of its devices: all copies read the same stream.
class OPC_CORE_EXPORT InputStreamSource {
public:
    using char_type = char;
    using category = boost::iostreams::source_tag;

    explicit InputStreamSource(InputStream& stream) noexcept : source(&stream) {}

    /// Reads up to `count` bytes into `buffer`.
    /// @return how many were read, or -1 at the end of the stream
    std::streamsize read(char* buffer, std::streamsize count);

private:
    InputStream* source;
};

} // namespace opc
