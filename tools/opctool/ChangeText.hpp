#pragma once

#include <opc/editing/Change.hpp>

#include <nlohmann/json_fwd.hpp>

namespace opctool {

/// The JSON of a change, as `CHANGES_SCHEMA` has it.
nlohmann::ordered_json changeToJSON(const opc::editing::Change& change);

/// The schema of the result of a command that edits a package.
constexpr const char* CHANGES_SCHEMA = R"({
  "type": "object",
  "required": ["name", "changes", "brokenSignatures", "narrowedSignatures", "dryRun"],
  "properties": {
    "name": {"description": "of what was made; null if it has none", "type": ["string", "null"]},
    "changes": {
      "description": "in their order",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["kind", "place", "name", "before", "after", "text"],
        "properties": {
          "kind": {"enum": ["part-added", "part-removed", "part-renamed", "content-replaced", "content-type-changed",
            "relationship-added", "relationship-removed", "relationship-changed", "property-changed", "mended"]},
          "place": {"description": "the part, or the source of the relationship; / is the package", "type": "string"},
          "name": {"description": "the ID of the relationship, or the property", "type": ["string", "null"]},
          "text": {"description": "the change in words", "type": "string"}
        },
        "patternProperties": {
          "^(before|after)$": {
            "description": "what there was or is: a content type, a name, a target, a value; null if there is nothing",
            "type": ["object", "null"],
            "required": ["text", "type", "external", "size"],
            "properties": {
              "text": {"type": "string"},
              "type": {"description": "of a relationship", "type": ["string", "null"]},
              "external": {"description": "of a relationship: whether its target is outside the package", "type": "boolean"},
              "size": {"description": "of the content in bytes, if it is known", "type": ["integer", "null"]}
            }
          }
        }
      }
    },
    "brokenSignatures": {
      "description": "the parts of the signatures that don't hold any more",
      "type": "array",
      "items": {"type": "string"}
    },
    "narrowedSignatures": {
      "description": "the parts of the signatures that go on to hold, and don't cover what was added",
      "type": "array",
      "items": {"type": "string"}
    },
    "dryRun": {"description": "whether nothing was written", "type": "boolean"}
  }
})";

} // namespace opctool
