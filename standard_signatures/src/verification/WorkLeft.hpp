#pragma once

#include "canonical/XmlTree.hpp"

#include <opc/core/InputStream.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace opc::standard_signatures {

/// Counts what is read.
class MeteredStream final : public InputStream {
public:
    explicit MeteredStream(InputStream& stream) : stream(stream) {}

    void open() override { stream.open(); }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const std::uint64_t got = stream.read(buffer, count);
        total += got;
        return got;
    }
    bool isDone() const override { return stream.isDone(); }
    void close() override { stream.close(); }

    std::uint64_t total = 0;

private:
    InputStream& stream;
};

/// What the work on all signatures of a package may still cost.
struct WorkLeft {
    std::uint64_t documentBytes = 96U << 20; ///< of documents that are read as a tree
    std::uint64_t canonicalBytes = 1U << 30; ///< of what is digested in a canonical form
    std::size_t relationships = 1000000;     ///< that are selected, as often as they are
    std::size_t keys = 200;                  ///< that are tried on signature values
    std::size_t timeStamps = 100;            ///< that are checked

    /// Reads a document that is read as a tree: an `XmlTree` or a `SignatureDocument`.
    template <typename Document>
    Document read(InputStream& stream) {
        MeteredStream metered(stream);
        XmlTreeLimits limits;
        limits.bytes = std::min(limits.bytes, documentBytes);
        Document document = Document::read(metered, limits);
        documentBytes -= std::min(metered.total, documentBytes);
        return document;
    }
};

} // namespace opc::standard_signatures
