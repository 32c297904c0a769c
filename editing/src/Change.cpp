#include <opc/editing/Change.hpp>

#include <utility>

namespace opc::editing {

namespace {

using Kind = Change::Kind;

std::string sizeText(const Change::State& state) {
    return state.size ? " (" + std::to_string(*state.size) + " bytes)" : std::string();
}

std::string targetText(const Change::State& state) {
    return state.text + (state.isExternal ? " (external)" : "");
}

/// A type is long, and its last segment says what it means.
std::string lastSegment(const std::string& type) {
    return type.substr(type.rfind('/') + 1);
}

std::string quoted(const std::string& value) {
    return value.empty() ? "nothing" : '"' + value + '"';
}

} // namespace

std::string nameOf(Kind kind) {
    switch (kind) {
    case Kind::PartAdded:
        return "part-added";
    case Kind::PartRemoved:
        return "part-removed";
    case Kind::PartRenamed:
        return "part-renamed";
    case Kind::ContentReplaced:
        return "content-replaced";
    case Kind::ContentTypeChanged:
        return "content-type-changed";
    case Kind::RelationshipAdded:
        return "relationship-added";
    case Kind::RelationshipRemoved:
        return "relationship-removed";
    case Kind::RelationshipChanged:
        return "relationship-changed";
    case Kind::PropertyChanged:
        return "property-changed";
    case Kind::Mended:
        return "mended";
    }
    return {};
}

std::string describe(const Change& change) {
    const Change::State& before = change.before;
    const Change::State& after = change.after;
    const std::string relationship = change.place + '#' + change.name;
    switch (change.kind) {
    case Kind::PartAdded:
        return "add " + change.place + ", " + after.text + sizeText(after);
    case Kind::PartRemoved:
        return "remove " + change.place + sizeText(before);
    case Kind::PartRenamed:
        return "rename " + change.place + " to " + after.text;
    case Kind::ContentReplaced:
        return "replace the content of " + change.place + sizeText(after);
    case Kind::ContentTypeChanged:
        return "change the content type of " + change.place + " from " + before.text + " to " + after.text;
    case Kind::RelationshipAdded:
        return "add relationship " + relationship + " to " + targetText(after) + ", " +
               lastSegment(after.type);
    case Kind::RelationshipRemoved:
        return "remove relationship " + relationship + " to " + targetText(before) + ", " +
               lastSegment(before.type);
    case Kind::RelationshipChanged:
        return "change relationship " + relationship + " from " + targetText(before) + " to " +
               targetText(after);
    case Kind::PropertyChanged:
        return "change property " + change.name + " in " + change.place + " from " + quoted(before.text) +
               " to " + quoted(after.text);
    case Kind::Mended:
        return (change.place == "/" ? "" : change.place + ": ") + before.text +
               (after.text.empty() ? "" : "; now " + after.text);
    }
    return {};
}

} // namespace opc::editing
