#pragma once

#include <opc/core/InputStream.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

namespace opc::model {

/// An element while a parser reports it. Don't keep it.
class VisitedElement {
public:
    virtual bool isRoot() const = 0;

    /// The line in which its start tag ends.
    virtual std::uint64_t line() const = 0;

    /// Whether it has this tag name, which has no prefix.
    virtual bool isNamed(std::u16string_view tagName) const = 0;

    /// Whether it has this name in this namespace, with any prefix.
    virtual bool is(std::u16string_view itsNamespace, std::u16string_view name) const = 0;

    /// The value of an attribute without a prefix; empty if there is none. Good only during the visit.
    virtual std::u16string_view attribute(std::u16string_view name) const = 0;

protected:
    VisitedElement() = default;
    ~VisitedElement() = default;
    VisitedElement(const VisitedElement&) = default;
    VisitedElement& operator=(const VisitedElement&) = default;
};

/// Has a validating parser read documents of one kind, one after the other.
class ElementReader {
public:
    enum class Kind { ContentTypes, Relationships };
    using Visitor = std::function<void(const VisitedElement&)>;

    ElementReader() = default;
    ElementReader(const ElementReader&) = delete;
    ElementReader& operator=(const ElementReader&) = delete;
    virtual ~ElementReader() = default;

    /// Calls `visitor` for each element, in document order. If the reading fails, ignore the results of the
    /// visits.
    /// @param stream  open, at its first byte. It is read to its end and not closed
    /// @throws InvalidXMLDocument
    virtual void read(InputStream& stream, const Visitor& visitor) = 0;
};

std::unique_ptr<ElementReader> makeElementReader(ElementReader::Kind kind);

} // namespace opc::model
