#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace opctool {

class JSONOutput;
struct Command;
struct Failure;
struct HiddenItem;

/// @file
/// The object that stands around every result in shape 2 of the tool's JSON.

/// Begins it. What is begun or added next is the result.
void beginEnvelope(JSONOutput& output, const std::string& command, const std::string& file);

/// Ends the result, where a failure has cut it off, and the envelope.
/// @param failure  null if there is none
void endEnvelope(JSONOutput& output, int status, const std::vector<HiddenItem>& hidden,
                 const Failure* failure);

/// The JSON Schema of what the command prints in shape 2 for one file.
nlohmann::ordered_json envelopeSchema(const Command& command);

} // namespace opctool
