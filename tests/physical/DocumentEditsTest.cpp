#include "lenient/src/DocumentEdits.hpp"

#include "support/Encodings.hpp"

#include <opc/core/Exception.hpp>

#include <gtest/gtest.h>

namespace {

using namespace opc::physical::lenient;
using opc::test::inAllEncodings;

/// Removes the elements of a root that have the attribute `go`, sets a new value for those with `set`, and adds as
/// many as the root's attribute `add` says.
Bytes edit(const Bytes& bytes) {
    const Document document(bytes);
    const Markup& markup = document.markup();
    DocumentEdits edits(document);
    for (const Element& element : markup.elements()) {
        if (markup.findAttribute(element, u"", u"go") != nullptr)
            edits.remove(element);
        if (const Attribute* attribute = markup.findAttribute(element, u"urn:u", u"set"))
            edits.setValue(*attribute, attribute->value() + u"<\n\"\u00E4");
    }
    const Attribute* const count = markup.findAttribute(markup.root(), u"", u"add");
    for (std::size_t i = 0; count != nullptr && i < count->value().size(); ++i)
        edits.append(u"n", {{u"a", u"&'"}});
    return edits.apply();
}

TEST(DocumentEdits, leaveEveryOtherByteAsItIs) {
    const std::string added = "<n a=\"&amp;&apos;\"/>";
    const std::string odd =
        "<?xml version='1.0'?><!-- <a> --><?i <b>?>\r\n<p:r xmlns:p='urn:p' xmlns:u='urn:u' "
        "t='>' ><![CDATA[<c>]]>\xC3\xA4\xF0\x9F\x98\x80<p:e u:set = '&#x1F600;";
    const std::pair<std::string, std::string> cases[] = {
        {"<r add='1' />", "<r add='1' >" + added + "</r>"},
        {"<p:r xmlns:p='u' add='12'/>\n", "<p:r xmlns:p='u' add='12'><p:n a=\"&amp;&apos;\"/>"
                                          "<p:n a=\"&amp;&apos;\"/></p:r>\n"},
        {"<r add='1'></r>", "<r add='1'>" + added + "</r>"},
        {"<r add='12'>\r\n\t<a/> <!-- a -->\r\n\r\n</r>",
         "<r add='12'>\r\n\t<a/> <!-- a -->" + added + added + "\r\n\r\n</r>"},
        {"<r>\r\n  <a go='/>'>\r\n<b go=''/></a>\r\n</r>", "<r>\r\n  \r\n</r>"},
        {"<r>\n  <a go=''/><b/>\n <c/><d go=''/>\n<e go=''/></r>", "<r>\n  <b/>\n <c/>\n</r>"},
        {"<r add='1'>\n  <a go=''/>\n  <b go=''/> \n</r>", "<r add='1'>\n  \n  " + added + " \n</r>"},
        {"<r add='1'><a go=''/></r>", "<r add='1'>" + added + "</r>"},
        {odd + "'/></p:r>",
         odd.substr(0, odd.size() - 9) + "\xF0\x9F\x98\x80&lt;&#x0A;&quot;\xC3\xA4'/></p:r>"},
        {odd + "' xmlns:u='urn:v'></p:e></p:r>", odd + "' xmlns:u='urn:v'></p:e></p:r>"},
    };
    for (const auto& [before, after] : cases) {
        const std::vector<Bytes> given = inAllEncodings(before);
        const std::vector<Bytes> expected = inAllEncodings(after);
        for (std::size_t i = 0; i < given.size(); ++i)
            EXPECT_EQ(edit(given[i]), expected[i]) << "in encoding " << i << ": " << before;
    }
}

TEST(DocumentEdits, knowLinesAndNamespaces) {
    const std::string text =
        "<?xml version='1.0'?>\r\n<r xmlns='urn:a'>\r<p:a xmlns:p='urn:p'\n><b xmlns=''/></p:a>"
        "<!--\n--><c>&#65;</c></r>";
    const Document document(Bytes(text.begin(), text.end()));
    std::u16string found;
    for (const Element& element : document.markup().elements())
        found.append(element.namespaceURI)
            .append(u" ")
            .append(element.localName)
            .append(opc::toString(std::to_string(element.line) + (element.hasText ? "t " : " "), true));
    EXPECT_EQ(found, u"urn:a r2 urn:p a3  b4 urn:a c5t ");
}

TEST(DocumentEdits, refuseWhatIsNoDocument) {
    for (const std::string text : {"", "<a>", "<a/><b/>", "<a x='&b;'/>", "<a>\xFF</a>", "<!DOCTYPE a><a/>",
                                   "<?xml version='1.0' encoding='ISO-8859-1'?><a/>", "text"}) {
        const Bytes bytes(text.begin(), text.end());
        EXPECT_THROW(Document{bytes}, opc::Exception) << text;
        EXPECT_EQ(hasDocumentType(bytes), text.substr(0, 2) == "<!") << text;
    }
    for (const Bytes& bytes :
         inAllEncodings("<?xml version='1.0'?> <!-->- -> --> <!DOCTYPE a [<!ENTITY b 'c'>]><a/>"))
        EXPECT_TRUE(hasDocumentType(bytes));
}

} // namespace
