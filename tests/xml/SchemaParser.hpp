#pragma once

#include "support/PackageContent.hpp"
#include "support/Texts.hpp"
#include "xml/DocumentPoolReset.hpp"
#include "xml/GrammarLoading.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

namespace opc::test {

/// A parser with grammars, for tests that read texts.
class SchemaParser {
public:
    explicit SchemaParser(std::initializer_list<const model::EmbeddedSchema*> schemas = {}) {
        model::loadGrammars(parser.get(), schemas);
    }

    xercesc::DOMLSParser* get() { return parser.get(); }

    /// The message that refuses `text`; empty if it is accepted.
    std::string refusal(const std::string& text, bool validate = true) {
        const Bytes bytes = toBytes(text);
        ByteArrayInAdaptor stream(bytes);
        const model::DocumentPoolReset reset(parser.get());
        try {
            model::XercesHelper::readDocumentFromStream(parser.get(), stream, validate, u"", u"");
        } catch (const model::InvalidXMLDocument& failure) {
            return failure.what();
        }
        return {};
    }

private:
    model::XercesGuard guard;
    std::unique_ptr<xercesc::DOMLSParser, model::XercesDeleter> parser = model::XercesHelper::createParser();
};

} // namespace opc::test
