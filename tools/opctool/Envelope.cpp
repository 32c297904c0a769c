#include "Envelope.hpp"

#include "Command.hpp"
#include "Failures.hpp"
#include "FileRun.hpp"
#include "JSONOutput.hpp"
#include "JSONText.hpp"

#include <opc/core/Text.hpp>

#include <nlohmann/json.hpp>

#include <cstdint>

namespace opctool {

namespace {

using nlohmann::ordered_json;

constexpr int SHAPE = 2;

std::string toBase64(const std::string& bytes) {
    static constexpr char DIGITS[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8U | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            text += at + i <= bytes.size() ? DIGITS[group >> (18 - 6 * i) & 0x3FU] : '=';
    }
    return text;
}

/// The name of a file, which need not be UTF-8; null if there is none.
ordered_json toJSON(const std::string& file) {
    if (file.empty())
        return nullptr;
    if (opc::toUDEString(opc::toString(file, true)) == file)
        return file;
    return {{"bytes", toBase64(file)}};
}

constexpr const char* ENVELOPE_SCHEMA = R"({
  "$schema": "https://json-schema.org/draft/2020-12/schema",
  "type": "object",
  "required": ["opctool", "file", "status", "hidden"],
  "anyOf": [{"required": ["result"]}, {"required": ["error"]}],
  "if": {"properties": {"status": {"const": 3}}}, "then": {"required": ["error"]}, "else": {"required": ["result"]},
  "properties": {
    "opctool": {
      "type": "object",
      "required": ["version", "shape", "command"],
      "properties": {"version": {"type": "string"}, "shape": {"const": 2}, "command": {"type": "string"}}
    },
    "file": {
      "description": "as it was given; if it isn't UTF-8, its bytes in base64; null if the command reads none",
      "oneOf": [
        {"type": ["string", "null"]},
        {"type": "object", "required": ["bytes"], "properties": {"bytes": {"type": "string"}}}
      ]
    },
    "result": {},
    "status": {"description": "of this file: 0 success, 1 the answer is no, 3 failure", "enum": [0, 1, 3]},
    "hidden": {
      "description": "what was passed over",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["place", "line", "reason", "done", "rule"],
        "properties": {
          "place": {"description": "the item, part or relationship; empty for the package", "type": "string"},
          "line": {"type": ["integer", "null"]},
          "reason": {"type": "string"},
          "done": {"description": "what is done about it", "type": ["string", "null"]},
          "rule": {"description": "of ECMA-376 Part 2", "type": ["string", "null"]}
        }
      }
    },
    "error": {
      "description": "a result beside it holds what was found before the failure",
      "type": "object",
      "required": ["class", "code", "kind", "message", "part", "relationship"],
      "properties": {
        "class": {"type": "string"},
        "code": {"type": "integer"},
        "kind": {"enum": ["format", "not-found", "state", "store", "signature", "limit", "installation"]},
        "message": {"type": "string"},
        "part": {"type": ["string", "null"]},
        "relationship": {"type": ["string", "null"]}
      }
    }
  }
})";

} // namespace

void beginEnvelope(JSONOutput& output, const std::string& command, const std::string& file) {
    output.beginObject();
    output.add({{"version", OPCMODEL_VERSION}, {"shape", SHAPE}, {"command", command}}, "opctool");
    output.add(toJSON(file), "file");
    output.nameNext("result");
}

void addName(JSONOutput& output, const std::string& name) {
    output.add({{"name", textOrNull(name)}});
}

void endEnvelope(JSONOutput& output, int status, const std::vector<HiddenItem>& hidden,
                 const Failure* failure) {
    while (output.depth() > 1)
        output.end();
    if (output.isNamePending() && failure == nullptr)
        addName(output, {});
    output.add(status, "status");
    output.beginArray("hidden");
    for (const HiddenItem& item : hidden)
        output.add({{"place", item.place},
                    {"line", item.line == 0 ? ordered_json() : ordered_json(item.line)},
                    {"reason", item.reason},
                    {"done", textOrNull(item.done)},
                    {"rule", textOrNull(item.rule)}});
    output.end();
    if (failure != nullptr)
        output.add(failureToJSON(*failure), "error");
    output.end();
}

ordered_json envelopeSchema(const Command& command) {
    ordered_json schema = ordered_json::parse(ENVELOPE_SCHEMA);
    schema["title"] = std::string("opctool ") + command.name + " --json=2";
    schema["properties"]["opctool"]["properties"]["command"] = {{"const", command.name}};
    schema["properties"]["result"] = ordered_json::parse(command.resultSchema);
    return schema;
}

} // namespace opctool
