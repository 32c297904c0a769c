#pragma once

#include <xercesc/dom/DOMLSParser.hpp>

namespace opc::model {

/// Frees the documents of a parser at the end of the scope. Otherwise a parser would keep all documents that it has
/// read.
class DocumentPoolReset {
public:
    explicit DocumentPoolReset(xercesc::DOMLSParser* parser) : parser(parser) {}
    DocumentPoolReset(const DocumentPoolReset&) = delete;
    DocumentPoolReset& operator=(const DocumentPoolReset&) = delete;
    ~DocumentPoolReset() {
        try {
            parser->resetDocumentPool();
        } catch (...) {
            // A parser that ran out of memory throws here. It frees its documents when it is released.
        }
    }

private:
    xercesc::DOMLSParser* parser;
};

} // namespace opc::model
