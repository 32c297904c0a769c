#pragma once

#include "Failures.hpp"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace opctool {

class JSONOutput;
struct Command;
struct HiddenItem;

/// @file
/// The object that stands around every result in shape 2 of the tool's JSON.

/// Begins it. What is begun or added next is the result.
/// @param file  empty if the command reads none
void beginEnvelope(JSONOutput& output, const std::string& command, const std::string& file);

/// The schema of the result of a change: the name of what was made, or null.
constexpr const char* NAME_SCHEMA = R"({
  "type": "object",
  "required": ["name"],
  "properties": {"name": {"description": "of what was made; null if it has none", "type": ["string", "null"]}}
})";

/// Adds that result.
/// @param name  may be empty
void addName(JSONOutput& output, const std::string& name);

/// Ends the envelope, and a result that a failure has cut off. A run without failure and result is a change that made
/// nothing with a name.
/// @param failure  null if there is none
void endEnvelope(JSONOutput& output, int status, const std::vector<HiddenItem>& hidden,
                 const Failure* failure);

/// The JSON Schema of what the command prints in shape 2 for one file.
nlohmann::ordered_json envelopeSchema(const Command& command);

} // namespace opctool
