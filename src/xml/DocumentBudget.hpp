#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/model/XmlLimits.hpp>

#include <cstdint>
#include <memory>

namespace opc::model {

/// Counts the XML documents of an open package towards its limits. Their shares keep it alive.
class DocumentBudget {
public:
    explicit DocumentBudget(const XmlLimits& limits = {}) : limits(limits) {}

    const XmlLimits limits;

private:
    friend class DocumentShare;

    XmlLimits::Size taken{0, 0};
};

/// What one document counts towards the limits, while this object lives.
class DocumentShare {
public:
    using Kind = XmlLimits::Size XmlLimits::*;

    /// The share of no document: nothing can be added.
    DocumentShare() noexcept = default;

    /// @param kind  the limit for a single document
    DocumentShare(std::shared_ptr<DocumentBudget> budget, Kind kind)
        : budget(std::move(budget)), kind(kind) {}
    DocumentShare(DocumentShare&& other) noexcept = default; // `other` has no budget then
    DocumentShare& operator=(DocumentShare&& other) noexcept;
    ~DocumentShare() { giveBack(); }

    /// Both count what was read or written.
    /// @throws InvalidPartContent  a limit is exceeded
    void addBytes(std::uint64_t count) { add(&XmlLimits::Size::bytes, count); }
    void addElements(std::uint64_t count) { add(&XmlLimits::Size::elements, count); }

private:
    void add(std::uint64_t XmlLimits::Size::*number, std::uint64_t count);
    void giveBack() noexcept;

    std::shared_ptr<DocumentBudget> budget;
    Kind kind = nullptr;
    XmlLimits::Size taken{0, 0};
};

/// A stream whose bytes are counted as they are read.
class MeteredStream : public InputStream {
public:
    /// @param stream, share    must outlive this object
    /// @param bytesPerElement  this number of bytes counts as an element too; 0 if bytes don't count
    MeteredStream(InputStream& stream, DocumentShare& share, std::uint64_t bytesPerElement = 0)
        : stream(stream), share(share), bytesPerElement(bytesPerElement) {}

    void open() override { stream.open(); }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override { return stream.isDone(); }
    void close() override { stream.close(); }

private:
    InputStream& stream;
    DocumentShare& share;
    const std::uint64_t bytesPerElement;
    std::uint64_t pending = 0; ///< bytes that don't make an element yet
};

} // namespace opc::model
