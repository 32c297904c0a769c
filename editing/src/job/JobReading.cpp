#include <opc/editing/Job.hpp>

#include "job/CleaningNames.hpp"
#include "job/JobMembers.hpp"
#include "job/StepNames.hpp"

#include <opc/core/Text.hpp>

#include <bedrock/crypto/utils/Base64.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

namespace opc::editing {

using nlohmann::json;

namespace {

constexpr int VERSION = 1;
constexpr int DEEPEST = 8; ///< more than a job has

std::string readBase64(JobMembers& members) {
    const std::u16string text = toString(members.text("base64"), true);
    try {
        const auto bytes = bedrock::crypto::utils::base64Decode(text);
        return {bytes.begin(), bytes.end()};
    } catch (const bedrock::crypto::utils::Exception&) {
        members.fail("base64 isn't Base64");
    }
}

JobContent readContent(JobMembers& members) {
    const auto count = members.has("text") + members.has("base64") + members.has("from");
    if (count != 1)
        members.fail("has not one content: text, base64 or from");
    if (members.has("text"))
        return {members.text("text"), {}};
    if (members.has("base64"))
        return {readBase64(members), {}};
    JobContent content{{}, members.text("from")};
    if (content.from.empty())
        members.fail("from is empty");
    return content;
}

Step readAdd(JobMembers& members) {
    AddStep step{members.text("part"), members.text("type"), {}};
    step.content = readContent(members);
    return step;
}

Step readPut(JobMembers& members) {
    PutStep step{members.text("part"), {}};
    step.content = readContent(members);
    return step;
}

std::vector<std::string> readList(JobMembers& members, const char* name) {
    std::vector<std::string> list;
    const json& texts = members.value(name);
    if (!texts.is_array())
        members.fail(std::string(name) + " isn't a list of texts");
    for (const json& each : texts) {
        if (!each.is_string())
            members.fail(std::string(name) + " isn't a list of texts");
        list.push_back(each.get<std::string>());
    }
    return list;
}

Step readRemove(JobMembers& members) {
    RemoveStep step;
    if (members.value("part").is_array())
        step.patterns = readList(members, "part");
    else
        step.patterns.push_back(members.text("part"));
    step.options = {members.flag("incoming"), members.flag("cascade")};
    return step;
}

Step readMove(JobMembers& members) {
    return MoveStep{members.text("part"), members.text("name")};
}

Step readRetype(JobMembers& members) {
    return RetypeStep{members.text("part"), members.text("type")};
}

Step readRelate(JobMembers& members) {
    return RelateStep{members.text("source"), members.text("type"), members.text("target"),
                      members.flag("external"), members.text("id", {})};
}

Step readUnrelate(JobMembers& members) {
    return UnrelateStep{members.text("source"), members.text("id")};
}

Step readRetarget(JobMembers& members) {
    return RetargetStep{members.text("source"), members.text("id"), members.text("target"),
                        members.flag("external")};
}

Step readCollect(JobMembers& /*members*/) {
    return CollectStep{};
}

/// A text, or an object with a type and a text.
Property readProperty(JobMembers& members, const std::string& name, const json& value) {
    if (value.is_string())
        return {name, {"lpwstr", value.get<std::string>(), {}}};
    if (!value.is_object())
        members.fail("set has neither a text nor an object for " + name);
    JobMembers own(value, name);
    Property property{name, {own.text("type"), own.text("text"), {}}};
    own.end();
    return property;
}

Step readOfficeProperties(JobMembers& members, PropertyKind kind) {
    OfficePropertiesStep step{kind, {}};
    step.changes.clear = members.flag("clear");
    if (members.has("unset"))
        step.changes.unset = readList(members, "unset");
    if (!members.has("set"))
        return step;
    const json& set = members.value("set");
    if (!set.is_object())
        members.fail("set isn't an object");
    for (const auto& property : set.items())
        step.changes.set.push_back(readProperty(members, property.key(), property.value()));
    return step;
}

Step readClean(JobMembers& members) {
    CleanStep step{{false, false, false, false}};
    for (const std::string& wanted : readList(members, "what")) {
        const auto* const found =
            std::find_if(std::begin(CLEANING), std::end(CLEANING),
                         [&wanted](const auto& entry) { return wanted == entry.first; });
        if (found == std::end(CLEANING))
            members.fail("what has none of core, extended, custom and thumbnails: " + wanted);
        step.options.*found->second = true;
    }
    return step;
}

/// Objects with a text and, perhaps, a language.
model::CoreProperties::KeywordList readKeywords(JobMembers& members) {
    const json& list = members.value("keywords");
    if (!list.is_array())
        members.fail("keywords isn't a list of objects");
    model::CoreProperties::KeywordList keywords;
    for (const json& each : list) {
        JobMembers own(each, "keywords");
        keywords.emplace_back(toString(own.text("text"), true), toString(own.text("language", {}), true));
        own.end();
    }
    return keywords;
}

Step readPropertiesStep(JobMembers& members) {
    const std::string kind = members.text("kind", "core");
    if (kind == "custom" || kind == "extended")
        return readOfficeProperties(members,
                                    kind == "custom" ? PropertyKind::Custom : PropertyKind::Extended);
    if (kind != "core")
        members.fail("kind is none of core, custom and extended");
    PropertiesStep step;
    step.core.clear = members.flag("clear");
    if (members.has("unset"))
        step.core.unset = readList(members, "unset");
    if (members.has("keywords"))
        step.core.keywords = readKeywords(members);
    if (!members.has("set"))
        return step;
    const json& set = members.value("set");
    if (!set.is_object())
        members.fail("set isn't an object of texts");
    for (const auto& property : set.items()) {
        if (!property.value().is_string())
            members.fail("set isn't an object of texts");
        step.core.set.emplace_back(property.key(), property.value().get<std::string>());
    }
    return step;
}

unsigned readProfiles(JobMembers& members) {
    static const std::map<std::string, unsigned> profiles{{"opc", inspection::OPC},
                                                          {"security", inspection::SECURITY},
                                                          {"office", inspection::OFFICE},
                                                          {"all", inspection::EVERY_PROFILE}};
    const auto profile = profiles.find(members.text("profile", "opc"));
    if (profile == profiles.end())
        members.fail("profile is none of opc, security, office and all");
    return profile->second;
}

std::vector<std::string> readRules(JobMembers& members, const char* name) {
    std::vector<std::string> rules;
    if (members.has(name))
        rules = readList(members, name);
    for (const std::string& rule : rules)
        if (inspection::findRules(rule).empty())
            members.fail(std::string(name) + " has an unknown rule: " + rule);
    return rules;
}

Step readFix(JobMembers& members) {
    return FixStep{readProfiles(members), readRules(members, "rules"), readRules(members, "noRules")};
}

Step readCheck(JobMembers& members) {
    using inspection::Severity;
    static const std::map<std::string, Severity> severities{
        {"error", Severity::Error}, {"warning", Severity::Warning}, {"info", Severity::Info}};
    const auto severity = severities.find(members.text("failOn", "error"));
    if (severity == severities.end())
        members.fail("failOn is none of error, warning and info");
    return CheckStep{severity->second, readProfiles(members)};
}

Step readStep(const json& object, std::size_t number) {
    using Read = Step (*)(JobMembers&);
    static const std::map<std::string, Read> kinds{{"add", readAdd},           {"put", readPut},
                                                   {"rm", readRemove},         {"mv", readMove},
                                                   {"retype", readRetype},     {"relate", readRelate},
                                                   {"unrelate", readUnrelate}, {"retarget", readRetarget},
                                                   {"gc", readCollect},        {"props", readPropertiesStep},
                                                   {"clean", readClean},       {"fix", readFix},
                                                   {"check", readCheck}};
    const std::string name = JobMembers(object, placeOf(number, {})).text("do");
    const auto kind = kinds.find(name);
    if (kind == kinds.end())
        throw InvalidJob(placeOf(number, name) + ": there is no such step");
    JobMembers members(object, placeOf(number, name));
    members.text("do");
    Step step = kind->second(members);
    members.end();
    return step;
}

/// Refuses what the parser would pass over.
class ParsingRules {
public:
    void see(int depth, json::parse_event_t event, const json& value) {
        using Event = json::parse_event_t;
        if (depth > DEEPEST)
            throw InvalidJob("The job is nested too deeply");
        if (depth == IN_STEPS && areSteps && event != Event::key && event != Event::object_end &&
            event != Event::array_end)
            ++step;
        if (event == Event::object_start)
            names.emplace_back();
        else if (event == Event::object_end)
            names.pop_back();
        else if (event == Event::key)
            seeName(depth, value.get<std::string>());
    }

private:
    static constexpr int IN_STEPS = 2;

    void seeName(int depth, const std::string& name) {
        if (!names.back().insert(name).second)
            throw InvalidJob((step == 0 ? "The job" : placeOf(step, {})) + ": has the member " + name +
                             " twice");
        if (depth == 1)
            areSteps = name == "steps";
    }

    std::vector<std::set<std::string>> names; ///< of the members so far, for each object that is open
    bool areSteps = false;
    std::size_t step = 0;
};

json parse(std::string_view text) {
    ParsingRules rules;
    const auto see = [&rules](int depth, json::parse_event_t event, const json& value) {
        rules.see(depth, event, value);
        return true;
    };
    try {
        return json::parse(text, see);
    } catch (const json::exception& e) {
        const std::string message = e.what();
        const std::size_t begin = message.find("] "); // behind the number of the error
        throw InvalidJob("The job isn't JSON: " + message.substr(begin == std::string::npos ? 0 : begin + 2));
    }
}

} // namespace

InvalidJob::~InvalidJob() = default;

Job readJob(std::string_view text) {
    const json document = parse(text);
    JobMembers members(document, "The job");
    JobMembers header(members.value("opctool"), "opctool");
    const json& version = header.value("job");
    header.end();
    if (version != VERSION)
        throw InvalidJob("The job has another version than " + std::to_string(VERSION) + ": " +
                         version.dump());
    const json& steps = members.value("steps");
    members.end();
    if (!steps.is_array())
        members.fail("steps isn't a list");
    Job job;
    for (const json& step : steps) {
        const std::size_t number = job.steps.size() + 1;
        job.steps.push_back(readStep(step, number));
        if (std::holds_alternative<FixStep>(job.steps.back()) && countFixes(job) != number)
            throw InvalidJob(placeOf(number, "fix") + ": " + LATE_FIX);
    }
    return job;
}

} // namespace opc::editing
