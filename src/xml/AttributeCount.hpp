#pragma once

#include "xml/DocumentUnits.hpp"

#include <cstddef>
#include <cstdint>

namespace opc::model {

/// Counts the attributes of each tag of a document before Xerces is given the tag. Xerces compares all attributes of a tag that
/// fall together in its table, and tells of them only then: a tag that is built for it takes quadratic time. So the comparisons
/// that all tags with many attributes can take are counted, too.
///
/// Refuses the declaration of a document type on the way, which Xerces doesn't name when it refuses it.
///
/// Looks for what ends tags, values, comments and the like, in every encoding where these characters are those of ASCII.
class AttributeCount {
public:
    static constexpr std::size_t MOST = 1000;
    static constexpr char TOO_MANY[] = "XML content can not have more than 1000 attributes on an element";
    static constexpr char TOO_OFTEN_MANY[] =
        "XML content can not have more than 100 attributes on most of many elements";
    static constexpr char DOCUMENT_TYPE[] =
        "the document has a document type declaration, which isn't allowed";

    /// Whether it can count in a document that declares this encoding.
    static bool knows(const char16_t* encoding);

    /// @param bytes  the next ones of the document; at first, enough of them to tell the encoding
    /// @throws InvalidXMLDocument
    void pass(const unsigned char* bytes, std::size_t count);

private:
    enum class Within { Text, Start, Tag, Value, Exclamation, Dash, Comment, CData, Instruction };

    void take(unsigned char character);
    void takeInTag(unsigned char character);
    void countAttribute();
    [[noreturn]] void fail(const char* reason) const;

    DocumentUnits units;
    std::uint64_t total = 0; ///< bytes that were passed
    unsigned char low = 0;   ///< the low byte of a unit, and all others together
    unsigned char others = 0;
    std::uint64_t line = 1;
    Within place = Within::Text;
    unsigned char quote = 0; ///< that ends the value
    unsigned char last = 0;  ///< the last two characters
    unsigned char beforeLast = 0;
    std::size_t attributes = 0;    ///< of the tag
    std::uint64_t comparisons = 0; ///< that tags with many attributes can take
};

} // namespace opc::model
