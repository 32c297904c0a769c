#include <opc/editing/Job.hpp>

#include "job/CleaningNames.hpp"
#include "job/StepNames.hpp"

#include <opc/core/Text.hpp>

#include <bedrock/crypto/utils/Base64.hpp>

#include <nlohmann/json.hpp>

namespace opc::editing {

using nlohmann::ordered_json;

namespace {

bool isReadableText(const std::string& bytes) {
    return toUDEString(toString(bytes, true)) == bytes;
}

void addContent(ordered_json& object, const JobContent& content) {
    if (!content.from.empty())
        object["from"] = content.from;
    else if (isReadableText(content.bytes))
        object["text"] = content.bytes;
    else
        object["base64"] =
            toUDEString(bedrock::crypto::utils::base64Encode({content.bytes.begin(), content.bytes.end()}));
}

void addFlag(ordered_json& object, const char* name, bool value) {
    if (value)
        object[name] = true;
}

const char* nameOfProfiles(unsigned profiles) {
    return profiles == inspection::OPC        ? "opc"
           : profiles == inspection::SECURITY ? "security"
           : profiles == inspection::OFFICE   ? "office"
                                              : "all";
}

/// Adds the members of a step.
struct StepWriter {
    void operator()(const AddStep& step) const {
        object["part"] = step.part;
        object["type"] = step.contentType;
        addContent(object, step.content);
    }
    void operator()(const PutStep& step) const {
        object["part"] = step.part;
        addContent(object, step.content);
    }
    void operator()(const RemoveStep& step) const {
        if (step.patterns.size() == 1)
            object["part"] = step.patterns.front();
        else
            object["part"] = step.patterns;
        addFlag(object, "incoming", step.options.incoming);
        addFlag(object, "cascade", step.options.cascade);
    }
    void operator()(const MoveStep& step) const {
        object["part"] = step.part;
        object["name"] = step.name;
    }
    void operator()(const RetypeStep& step) const {
        object["part"] = step.part;
        object["type"] = step.contentType;
    }
    void operator()(const RelateStep& step) const {
        object["source"] = step.source;
        object["type"] = step.type;
        object["target"] = step.target;
        addFlag(object, "external", step.external);
        if (!step.id.empty())
            object["id"] = step.id;
    }
    void operator()(const UnrelateStep& step) const {
        object["source"] = step.source;
        object["id"] = step.id;
    }
    void operator()(const RetargetStep& step) const {
        object["source"] = step.source;
        object["id"] = step.id;
        object["target"] = step.target;
        addFlag(object, "external", step.external);
    }
    void operator()(const CollectStep& /*step*/) const {}
    void operator()(const PropertiesStep& step) const {
        addFlag(object, "clear", step.core.clear);
        if (!step.core.unset.empty())
            object["unset"] = step.core.unset;
        for (const auto& [name, value] : step.core.set)
            object["set"][name] = value;
        if (step.core.keywords)
            object["keywords"] = ordered_json::array();
        for (const auto& [text, language] :
             step.core.keywords.value_or(model::CoreProperties::KeywordList())) {
            object["keywords"].push_back({{"text", toUDEString(text)}});
            if (!language.empty())
                object["keywords"].back()["language"] = toUDEString(language);
        }
    }
    void operator()(const OfficePropertiesStep& step) const {
        object["kind"] = step.kind == PropertyKind::Custom ? "custom" : "extended";
        addFlag(object, "clear", step.changes.clear);
        if (!step.changes.unset.empty())
            object["unset"] = step.changes.unset;
        for (const Property& property : step.changes.set)
            object["set"][property.name] = {{"type", property.value.type}, {"text", property.value.text}};
    }
    void operator()(const CleanStep& step) const {
        for (const auto& [name, option] : CLEANING)
            if (step.options.*option)
                object["what"].push_back(name);
    }
    void operator()(const FixStep& step) const {
        object["profile"] = nameOfProfiles(step.profiles);
        if (!step.only.empty())
            object["rules"] = step.only;
        if (!step.never.empty())
            object["noRules"] = step.never;
    }
    void operator()(const CheckStep& step) const {
        using inspection::Severity;
        object["failOn"] = step.failOn == Severity::Error     ? "error"
                           : step.failOn == Severity::Warning ? "warning"
                                                              : "info";
        object["profile"] = nameOfProfiles(step.profiles);
    }

    ordered_json& object;
};

} // namespace

std::string writeJob(const Job& job) {
    ordered_json document = {{"opctool", {{"job", 1}}}, {"steps", ordered_json::array()}};
    for (const Step& step : job.steps) {
        ordered_json object = {{"do", nameOf(step)}};
        std::visit(StepWriter{object}, step);
        document["steps"].push_back(std::move(object));
    }
    return document.dump(1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

std::string_view jobSchema() {
    return R"({
  "$schema": "https://json-schema.org/draft/2020-12/schema",
  "title": "a job of opctool apply",
  "description": "changes to a package that are made together or not at all",
  "type": "object",
  "required": ["opctool", "steps"],
  "additionalProperties": false,
  "properties": {
    "opctool": {
      "type": "object",
      "required": ["job"],
      "additionalProperties": false,
      "properties": {"job": {"description": "the version", "const": 1}}
    },
    "steps": {"type": "array", "items": {"$ref": "#/$defs/step"}}
  },
  "$defs": {
    "part": {"description": "the name of a part", "type": "string"},
    "source": {"description": "the name of a part, or / for the package", "type": "string"},
    "id": {"description": "of a relationship", "type": "string"},
    "type": {"description": "a content type, or the type of a relationship", "type": "string"},
    "target": {"description": "a part name, or a reference relative to the source; of an external one, any reference", "type": "string"},
    "external": {"description": "whether the target is outside the package; false if it is missing", "type": "boolean"},
    "content": {
      "oneOf": [{"required": ["text"]}, {"required": ["base64"]}, {"required": ["from"]}],
      "properties": {
        "text": {"description": "the content, in UTF-8", "type": "string"},
        "base64": {"description": "the content, in Base64", "type": "string", "contentEncoding": "base64"},
        "from": {"description": "a file with the content, relative to the folder of the job", "type": "string", "minLength": 1}
      }
    },
    "step": {
      "unevaluatedProperties": false,
      "oneOf": [
        {"required": ["do", "part", "type"], "$ref": "#/$defs/content",
         "properties": {"do": {"const": "add"}, "part": {"$ref": "#/$defs/part"}, "type": {"$ref": "#/$defs/type"}}},
        {"required": ["do", "part"], "$ref": "#/$defs/content",
         "properties": {"do": {"const": "put"}, "part": {"$ref": "#/$defs/part"}}},
        {"required": ["do", "part"],
         "properties": {"do": {"const": "rm"},
          "part": {"description": "names of parts; * stands for any characters but slashes, ** for any",
           "anyOf": [{"type": "string"}, {"type": "array", "items": {"type": "string"}}]},
          "incoming": {"description": "also the relationships that lead to them", "type": "boolean"},
          "cascade": {"description": "also the parts that only these lead to", "type": "boolean"}}},
        {"required": ["do", "part", "name"],
         "properties": {"do": {"const": "mv"}, "part": {"$ref": "#/$defs/part"}, "name": {"$ref": "#/$defs/part"}}},
        {"required": ["do", "part", "type"],
         "properties": {"do": {"const": "retype"}, "part": {"$ref": "#/$defs/part"}, "type": {"$ref": "#/$defs/type"}}},
        {"required": ["do", "source", "type", "target"],
         "properties": {"do": {"const": "relate"}, "source": {"$ref": "#/$defs/source"}, "type": {"$ref": "#/$defs/type"},
          "target": {"$ref": "#/$defs/target"}, "external": {"$ref": "#/$defs/external"}, "id": {"$ref": "#/$defs/id"}}},
        {"required": ["do", "source", "id"],
         "properties": {"do": {"const": "unrelate"}, "source": {"$ref": "#/$defs/source"}, "id": {"$ref": "#/$defs/id"}}},
        {"required": ["do", "source", "id", "target"],
         "properties": {"do": {"const": "retarget"}, "source": {"$ref": "#/$defs/source"}, "id": {"$ref": "#/$defs/id"},
          "target": {"$ref": "#/$defs/target"}, "external": {"$ref": "#/$defs/external"}}},
        {"required": ["do"], "properties": {"do": {"const": "gc"}}},
        {"required": ["do"],
         "properties": {"do": {"const": "props"},
          "kind": {"description": "which properties; core if it is missing", "enum": ["core", "custom", "extended"]},
          "clear": {"description": "whether all of the kind are dropped first", "type": "boolean"},
          "unset": {"description": "properties that are dropped", "type": "array", "items": {"type": "string"}},
          "set": {"description": "properties and their values; a time of core properties may be now", "type": "object",
           "additionalProperties": {"anyOf": [{"type": "string"},
            {"description": "of custom properties, with the type of the value", "type": "object", "required": ["type", "text"],
             "additionalProperties": false, "properties": {"type": {"type": "string"}, "text": {"type": "string"}}}]}},
          "keywords": {"description": "of core properties: all of them", "type": "array", "items": {"type": "object", "required": ["text"],
           "additionalProperties": false, "properties": {"text": {"type": "string"}, "language": {"type": "string"}}}}}},
        {"required": ["do", "what"],
         "properties": {"do": {"const": "clean"},
          "what": {"description": "the metadata that are taken out", "type": "array",
           "items": {"enum": ["core", "extended", "custom", "thumbnails"]}}}},
        {"required": ["do"],
         "properties": {"do": {"const": "fix"},
          "profile": {"description": "the rules that it mends by; such steps stand in front of all others", "enum": ["opc", "security", "office", "all"]},
          "rules": {"description": "these alone", "type": "array", "items": {"type": "string"}},
          "noRules": {"description": "all but these", "type": "array", "items": {"type": "string"}}}},
        {"required": ["do"],
         "properties": {"do": {"const": "check"},
          "failOn": {"description": "no finding of this severity or a higher one at the end", "enum": ["error", "warning", "info"]},
          "profile": {"enum": ["opc", "security", "office", "all"]}}}
      ]
    }
  }
}
)";
}

} // namespace opc::editing
