#include "job/StepNames.hpp"

#include <algorithm>

namespace opc::editing {

namespace {

struct Namer {
    const char* operator()(const AddStep&) const { return "add"; }
    const char* operator()(const PutStep&) const { return "put"; }
    const char* operator()(const RemoveStep&) const { return "rm"; }
    const char* operator()(const MoveStep&) const { return "mv"; }
    const char* operator()(const RetypeStep&) const { return "retype"; }
    const char* operator()(const RelateStep&) const { return "relate"; }
    const char* operator()(const UnrelateStep&) const { return "unrelate"; }
    const char* operator()(const RetargetStep&) const { return "retarget"; }
    const char* operator()(const CollectStep&) const { return "gc"; }
    const char* operator()(const PropertiesStep&) const { return "props"; }
    const char* operator()(const OfficePropertiesStep&) const { return "props"; }
    const char* operator()(const CleanStep&) const { return "clean"; }
    const char* operator()(const FixStep&) const { return "fix"; }
    const char* operator()(const CheckStep&) const { return "check"; }
};

} // namespace

std::string nameOf(const Step& step) {
    return std::visit(Namer(), step);
}

std::size_t countFixes(const Job& job) {
    const auto isOther = [](const Step& step) { return !std::holds_alternative<FixStep>(step); };
    const auto end = std::find_if(job.steps.begin(), job.steps.end(), isOther);
    return static_cast<std::size_t>(end - job.steps.begin());
}

std::string placeOf(std::size_t number, const std::string& name) {
    return "step " + std::to_string(number) + (name.empty() ? "" : " (" + name + ")");
}

} // namespace opc::editing
