#pragma once

#include <opc/model/Errors.hpp>

#include <utility>

namespace opc::model {

/// Runs `operation`. If Xerces refuses a document in it, throws `InvalidPartContent` with the same text.
template <typename Operation>
auto translateDocumentFailures(Operation&& operation) {
    try {
        return std::forward<Operation>(operation)();
    } catch (const InvalidXMLDocument& failure) {
        throw translated<InvalidPartContent>(failure, failure.what());
    }
}

} // namespace opc::model
