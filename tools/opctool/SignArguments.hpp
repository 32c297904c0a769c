#pragma once

#include "SigningMaterial.hpp"

#include <string>
#include <vector>

namespace opctool {

/// What the command line says about a signature.
struct SignArguments {
    std::string profile; ///< may be empty
    SigningArguments signing;

    /// What is signed.
    /// @{
    std::vector<std::string> parts;
    std::vector<std::string> relationships;     ///< SOURCE:ID
    std::vector<std::string> relationshipTypes; ///< SOURCE:TYPE; in the library's own profile
    bool all = false;                           ///< properties, too; in the standard's profile
    /// @}

    std::string comment; ///< in the standard's profile

    bool choosesNothing() const {
        return parts.empty() && relationships.empty() && relationshipTypes.empty();
    }
};

} // namespace opctool
