#pragma once

#include <xercesc/dom/DOMLSParser.hpp>

namespace opc::model {

/// Frees the documents of a parser when it goes out of scope, so that none outlives the read that made it.
/// Without it a parser that lives long keeps every document that it has read.
class DocumentPoolReset {
public:
    explicit DocumentPoolReset(xercesc::DOMLSParser* parser) : parser(parser) {}
    DocumentPoolReset(const DocumentPoolReset&) = delete;
    DocumentPoolReset& operator=(const DocumentPoolReset&) = delete;
    ~DocumentPoolReset() {
        try {
            parser->resetDocumentPool();
        } catch (...) {
            // A parser that ran out of memory refuses. It frees its documents when it is released.
        }
    }

private:
    xercesc::DOMLSParser* parser;
};

} // namespace opc::model
