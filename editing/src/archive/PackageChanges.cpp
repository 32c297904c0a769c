#include "archive/PackageChanges.hpp"

#include <map>
#include <utility>

namespace opc::editing::archive {

using inspection::GraphEdge;
using inspection::GraphNode;
using inspection::PackageGraph;

namespace {

std::string toLowerCase(std::string text) {
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

/// The parts and relationships of a graph by name.
class Lists {
public:
    explicit Lists(const PackageGraph& graph) : graph(graph) {
        for (const GraphNode& node : graph.nodes)
            if (node.kind == GraphNode::Kind::Part)
                parts.emplace(toLowerCase(node.name), &node);
        for (const GraphEdge& edge : graph.edges)
            relationships.emplace(std::pair(toLowerCase(sourceOf(edge)), edge.id), &edge);
    }

    const std::string& sourceOf(const GraphEdge& edge) const { return graph.nodes[edge.from].name; }

    Change::State stateOfText(const GraphEdge& edge) const {
        Change::State state;
        state.text = graph.nodes[edge.to].name;
        state.type = edge.type;
        state.isExternal = graph.nodes[edge.to].kind == GraphNode::Kind::External;
        return state;
    }

    std::map<std::string, const GraphNode*> parts;
    std::map<std::pair<std::string, std::string>, const GraphEdge*> relationships;

private:
    const PackageGraph& graph;
};

Change::State stateOfText(std::string text) {
    Change::State state;
    state.text = std::move(text);
    return state;
}

bool isSame(const Change::State& left, const Change::State& right) {
    return left.text == right.text && left.type == right.type && left.isExternal == right.isExternal;
}

void findPartChanges(const Lists& before, const Lists& after, std::vector<Change>& changes) {
    for (const auto& [name, part] : before.parts) {
        const auto found = after.parts.find(name);
        if (found == after.parts.end())
            changes.push_back(
                {Change::Kind::PartRemoved, part->name, {}, stateOfText(part->contentType), {}});
        else if (found->second->contentType != part->contentType)
            changes.push_back({Change::Kind::ContentTypeChanged,
                               part->name,
                               {},
                               stateOfText(part->contentType),
                               stateOfText(found->second->contentType)});
    }
}

void findRelationshipChanges(const Lists& before, const Lists& after, std::vector<Change>& changes) {
    using Kind = Change::Kind;
    for (const auto& [key, edge] : before.relationships) {
        const auto found = after.relationships.find(key);
        const Change::State old = before.stateOfText(*edge);
        if (found == after.relationships.end())
            changes.push_back({Kind::RelationshipRemoved, before.sourceOf(*edge), edge->id, old, {}});
        else if (const Change::State now = after.stateOfText(*found->second); !isSame(old, now))
            changes.push_back({Kind::RelationshipChanged, before.sourceOf(*edge), edge->id, old, now});
    }
    for (const auto& [key, edge] : after.relationships)
        if (before.relationships.count(key) == 0)
            changes.push_back(
                {Kind::RelationshipAdded, after.sourceOf(*edge), edge->id, {}, after.stateOfText(*edge)});
}

} // namespace

std::vector<Change> findChanges(const PackageGraph& before, const PackageGraph& after,
                                const std::set<std::string>& replaced) {
    const Lists old(before);
    const Lists now(after);
    std::vector<Change> changes;
    findPartChanges(old, now, changes);
    for (const std::string& part : replaced)
        changes.push_back({Change::Kind::ContentReplaced, part, {}, {}, {}});
    findRelationshipChanges(old, now, changes);
    return changes;
}

} // namespace opc::editing::archive
