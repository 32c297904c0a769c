#include "xml/PackageDocument.hpp"

#include "xml/UsualSpelling.hpp"

#include <opc/model/Errors.hpp>

#include <algorithm>

namespace opc::standard_signatures {

namespace {

constexpr const char* OTHER_ENCODING = "The document is neither in UTF-8 nor in UTF-16";

} // namespace

/// The bytes of a document. They are read a second time if its form is unusual.
class PackageDocument::CheckedBytes final : public InputStream {
public:
    CheckedBytes(InputStream& stream, std::uint64_t most, PackageDocument& document)
        : stream(stream), most(most), document(document) {}

    void open() override {
        stream.open();
        first.clear();
        taken = 0;
        spelling = {};
    }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const std::uint64_t got = stream.read(buffer, count);
        if (taken < ENOUGH)
            look(buffer, got);
        taken += got;
        if (document.needsUsualSpelling)
            if (const char* const odd = spelling.findOdd(buffer, static_cast<std::size_t>(got)))
                refuse(odd);
        if (taken > most)
            refuse("The document is longer than " + std::to_string(most) + " bytes");
        return got;
    }
    bool isDone() const override { return stream.isDone(); }
    void close() override { stream.close(); }

private:
    static constexpr std::uint64_t ENOUGH = 4; ///< bytes, to tell an encoding

    void look(const unsigned char* bytes, std::uint64_t count) {
        first.append(bytes, bytes + std::min(count, ENOUGH - taken));
        if (first.size() < ENOUGH)
            return;
        const bool hasMark = first.compare(0, 2, "\xFE\xFF") == 0 || first.compare(0, 2, "\xFF\xFE") == 0;
        const bool isUTF32 = hasMark && first[2] == 0 && first[3] == 0;
        const bool isOneByteEach = first.find('\0') == std::string::npos;
        const bool isMarkup = std::string_view("<\xEF \t\r\n").find(first[0]) != std::string_view::npos;
        if (isUTF32 || (!hasMark && !(isOneByteEach && isMarkup)))
            refuse(OTHER_ENCODING);
        if (hasMark && document.needsUsualSpelling)
            refuse("The document is in UTF-16, which not all programs read");
        document.isUTF16 = hasMark;
    }

    InputStream& stream;
    const std::uint64_t most;
    PackageDocument& document;
    UsualSpelling spelling;
    std::string first;
    std::uint64_t taken = 0;
};

void PackageDocument::read(InputStream& stream, std::uint64_t mostBytes) {
    CheckedBytes bytes(stream, mostBytes, *this);
    model::readXmlDocument(bytes, *this);
}

bool PackageDocument::isLittleSpace(std::u16string_view text) {
    if (text.size() > spaceLeft || text.find_first_not_of(u" \t\r\n") != std::u16string_view::npos)
        return false;
    spaceLeft -= text.size();
    return true;
}

void PackageDocument::refuse(const std::string& reason) {
    throw model::InvalidXMLDocument(reason);
}

void PackageDocument::onVersion(std::u16string_view version) {
    if (version != u"1.0")
        refuse("The document isn't one of XML 1.0");
}

void PackageDocument::onDeclaration(std::u16string_view encoding) {
    const bool saysUTF16 =
        encoding == u"UTF-16" || encoding == u"utf-16"; // not all programs know other forms
    if (!encoding.empty() && !saysUTF16 && encoding != u"UTF-8" && encoding != u"utf-8")
        refuse(OTHER_ENCODING);
    if (!encoding.empty() && saysUTF16 != isUTF16)
        refuse(saysUTF16 ? "The document says that it is in UTF-16, and is in UTF-8"
                         : "The document says that it is in UTF-8, and is in UTF-16");
}

} // namespace opc::standard_signatures
