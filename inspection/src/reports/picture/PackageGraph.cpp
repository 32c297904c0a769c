#include "reports/picture/PackageGraph.hpp"

#include "checks/signatures/SignedContent.hpp"

#include <algorithm>
#include <limits>
#include <map>
#include <unordered_map>

namespace opc::inspection {

namespace {

constexpr std::size_t UNREACHED = std::numeric_limits<std::size_t>::max();

class GraphBuilder {
public:
    explicit GraphBuilder(const Subject& subject) : subject(subject), signedContent(subject) {}

    PackageGraph build() {
        graph.hasSignatures = signedContent.hasSignatures();
        GraphNode package{GraphNode::Kind::Package, "/"};
        package.isSigned = graph.hasSignatures;
        graph.nodes.push_back(package);
        for (const PartView& part : subject.parts())
            if (!part.isRelationships())
                add(part);
        for (const RelationshipsView& source : subject.relationships())
            add(source);
        measureDistances();
        return std::move(graph);
    }

private:
    void add(const PartView& part) {
        GraphNode node{GraphNode::Kind::Part, part.name};
        node.contentType = part.contentType;
        node.size = part.size;
        node.isSigned = signedContent.covers(part);
        parts.emplace(&part, graph.nodes.size());
        graph.nodes.push_back(std::move(node));
    }

    void add(const RelationshipsView& source) {
        std::size_t from = 0;
        if (source.source != "/") {
            const auto found = parts.find(source.sourcePart);
            if (found == parts.end())
                return;
            from = found->second;
        }
        for (const RelationshipView& relationship : source.entries) {
            const std::optional<std::size_t> to = findTarget(relationship);
            if (to)
                graph.edges.push_back({from, *to, signedContent.covers(source, relationship),
                                       std::string(relationship.lastSegment())});
        }
    }

    std::optional<std::size_t> findTarget(const RelationshipView& relationship) {
        if (relationship.part != nullptr) {
            const auto found = parts.find(relationship.part);
            return found == parts.end() ? std::nullopt : std::optional(found->second);
        }
        const auto kind = relationship.isExternal ? GraphNode::Kind::External : GraphNode::Kind::Missing;
        const auto [place, isNew] = others.try_emplace({kind, relationship.target}, graph.nodes.size());
        if (isNew)
            graph.nodes.push_back({kind, relationship.target});
        return place->second;
    }

    /// Breadth first from the package.
    void measureDistances() {
        std::stable_sort(
            graph.edges.begin(), graph.edges.end(),
            [](const GraphEdge& left, const GraphEdge& right) { return left.from < right.from; });
        for (GraphNode& node : graph.nodes)
            node.column = UNREACHED;
        graph.nodes[0].column = 0;
        std::vector<std::size_t> queue{0};
        for (std::size_t done = 0; done < queue.size(); ++done)
            visitTargets(queue[done], queue);
        const std::size_t last = graph.nodes[queue.back()].column;
        for (GraphNode& node : graph.nodes)
            if (node.column == UNREACHED) {
                node.isReached = false;
                node.column = last + 1;
            }
    }

    void visitTargets(std::size_t from, std::vector<std::size_t>& queue) {
        const auto first =
            std::lower_bound(graph.edges.begin(), graph.edges.end(), from,
                             [](const GraphEdge& edge, std::size_t index) { return edge.from < index; });
        for (auto edge = first; edge != graph.edges.end() && edge->from == from; ++edge)
            if (GraphNode& target = graph.nodes[edge->to]; target.column == UNREACHED) {
                target.column = graph.nodes[from].column + 1;
                queue.push_back(edge->to);
            }
    }

    const Subject& subject;
    const SignedContent signedContent;
    PackageGraph graph;
    std::unordered_map<const PartView*, std::size_t> parts;
    std::map<std::pair<GraphNode::Kind, std::string>, std::size_t> others;
};

} // namespace

PackageGraph makeGraph(const Subject& subject) {
    return GraphBuilder(subject).build();
}

} // namespace opc::inspection
