#pragma once

#include "subject/Subject.hpp"

#include <opc/model/CoreProperties.hpp>

#include <string>
#include <vector>

namespace opc::inspection {

/// What the model makes of a core properties document.
struct ReadCoreProperties {
    opc::model::CoreProperties properties; ///< empty if there is a failure
    std::string failure;                   ///< its message; empty if the document is valid
    std::string details;
};
ReadCoreProperties readCoreProperties(const std::string& document);

/// A fault of a core properties document, for one of the rules [M4.2] to [M4.5].
struct CorePropertiesFault {
    std::string_view rule;
    std::string message;
    std::uint64_t line, column;
};

/// Looks for all of them in a document, which need not be valid otherwise.
/// @param state  filled; its faults are attributes that no element of the document can have
std::vector<CorePropertiesFault> findCorePropertiesFaults(const Archive& archive, const PartView& part,
                                                          DocumentState& state);

} // namespace opc::inspection
