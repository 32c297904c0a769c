#pragma once

#include "xml/DocumentPoolReset.hpp"

#include <opc/model/XercesDeleter.hpp>

#include <memory>
#include <utility>

namespace opc::model {

/// A parser that reads many documents, one after the other. It is made when the first one comes, and made anew
/// when it has failed, which it may not survive, or when it keeps much of what it has read.
class ReusedParser {
public:
    using Owned = std::unique_ptr<xercesc::DOMLSParser, XercesDeleter>;

    explicit ReusedParser(Owned (*maker)()) : make(maker) {}

    /// Calls `operation` with the parser; the documents that it reads go when it ends.
    template <typename Operation>
    void use(Operation&& operation) {
        Owned parser = kept ? std::move(kept) : make();
        {
            const DocumentPoolReset reset(parser.get());
            std::forward<Operation>(operation)(parser.get());
        }
        if (!isWorn(*parser))
            kept = std::move(parser);
    }

private:
    static bool isWorn(xercesc::DOMLSParser& parser);

    Owned (*make)();
    Owned kept;
};

} // namespace opc::model
