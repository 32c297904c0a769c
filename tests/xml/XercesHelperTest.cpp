#include "support/Texts.hpp"
#include "support/Throws.hpp"
#include "xml/ReusedParser.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesErrorHandler.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/dom/impl/DOMErrorImpl.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <cstdlib>
#include <memory>
#include <random>

namespace {

using namespace opc::model;
using opc::test::throws;
using xercesc::DOMElement;

bool isXercesUp() {
    return xercesc::XMLPlatformUtils::fgMemoryManager != nullptr;
}

int madeParsers = 0;

/// A kind of parser that counts how many were made.
IdleParsers& countedParsers() {
    static IdleParsers& parsers = *new IdleParsers([] {
        ++madeParsers;
        return XercesHelper::createParser();
    });
    return parsers;
}

/// Reads a document with an idle parser.
/// @return whether it is well-formed
bool isReadable(const std::string& document) {
    const XercesGuard guard;
    ReusedParser reused(countedParsers());
    const std::vector<unsigned char> bytes(document.begin(), document.end());
    opc::ByteArrayInAdaptor stream(bytes);
    try {
        reused.use(stream, [](xercesc::DOMLSParser* parser, opc::InputStream& source) {
            XercesHelper::readDocumentFromStream(parser, source, false, {}, {});
        });
        return true;
    } catch (const InvalidXMLDocument&) {
        return false;
    }
}

/// How many parsers are made to read documents one after the other, as for several packages.
int countParsersFor(const std::string& first, const std::string& second) {
    countedParsers().take(); // an idle one
    madeParsers = 0;
    isReadable(first);
    isReadable(second);
    return madeParsers;
}

/// Guards before, between and after the application's own calls, in a process that hasn't initialised Xerces.
int countFaultsOfGuards() {
    xercesc::XMLPlatformUtils::Initialize();
    auto first = std::make_unique<XercesGuard>();
    auto second = std::make_unique<XercesGuard>(*first);
    int faults = countParsersFor("<a/>", "<a/>") == 2 ? 0 : 1; // none may outlive this
    *second = *first;
    xercesc::XMLPlatformUtils::Terminate();
    first.reset();
    faults += isXercesUp() ? 0 : 1;
    second.reset();
    faults += isXercesUp() ? 1 : 0; // the application has terminated it
    XercesGuard();
    XercesGuard();
    faults += XercesString(u"a").toString() == u"a" ? 0 : 1; // up without a guard
    xercesc::XMLPlatformUtils::Initialize();
    xercesc::XMLPlatformUtils::Terminate();
    return faults + (isXercesUp() ? 0 : 1);
}

TEST(XercesGuardDeathTest, keepsXercesUpUnlessTheApplicationHasInitialisedIt) {
    EXPECT_FALSE(isXercesUp());
    EXPECT_EXIT(std::exit(countFaultsOfGuards()), testing::ExitedWithCode(0), "");
}

TEST(ReusedParser, servesTheNextPackageUnlessItKeepsMuch) {
    const XercesGuard guard;
    std::string namespaces = "<a";
    for (int i = 0; i < 600; ++i)
        namespaces += " xmlns:p" + std::to_string(i) + "='urn:" + std::to_string(i) + "'";
    EXPECT_EQ(countParsersFor("<a/>", "<a/>"), 1);
    EXPECT_EQ(countParsersFor("<a b='" + std::string(300000, 'x') + "'/>", "<a/>"), 2);
    EXPECT_EQ(countParsersFor(namespaces + "/>", "<a/>"), 2);
}

TEST(ReusedParser, keepsNothingOfADocumentThatFails) {
    const XercesGuard guard;
    const struct {
        std::string failing, next;
        bool isReadable;
    } cases[] = {
        {"<a>", "<a/>", true},
        {"<p:a xmlns:p='urn:p'><b>", "<p:a/>", false},
        {"<a xmlns='urn:p' xmlns:p='urn:p'></b>", "<p:a/>", false},
        {"<!DOCTYPE a [<!ENTITY e 'text'>]><a>", "<a>&e;</a>", false},
        {"<!DOCTYPE a [<!ENTITY e 'text'><a>", "<a>&e;</a>", false},
        {"<!DOCTYPE a [<!ATTLIST a b CDATA 'c'>]><a><", "<a b='d'/>", true},
        {"<?xml version='1.1'?><a>&#1;", "<a>&#1;</a>", false},
        {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE4", "<a>\xE4</a>", false},
        {"<a>\xE4</a>", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE4</a>", false},
        {"<a><![CDATA[<b>", "<a><b></a>", false},
    };
    for (const auto& documents : cases) {
        SCOPED_TRACE(documents.failing);
        EXPECT_EQ(countParsersFor(documents.failing, "<a/>"), 1);
        EXPECT_FALSE(isReadable(documents.failing));
        EXPECT_EQ(isReadable(documents.next), documents.isReadable);
        EXPECT_TRUE(isReadable("<a/>"));
    }
}

TEST(XercesString, holdsTheTextUpToItsFirstZero) {
    const XercesGuard guard;
    EXPECT_EQ(XercesString(std::u16string(u"a\0b", 3)).toString(), u"a");
    EXPECT_EQ(XercesString(static_cast<const char16_t*>(nullptr)).toString(), u"");
    XercesString name(u"Name");
    const std::u16string converted = name;
    EXPECT_EQ(converted, u"Name");
    char16_t* const buffer = name;
    EXPECT_EQ(buffer, name.toXMLCh());
    EXPECT_TRUE(name == u"Name" && name == XercesString(u"Name") && name != u"name" &&
                name != XercesString(u"Nam"));
}

TEST(XercesErrorHandler, keepsTheLastErrorAndPassesOverWarnings) {
    const XercesGuard guard;
    XercesErrorHandler handler;
    const auto handle = [&handler](xercesc::DOMError::ErrorSeverity severity, const char16_t* message) {
        return handler.handleError(xercesc::DOMErrorImpl(severity, message, nullptr));
    };
    EXPECT_TRUE(handle(xercesc::DOMError::DOM_SEVERITY_WARNING, u"warning"));
    EXPECT_NO_THROW(handler.throwIfError());
    EXPECT_FALSE(handle(xercesc::DOMError::DOM_SEVERITY_ERROR, u"first"));
    EXPECT_FALSE(handle(xercesc::DOMError::DOM_SEVERITY_FATAL_ERROR, u"second"));
    EXPECT_TRUE(handle(xercesc::DOMError::DOM_SEVERITY_WARNING, u"warning"));
    EXPECT_RAISES(InvalidXMLDocument, "second", handler.throwIfError());
    EXPECT_FALSE(handle(xercesc::DOMError::DOM_SEVERITY_ERROR, nullptr));
    EXPECT_THROW(handler.throwIfError(), InvalidXMLDocument);
}

class XercesHelperTest : public testing::Test {
protected:
    DOMElement* makeRoot() { return XercesHelper::appendElement(document.get(), XercesString(u"root")); }

    XercesGuard guard;
    std::unique_ptr<xercesc::DOMDocument, XercesDeleter> document = XercesHelper::createDocument();
};

TEST_F(XercesHelperTest, changesFailWithTheMessageOfXerces) {
    DOMElement* const root = makeRoot();
    const XercesString good(u"a"), bad(u"1a"), unbound(u"p:a"), empty(u"");
    const char* const secondRoot = "attempt is made to insert a node where it is not permitted";
    const char* const badCharacter = "invalid or illegal XML character";
    const char* const badNamespace = "attempt is made to create or change an object in a way which is "
                                     "incorrect with respect to namespaces";
    using X = XercesHelper;
    EXPECT_RAISES(InvalidXMLDocument, secondRoot, X::appendElement(document.get(), good));
    EXPECT_RAISES(InvalidXMLDocument, secondRoot, X::appendElementNS(document.get(), empty, good));
    EXPECT_RAISES(InvalidXMLDocument, badCharacter, X::appendElement(root, bad));
    EXPECT_RAISES(InvalidXMLDocument, badCharacter, X::setElementAttribute(root, bad, u""));
    EXPECT_RAISES(InvalidXMLDocument, badNamespace, X::appendElementNS(root, empty, unbound));
    EXPECT_RAISES(InvalidXMLDocument, badNamespace, X::setElementAttributeNS(root, empty, unbound, u""));
    EXPECT_EQ(root->getFirstChild(), nullptr);
}

/// Builds a tree with all combinations of names, namespaces and prefixes, and with text and comments between them.
void grow(DOMElement* parent, int depth, std::mt19937& random) {
    static const char16_t* const namespaces[] = {u"", u"urn:one", u"urn:two"};
    static const char16_t* const names[] = {u"a", u"b", u"p:a"};
    for (auto i = random() % 5; i > 0; --i) {
        const auto kind = random() % 6;
        const XercesString name(names[random() % 3]);
        if (kind == 0)
            parent->appendChild(parent->getOwnerDocument()->createTextNode(u"a"));
        else if (kind == 1)
            parent->appendChild(parent->getOwnerDocument()->createComment(u"a"));
        else if (depth > 0)
            grow(kind == 2
                     ? XercesHelper::appendElement(parent, name)
                     : XercesHelper::appendElementNS(
                           parent, XercesString(namespaces[name == u"p:a" ? 1 + random() % 2 : random() % 3]),
                           name),
                 depth - 1, random);
    }
}

template <typename List>
void expectSame(const List* expected, const std::vector<DOMElement*>& all, const DOMElement* first) {
    ASSERT_EQ(all.size(), expected->getLength());
    for (XMLSize_t i = 0; i < all.size(); ++i)
        EXPECT_EQ(all[i], expected->item(i));
    EXPECT_EQ(first, all.empty() ? nullptr : all.front());
}

TEST_F(XercesHelperTest, findsWhatTheNodeListsOfTheDOMFind) {
    std::mt19937 random(20); // always the same trees
    DOMElement* const root = makeRoot();
    for (int tree = 0; tree < 40; ++tree) {
        DOMElement* const top = XercesHelper::appendElement(root, XercesString(u"a"));
        grow(top, 5, random);
        for (const char16_t* text : {u"a", u"b", u"p:a", u"*", u"", u"missing"}) {
            const XercesString name(text);
            expectSame(top->getElementsByTagName(text), XercesHelper::getElements(top, name),
                       XercesHelper::getElement(top, name));
            for (const char16_t* uri : {u"", u"urn:one", u"*", u"urn:missing"}) {
                const XercesString space(uri);
                expectSame(top->getElementsByTagNameNS(uri, text),
                           XercesHelper::getElementsNS(top, space, name),
                           XercesHelper::getElementNS(top, space, name));
            }
        }
    }
}

TEST_F(XercesHelperTest, readsAttributesOrLeavesTheValue) {
    DOMElement* const root = makeRoot();
    const XercesString plain(u"a"), space(u"urn:one"), qualified(u"p:b"), local(u"b"), empty(u"");
    XercesHelper::setElementAttribute(root, plain, u"");
    XercesHelper::setElementAttributeNS(root, space, qualified, u"value");
    std::u16string value = u"before";
    EXPECT_FALSE(XercesHelper::getElementAttribute(root, local, value));
    EXPECT_FALSE(XercesHelper::getElementAttributeNS(root, empty, local, value));
    EXPECT_FALSE(XercesHelper::getElementAttributeNS(root, space, plain, value));
    EXPECT_EQ(value, u"before");
    EXPECT_TRUE(XercesHelper::getElementAttribute(root, plain, value));
    EXPECT_EQ(value, u"");
    EXPECT_TRUE(XercesHelper::getElementAttributeNS(root, space, local, value));
    EXPECT_EQ(value, u"value");
    EXPECT_TRUE(XercesHelper::getElementAttribute(root, qualified, value));
}

TEST_F(XercesHelperTest, trimsTheEndOfATextAlone) {
    DOMElement* const root = makeRoot();
    for (const std::u16string row :
         {u" | ", u" \t\n\v\f\r | ", u" a b \r\n |  a b", u"a\u00A0 | a\u00A0", u"a\u0085 | a\u0085",
          u"a\u2003 | a\u2003", u"a\u0120  | a\u0120", u"a\u0008 | a\u0008"}) {
        const auto [given, trimmed] = opc::test::columns<2>(row);
        XercesHelper::setElementText(root, given);
        std::u16string text = u"before";
        EXPECT_TRUE(XercesHelper::getElementText(root, text));
        EXPECT_EQ(text, given);
        EXPECT_TRUE(XercesHelper::getTrimmedElementText(root, text));
        EXPECT_EQ(text, trimmed);
    }
}

TEST_F(XercesHelperTest, takesTheFirstChildAloneAsText) {
    DOMElement* const root = makeRoot();
    for (const auto get : {&XercesHelper::getElementText, &XercesHelper::getTrimmedElementText}) {
        std::u16string text = u"before";
        EXPECT_FALSE(get(nullptr, text));
        EXPECT_EQ(text, u"");
    }
    const auto expectText = [root](const std::u16string& expected) {
        std::u16string text = u"before";
        EXPECT_TRUE(XercesHelper::getElementText(root, text));
        EXPECT_EQ(text, expected);
    };
    expectText(u"");
    root->appendChild(document->createCDATASection(u"first"));
    root->appendChild(document->createTextNode(u"second"));
    expectText(u"first");
    root->insertBefore(document->createElement(u"a"), root->getFirstChild());
    expectText(u"");
    XercesHelper::setElementText(root, u"only");
    EXPECT_EQ(root->getFirstChild(), root->getLastChild());
    expectText(u"only");
}

} // namespace
