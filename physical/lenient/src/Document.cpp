#include "Document.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Exception.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/model/XmlRules.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace opc::physical::lenient {

namespace {

/// The limits of a document that is kept with a list of its elements. The parser takes some 330 bytes for each tag
/// and attribute.
/// @{
constexpr std::size_t LARGEST = 4 << 20;
constexpr std::size_t MOST_MARKUP = 300000;
/// @}

DocumentText readText(const Bytes& bytes) {
    if (hasTooMuchMarkup(bytes))
        throw Exception("The document has too many elements and attributes.");
    model::XmlRules::check(bytes);
    auto text = DocumentText::decode(bytes);
    if (!text)
        throw Exception("The document is neither in UTF-8 nor in UTF-16.");
    return std::move(*text);
}

/// Takes what can come before a document type: white space, comments and processing instructions.
void skipProlog(std::string_view& text) {
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
        const bool isComment = text.substr(0, 4) == "<!--";
        if (!isComment && text.substr(0, 2) != "<?")
            return;
        const std::size_t end = text.find(isComment ? "-->" : "?>", isComment ? 4 : 2);
        text.remove_prefix(std::min(end, text.size()));
        text.remove_prefix(std::min<std::size_t>(isComment ? 3 : 2, text.size()));
    }
}

} // namespace

std::optional<Bytes> readDocument(interfaces::IPhysicalInputStream& stream) {
    Bytes bytes;
    std::array<unsigned char, 4096> block; // most documents aren't longer
    while (!stream.isDone()) {
        const auto got = std::min<std::uint64_t>(stream.read(block.data(), block.size()), block.size());
        if (got == 0) // the document ends here for a parser
            break;
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(got));
        if (bytes.size() > LARGEST)
            return std::nullopt;
    }
    return bytes;
}

bool hasTooMuchMarkup(const Bytes& document) {
    const auto isMarkup = [](unsigned char byte) { return byte == '<' || byte == '='; };
    return document.size() > MOST_MARKUP &&
           static_cast<std::size_t>(std::count_if(document.begin(), document.end(), isMarkup)) > MOST_MARKUP;
}

bool hasDocumentType(const Bytes& document) {
    std::string ascii;
    const auto take = [&ascii](char16_t unit) {
        if (unit > 0 && unit < 0x80)
            ascii.push_back(static_cast<char>(unit));
    };
    if (const auto text = DocumentText::decode(document))
        std::for_each(text->text().begin(), text->text().end(), take);
    else
        std::for_each(document.begin(), document.end(), take);
    std::string_view rest = ascii;
    skipProlog(rest);
    constexpr std::string_view DOCUMENT_TYPE = "<!DOCTYPE";
    return rest.substr(0, DOCUMENT_TYPE.size()) == DOCUMENT_TYPE;
}

Document::Document(const Bytes& bytes) : decoded(readText(bytes)), found(decoded.text()) {
}

} // namespace opc::physical::lenient
