#pragma once

#include "SigningProfile.hpp"

#include <string>
#include <vector>

namespace opctool {

class FileRun;

/// What there is to say about a new signature.
struct SigningResult {
    std::string name; ///< such as sig1
    Profile profile;

    /// In the standard's profile:
    /// @{
    std::string part;                     ///< of the signature
    std::string coverage;                 ///< complete or partial
    std::vector<std::string> unreachable; ///< parts that no relationship reaches
    std::vector<std::string> dangling;    ///< signed relationships to parts that aren't there
    /// @}
};

/// Prints the name, or all of it in JSON.
void printResult(FileRun& run, const SigningResult& result);

/// The JSON Schema of that.
constexpr const char* SIGNING_SCHEMA = R"({
  "type": "object",
  "required": ["name", "profile", "part", "coverage", "unreachable", "dangling"],
  "properties": {
    "name": {"description": "of the signature", "type": "string"},
    "profile": {"enum": ["standard", "opcmodel"]},
    "part": {"description": "of the signature, in the standard's profile", "type": ["string", "null"]},
    "coverage": {"description": "in the standard's profile", "enum": ["complete", "partial", null]},
    "unreachable": {
      "description": "parts that no relationship reaches, in the standard's profile: find out why they are there",
      "type": "array",
      "items": {"type": "string"}
    },
    "dangling": {
      "description": "signed relationships to parts that aren't there, as SOURCE#ID, in the standard's profile: find out why",
      "type": "array",
      "items": {"type": "string"}
    }
  }
})";

} // namespace opctool
