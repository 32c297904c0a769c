#pragma once

#include <opc/core/InputStream.hpp>

#include <boost/iostreams/categories.hpp>

#include <ios>

namespace opc {

/// A source for Boost.Iostreams that reads an `InputStream`, which must outlive it.
///
/// Cheap to copy, as Boost.Iostreams requires. All copies read the same stream.
class OPC_CORE_EXPORT InputStreamSource {
public:
    using char_type = char;
    using category = boost::iostreams::source_tag;

    explicit InputStreamSource(InputStream& stream) noexcept : source(&stream) {}

    /// Reads up to `count` bytes into `buffer`.
    /// @return the number of bytes read, or -1 at the end of the stream
    std::streamsize read(char* buffer, std::streamsize count);

private:
    InputStream* source;
};

} // namespace opc
