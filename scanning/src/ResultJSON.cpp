#include <opc/scanning/ResultJSON.hpp>

#include "JSONRows.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/inspection/Reports.hpp>
#include <opc/model/CorePropertyField.hpp>

#include <sstream>

namespace opc::scanning {

namespace {

using nlohmann::ordered_json;

ordered_json describe(const Failure& failure) {
    return {{"class", failure.className},   {"code", failure.code},
            {"kind", failure.kind()},       {"message", failure.message},
            {"part", orNull(failure.part)}, {"relationship", orNull(failure.relationship)}};
}

ordered_json describeHidden(const Result& result) {
    ordered_json list = ordered_json::array();
    for (const interfaces::Oddity& oddity : result.hidden)
        list.push_back({{"place", toUDEString(oddity.place)},
                        {"line", oddity.line == 0 ? ordered_json() : ordered_json(oddity.line)},
                        {"reason", oddity.what},
                        {"done", orNull(oddity.done)},
                        {"rule", orNull(oddity.rule)}});
    if (result.externals)
        for (const inspection::Externals::Unread& one : result.externals->unread)
            list.push_back({{"place", one.part},
                            {"line", nullptr},
                            {"reason", one.reason},
                            {"done", "its further relationships aren't listed"},
                            {"rule", nullptr}});
    return list;
}

ordered_json describe(const std::vector<ScannedPart>& parts) {
    ordered_json list = ordered_json::array();
    for (const ScannedPart& part : parts)
        list.push_back({{"name", part.name},
                        {"contentType", part.contentType},
                        {"size", part.size},
                        {"relationships", part.relationships}});
    return list;
}

/// @return null for one that can't be resolved
ordered_json resolve(const ScannedRelationship& relationship) {
    if (relationship.isExternal)
        return nullptr;
    try {
        return resolveTarget(relationship.source, relationship.target);
    } catch (const Exception&) {
        return nullptr;
    }
}

ordered_json describe(const std::vector<ScannedRelationship>& relationships) {
    ordered_json list = ordered_json::array();
    for (const ScannedRelationship& one : relationships)
        list.push_back({{"source", one.source},
                        {"id", one.id},
                        {"type", one.type},
                        {"target", one.target},
                        {"mode", one.isExternal ? "External" : "Internal"},
                        {"resolved", resolve(one)},
                        {"exists", one.isExternal ? ordered_json() : ordered_json(one.exists)}});
    return list;
}

ordered_json describe(const inspection::Externals& externals) {
    ordered_json list = ordered_json::array();
    for (const inspection::External& one : externals.found)
        list.push_back({{"effect", toString(one.effect)},
                        {"place", toString(one.place)},
                        {"source", one.source},
                        {"id", one.id},
                        {"type", one.type},
                        {"target", one.target}});
    return list;
}

ordered_json describe(const inspection::Report& report) {
    inspection::InspectedFile file;
    file.report = report;
    std::ostringstream text;
    writeJSON(text, file);
    return ordered_json::parse(text.str());
}

ordered_json describeValue(const std::u16string& text) {
    return toUDEString(text);
}

ordered_json describeValue(const boost::posix_time::ptime& time) {
    return toUDEString(convertTimeToString(time));
}

ordered_json describeValue(const model::CoreProperties::KeywordList& keywords) {
    ordered_json list = ordered_json::array();
    for (const auto& [text, language] : keywords) {
        ordered_json& keyword = list.emplace_back(ordered_json{{"text", toUDEString(text)}});
        if (!language.empty())
            keyword["language"] = toUDEString(language);
    }
    return list;
}

ordered_json textOrNull(inspection::Format::Conformance conformance) {
    switch (conformance) {
    case inspection::Format::Conformance::Transitional:
        return "transitional";
    case inspection::Format::Conformance::Strict:
        return "strict";
    default:
        return nullptr;
    }
}

std::string write(const ordered_json& value) {
    return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

} // namespace

ordered_json describe(const model::CoreProperties& properties) {
    ordered_json object = ordered_json::object();
    for (const model::CorePropertyField& field : model::CorePropertyField::all())
        field.visit(properties, [&](const auto& value) {
            if (value)
                object[std::string(field.name())] = describeValue(*value);
        });
    return object;
}

ordered_json describe(const inspection::Format& format) {
    return {{"format", format.name},
            {"description", format.description},
            {"mediaType", orNull(format.mediaType)},
            {"package", format.isPackage},
            {"conformance", textOrNull(format.conformance)},
            {"macros", format.hasMacros},
            {"signed", format.isSigned},
            {"encrypted", format.isEncrypted},
            {"mainPart", orNull(format.mainPart)}};
}

std::string toJSON(const Result& result, unsigned aspects) {
    ordered_json object{{"hidden", describeHidden(result)},
                        {"error", result.failure ? describe(*result.failure) : ordered_json()}};
    const auto add = [&](Aspect aspect, const char* name, const auto& value) {
        if (value && (aspects & aspect) != 0)
            object[name] = describe(*value);
    };
    add(FORMAT, "format", result.format);
    add(PARTS, "parts", result.parts);
    add(RELATIONSHIPS, "relationships", result.relationships);
    add(PROPERTIES, "properties", result.properties);
    if (!result.propertiesFailure.empty() && (aspects & PROPERTIES) != 0) {
        object["properties"] = nullptr;
        object["propertiesFailure"] = result.propertiesFailure;
    }
    add(EXTERNALS, "externals", result.externals);
    add(SIGNATURES, "signatures", result.signatures);
    add(FINDINGS, "findings", result.findings);
    return write(object);
}

std::string toJSON(const ScannedSignatures& signatures) {
    return write(describe(signatures));
}

} // namespace opc::scanning
