#include "DiffOutput.hpp"
#include "FileRun.hpp"

#include <opc/core/Exception.hpp>

#include <nlohmann/json.hpp>

#include <optional>
#include <vector>

namespace opctool {

namespace {

using namespace opc::inspection;
using nlohmann::ordered_json;
using Kind = ContentDifference::Kind;
using Outcome = TextDifference::Outcome;

/// @return null if the content can't be read
ordered_json digestOrNull(const ContentVersion& version) {
    try {
        return digestOf(version);
    } catch (const opc::Exception&) {
        return nullptr;
    }
}

ordered_json describe(const std::optional<ContentVersion>& version) {
    if (!version)
        return nullptr;
    return {
        {"name", version->name},
        {"contentType", version->contentType.empty() ? ordered_json() : ordered_json(version->contentType)},
        {"size", version->size},
        {"sha256", digestOrNull(*version)}};
}

ordered_json describe(const std::optional<RelationshipVersion>& version) {
    if (!version)
        return nullptr;
    return {{"id", version->id},
            {"type", version->type},
            {"target", version->target},
            {"external", version->isExternal}};
}

ordered_json describe(const Hunk& hunk) {
    ordered_json lines = ordered_json::array();
    for (const HunkLine& line : hunk.lines)
        lines.push_back(line.mark + line.text);
    return {{"before", {hunk.beforeLine, hunk.beforeCount}},
            {"now", {hunk.nowLine, hunk.nowCount}},
            {"lines", std::move(lines)}};
}

/// What kind of content changed, and how.
void addContentChange(ordered_json& object, const ContentDifference& difference, std::size_t context) {
    TextDifference text;
    if (difference.kind == Kind::Changed && difference.hasOtherContent && difference.unreadable.empty())
        text = compareText(difference, context);
    const bool hasLines = text.outcome == Outcome::Lines;
    object["content"] = !difference.unreadable.empty()      ? "unreadable"
                        : !difference.hasOtherContent       ? "same"
                        : text.outcome == Outcome::Lines    ? "lines"
                        : text.outcome == Outcome::SameText ? "same-text"
                                                            : "bytes";
    object["removedLines"] = hasLines ? ordered_json(text.removedLines) : ordered_json();
    object["addedLines"] = hasLines ? ordered_json(text.addedLines) : ordered_json();
    object["hunks"] = ordered_json::array();
    for (const Hunk& hunk : text.hunks)
        object["hunks"].push_back(describe(hunk));
}

ordered_json describe(const ContentDifference& difference, std::size_t context) {
    if (difference.kind == Kind::Added)
        return describe(difference.now);
    if (difference.kind == Kind::Removed)
        return describe(difference.before);
    ordered_json object{{"before", describe(difference.before)}, {"now", describe(difference.now)}};
    if (difference.kind == Kind::Changed)
        addContentChange(object, difference, context);
    return object;
}

void addContents(JSONOutput& output, const char* name, const std::vector<ContentDifference>& all,
                 std::size_t context) {
    output.beginObject(name);
    for (const auto& [kind, list] : {std::pair(Kind::Added, "added"),
                                     {Kind::Removed, "removed"},
                                     {Kind::Moved, "moved"},
                                     {Kind::Changed, "changed"}}) {
        output.beginArray(list);
        for (const ContentDifference& one : all)
            if (one.kind == kind)
                output.add(describe(one, context));
        output.end();
    }
    output.end();
}

} // namespace

void printDiffJSON(FileRun& run, const Comparison& comparison, const std::string& other,
                   std::size_t context) {
    JSONOutput& output = run.json();
    output.beginObject();
    output.add(other, "other");
    output.add(comparison.isEmpty(), "equal");
    addContents(output, "parts", comparison.parts, context);
    output.beginArray("relationships");
    for (const RelationshipDifference& one : comparison.relationships)
        output.add({{"source", one.source}, {"before", describe(one.before)}, {"now", describe(one.now)}});
    output.end();
    output.beginArray("properties");
    for (const PropertyDifference& one : comparison.properties)
        output.add({{"name", one.name},
                    {"before", one.before ? ordered_json(*one.before) : ordered_json()},
                    {"now", one.now ? ordered_json(*one.now) : ordered_json()}});
    output.end();
    addContents(output, "items", comparison.items, context);
    output.end();
}

const char* const DIFF_SCHEMA = R"({
  "type": "object",
  "required": ["other", "equal", "parts", "relationships", "properties", "items"],
  "$defs": {
    "version": {
      "type": "object",
      "required": ["name", "contentType", "size", "sha256"],
      "properties": {
        "name": {"type": "string"},
        "contentType": {"description": "null if there is none", "type": ["string", "null"]},
        "size": {"type": "integer"},
        "sha256": {"description": "null if the content can't be read", "type": ["string", "null"]}
      }
    },
    "contents": {
      "type": "object",
      "required": ["added", "removed", "moved", "changed"],
      "properties": {
        "added": {"type": "array", "items": {"$ref": "#/properties/result/$defs/version"}},
        "removed": {"type": "array", "items": {"$ref": "#/properties/result/$defs/version"}},
        "moved": {
          "description": "the same content under another name",
          "type": "array",
          "items": {
            "type": "object",
            "required": ["before", "now"],
            "properties": {
              "before": {"$ref": "#/properties/result/$defs/version"},
              "now": {"$ref": "#/properties/result/$defs/version"}
            }
          }
        },
        "changed": {
          "type": "array",
          "items": {
            "type": "object",
            "required": ["before", "now", "content", "removedLines", "addedLines", "hunks"],
            "properties": {
              "before": {"$ref": "#/properties/result/$defs/version"},
              "now": {"$ref": "#/properties/result/$defs/version"},
              "content": {
                "description": "how the contents compare; same: the content type differs; same-text: other bytes that mean the same XML; bytes: no XML, or too large",
                "enum": ["lines", "same-text", "bytes", "same", "unreadable"]
              },
              "removedLines": {"description": "of the XML, one element a line; null if it isn't lines", "type": ["integer", "null"]},
              "addedLines": {"type": ["integer", "null"]},
              "hunks": {
                "type": "array",
                "items": {
                  "type": "object",
                  "required": ["before", "now", "lines"],
                  "properties": {
                    "before": {"description": "the first line, and how many", "type": "array", "items": {"type": "integer"}},
                    "now": {"type": "array", "items": {"type": "integer"}},
                    "lines": {"description": "begin with a blank, - or +", "type": "array", "items": {"type": "string"}}
                  }
                }
              }
            }
          }
        }
      }
    },
    "relationship": {
      "type": ["object", "null"],
      "required": ["id", "type", "target", "external"],
      "properties": {
        "id": {"type": "string"},
        "type": {"type": "string"},
        "target": {"type": "string"},
        "external": {"type": "boolean"}
      }
    }
  },
  "properties": {
    "other": {"description": "the second package", "type": "string"},
    "equal": {"type": "boolean"},
    "parts": {"$ref": "#/properties/result/$defs/contents"},
    "relationships": {
      "description": "null before: added; null now: removed",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["source", "before", "now"],
        "properties": {
          "source": {"description": "the part, or / for the package", "type": "string"},
          "before": {"$ref": "#/properties/result/$defs/relationship"},
          "now": {"$ref": "#/properties/result/$defs/relationship"}
        }
      }
    },
    "properties": {
      "description": "the core properties",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["name", "before", "now"],
        "properties": {
          "name": {"type": "string"},
          "before": {"type": ["string", "null"]},
          "now": {"type": ["string", "null"]}
        }
      }
    },
    "items": {"description": "of the archive that are no parts", "$ref": "#/properties/result/$defs/contents"}
  }
})";

} // namespace opctool
