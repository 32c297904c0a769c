#pragma once

#include <opc/physical/LenientExport.hpp>

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace opc::physical::lenient {

/// A piece of a text.
struct Span {
    std::size_t begin;
    std::size_t end; ///< after the last code unit
};

/// An attribute of an element, including namespace declarations.
struct Attribute {
    Span span;                  ///< from its name to the closing quote
    std::u16string_view prefix; ///< empty if there is none
    std::u16string_view localName;
    std::u16string_view namespaceURI; ///< what a declaration declares; otherwise empty without a prefix
    std::u16string_view rawValue;     ///< as it is between the quotes

    /// With references resolved, and with blanks instead of line breaks and tabs (XML 1.0 section 3.3.3).
    OPC_LENIENT_EXPORT std::u16string value() const;

    bool isDeclaration() const { return prefix.empty() ? localName == u"xmlns" : prefix == u"xmlns"; }

    /// The prefix that a declaration declares; empty for the default namespace.
    std::u16string_view declaredPrefix() const { return prefix.empty() ? prefix : localName; }

    bool is(std::u16string_view itsNamespace, std::u16string_view name) const {
        return localName == name && namespaceURI == itsNamespace && !isDeclaration();
    }
};

struct Element {
    static constexpr std::size_t NO_PARENT = static_cast<std::size_t>(-1);

    std::size_t parent; ///< its index among the elements; `NO_PARENT` for the root
    std::size_t depth;  ///< 0 for the root
    std::size_t line;   ///< the line where it begins, from 1
    Span span;          ///< from its start tag to its end tag
    Span startTag;
    std::size_t contentEnd; ///< the start of its end tag; the end of the start tag if there is none
    std::u16string_view prefix;
    std::u16string_view localName;
    std::u16string_view namespaceURI;
    std::size_t firstAttribute;
    std::size_t attributeCount;
    bool hasText; ///< whether it directly contains anything but white space, comments and elements

    bool isEmptyTag() const { return startTag.end == span.end; }
    bool is(std::u16string_view itsNamespace, std::u16string_view name) const {
        return localName == name && namespaceURI == itsNamespace;
    }
};

/// Whether a code unit is white space between attributes. The last two are white space only in XML 1.1.
inline bool isMarkupSpace(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r' || unit == u'\u0085' ||
           unit == u'\u2028';
}

/// The elements of a document, with their positions in its text.
class OPC_LENIENT_EXPORT Markup {
public:
    /// The attributes of one element.
    struct Attributes {
        const Attribute* first;
        const Attribute* last;
        const Attribute* begin() const { return first; }
        const Attribute* end() const { return last; }
    };

    /// @param text  a well-formed document by a parser's judgement, without a document type; must outlive this object
    ///              and not move
    /// @throws Exception  it isn't such a document after all
    explicit Markup(const std::u16string& text);
    Markup(const Markup&) = delete;
    Markup& operator=(const Markup&) = delete;

    /// In the order of their start tags, beginning with the root.
    const std::vector<Element>& elements() const { return found; }
    const Element& root() const { return found.front(); }

    /// In the order of the elements.
    const std::vector<Attribute>& allAttributes() const { return values; }

    Attributes attributes(const Element& element) const {
        const Attribute* const first = values.data() + element.firstAttribute;
        return {first, first + element.attributeCount};
    }

    /// @return null if the element has no such attribute
    const Attribute* findAttribute(const Element& element, std::u16string_view namespaceURI,
                                   std::u16string_view name) const;

private:
    friend class MarkupScanner;

    std::vector<Element> found;
    std::vector<Attribute> values;
    std::set<std::u16string, std::less<>> namespaces;
};

} // namespace opc::physical::lenient
