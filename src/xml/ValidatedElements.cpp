#include "xml/ElementReader.hpp"

#include "xml/ElementVisits.hpp"
#include "xml/ReusedParser.hpp"
#include "xml/SchemaParsers.hpp"

#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

namespace opc::model {

namespace {

class ValidatedElements final : public ElementReader {
public:
    explicit ValidatedElements(IdleParsers& kind) : parser(kind) {}

    void read(InputStream& stream, const Visitor& visitor) override {
        parser.use(stream, [&visitor](xercesc::DOMLSParser* with, InputStream& document) {
            const ElementVisits visits(with, visitor);
            XercesHelper::readDocumentFromStream(with, document, true, {}, {});
        });
    }

private:
    const XercesGuard guard;
    ReusedParser parser;
};

} // namespace

std::unique_ptr<ElementReader> makeElementReader(ElementReader::Kind kind) {
    return std::make_unique<ValidatedElements>(
        kind == ElementReader::Kind::ContentTypes ? contentTypesParsers() : relationshipsParsers());
}

} // namespace opc::model
