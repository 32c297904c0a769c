#pragma once

#include <opc/inspection/Rule.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace opc::inspection {

/// Where in a package a finding is. What is unknown or doesn't apply is empty or 0. Texts are UTF-8.
struct Place {
    std::string part{};         ///< the name of a part, `/word/document.xml`
    std::string item{};         ///< the name of an item of the archive that is no part
    std::string relationship{}; ///< the Id of a relationship in the part, which is a relationships part
    std::string target{};       ///< of that relationship, as it stands; `inspect` fills it in
    std::uint64_t line = 0;     ///< in the part or item, from 1
    std::uint64_t column = 0;
    std::optional<std::uint64_t> offset{}; ///< of a byte in the archive
};

/// One fault, or something worth knowing, in one place.
struct Finding {
    const Rule* rule; ///< never null; lives as long as the program
    Severity severity;
    Place place;
    std::string message; ///< one sentence without a full stop; names what is wrong, not only the rule
    std::string hint;    ///< what mends it here; empty if the rule's remedy says it all
};

} // namespace opc::inspection
