#include "SchemaParser.hpp"
#include "support/Cases.hpp"
#include "support/Throws.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/Wrapper4InputSource.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <ctime>

namespace {

using namespace opc::model;
using namespace opc::test;

const std::initializer_list<const EmbeddedSchema*> CORE_PROPERTIES_ORDER = {
    &schemas::XML, &schemas::DUBLIN_CORE, &schemas::DCMI_TYPE, &schemas::DCMI_TERMS,
    &schemas::CORE_PROPERTIES};
const std::initializer_list<const EmbeddedSchema*> SIGNATURE_ORDER = {&schemas::PACKAGE_SIGNATURE,
                                                                      &schemas::XML_SIGNATURE};

/// Each case is a document with a `*`, a part of the message that refuses it, and the text in place of the `*`.
void check(const std::string& file, std::initializer_list<const EmbeddedSchema*> order) {
    SchemaParser parser(order);
    forEachCase(file, [&](const std::string& frame, const std::string& refusal, const std::string& text) {
        const std::string said = parser.refusal(replaced(frame, "*", text));
        EXPECT_TRUE(refusal == "accepted" ? said.empty() : said.find(refusal) != std::string::npos) << said;
    });
}

/// Fails the test for every message of Xerces, including warnings.
class Listener : public xercesc::DOMErrorHandler {
public:
    bool handleError(const xercesc::DOMError& error) override {
        char* text = xercesc::XMLString::transcode(error.getMessage());
        ADD_FAILURE() << text;
        xercesc::XMLString::release(&text);
        return true;
    }
};

TEST(Schemas, loadWithoutEvenAWarningAndNameNoPlaceToLoadFrom) {
    const XercesGuard guard;
    const std::initializer_list<const EmbeddedSchema*> contentTypes = {&schemas::CONTENT_TYPES};
    const std::initializer_list<const EmbeddedSchema*> relationships = {&schemas::RELATIONSHIPS};
    for (const auto& order : {CORE_PROPERTIES_ORDER, SIGNATURE_ORDER, contentTypes, relationships}) {
        const auto parser = XercesHelper::createParser();
        Listener listener;
        auto* const configuration = parser->getDomConfig();
        configuration->setParameter(xercesc::XMLUni::fgXercesUseCachedGrammarInParse, true);
        configuration->setParameter(xercesc::XMLUni::fgXercesSchemaFullChecking, true);
        configuration->setParameter(
            xercesc::XMLUni::fgDOMErrorHandler,
            static_cast<const void*>(static_cast<xercesc::DOMErrorHandler*>(&listener)));
        for (const EmbeddedSchema* schema : order) {
            const xercesc::Wrapper4InputSource source(
                new xercesc::MemBufInputSource(schema->text, schema->size, schema->bufferName));
            EXPECT_NE(parser->loadGrammar(&source, xercesc::Grammar::SchemaGrammarType, true), nullptr)
                << schema->bufferName;
            const std::string text(reinterpret_cast<const char*>(schema->text), schema->size);
            for (const char* word : {"schemaLocation", "DOCTYPE", "annotation", "include"})
                EXPECT_EQ(text.find(word), std::string::npos) << schema->bufferName;
        }
    }
}

TEST(GrammarLoading, failsWithTheMessageOfXercesOrSaysNothing) {
    const XercesGuard guard;
    const std::string text = "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'";
    const EmbeddedSchema broken = {"broken.xsd", reinterpret_cast<const unsigned char*>(text.data()),
                                   text.size()};
    const auto parser = XercesHelper::createParser();
    EXPECT_RAISES(InvalidXMLSchema, "Schema could not be loaded: fatal error during schema scan",
                  loadGrammars(parser.get(), {&broken}));
    struct Incomplete {
        std::initializer_list<const EmbeddedSchema*> order;
        std::string message;
    };
    const Incomplete incomplete[] = {
        {{&schemas::CORE_PROPERTIES}, "grammar not found for namespace 'http://purl.org/dc/terms/'"},
        {{&schemas::XML, &schemas::DCMI_TERMS, &schemas::DUBLIN_CORE},
         "grammar not found for namespace 'http://purl.org/dc/elements/1.1/'"},
        {{&schemas::XML, &schemas::DUBLIN_CORE, &schemas::DCMI_TERMS},
         "type 'http://purl.org/dc/dcmitype/:DCMIType' not found"},
    };
    for (const Incomplete& test : incomplete)
        EXPECT_RAISES(InvalidXMLSchema, "Schema could not be loaded: " + test.message,
                      loadGrammars(XercesHelper::createParser().get(), test.order));
    EXPECT_NO_THROW(loadGrammarUnchecked(parser.get(), broken));
    EXPECT_NO_THROW(loadGrammars(parser.get(), CORE_PROPERTIES_ORDER));
}

TEST(Schemas, takeWhatTheirFormatsAllow) {
    check("schemas/content-types.txt", {&schemas::CONTENT_TYPES});
    check("schemas/relationships.txt", {&schemas::RELATIONSHIPS});
    check("schemas/core-properties.txt", CORE_PROPERTIES_ORDER);
    check("schemas/signatures.txt", SIGNATURE_ORDER);
}

std::string withContentType(const std::string& value) {
    return "<Types xmlns='http://schemas.openxmlformats.org/package/2006/content-types'>"
           "<Override PartName='/a' ContentType='" +
           value + "'/></Types>";
}

TEST(Schemas, contentTypesTakeLinearTimeOnHostileValues) {
    SchemaParser parser({&schemas::CONTENT_TYPES});
    const std::clock_t start = std::clock();
    for (const std::string& value :
         {"a/b" + repeated(" ", 10000) + "x", "a/b;c=\"" + repeated(" ", 100000),
          "a/b;c=\"" + repeated("\\", 100000) + "!", "a/b" + repeated(";c=d", 10000) + ";",
          "a/b" + repeated("; c=\"\\\"\"", 10000) + "\"", repeated("a", 100000)})
        EXPECT_NE(parser.refusal(withContentType(value)), "") << value.substr(0, 20);
    EXPECT_EQ(parser.refusal(withContentType("a/b;c=\"" + repeated("d", 100000) + "\"")), "");
    EXPECT_EQ(parser.refusal(replaced(withContentType("a/b"), "Override PartName='/a'",
                                      "Default Extension='" + repeated("%20", 10000) + "'")),
              "");
    EXPECT_LT(std::clock() - start, 20 * CLOCKS_PER_SEC);
}

} // namespace
