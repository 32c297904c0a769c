#include "reports/picture/PackageGraph.hpp"

#include "checks/signatures/SignedContent.hpp"

#include <algorithm>
#include <limits>
#include <map>
#include <unordered_map>

namespace opc::inspection {

namespace {

constexpr std::size_t UNREACHED = std::numeric_limits<std::size_t>::max();

bool areSameCaseless(char left, char right) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return lower(left) == lower(right);
}

/// Breadth first: sets the columns.
/// @return the nodes that are reached, the near ones first
std::vector<std::size_t> measureDistances(PackageGraph& graph, std::size_t start,
                                          std::size_t depth = UNREACHED) {
    for (GraphNode& node : graph.nodes)
        node.column = UNREACHED;
    graph.nodes[start].column = 0;
    std::vector<std::size_t> reached{start};
    for (std::size_t done = 0; done < reached.size(); ++done) {
        const std::size_t from = reached[done];
        if (graph.nodes[from].column >= depth)
            break;
        const auto first =
            std::lower_bound(graph.edges.begin(), graph.edges.end(), from,
                             [](const GraphEdge& edge, std::size_t index) { return edge.from < index; });
        for (auto edge = first; edge != graph.edges.end() && edge->from == from; ++edge)
            if (GraphNode& target = graph.nodes[edge->to]; target.column == UNREACHED) {
                target.column = graph.nodes[from].column + 1;
                reached.push_back(edge->to);
            }
    }
    return reached;
}

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
        std::stable_sort(
            graph.edges.begin(), graph.edges.end(),
            [](const GraphEdge& left, const GraphEdge& right) { return left.from < right.from; });
        measureDistances(graph, 0);
        placeUnreached();
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
                                       relationship.type, relationship.id});
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

    /// Unreached parts get the column behind the last.
    void placeUnreached() {
        std::size_t last = 0;
        for (const GraphNode& node : graph.nodes)
            if (node.column != UNREACHED)
                last = std::max(last, node.column);
        for (GraphNode& node : graph.nodes)
            if (node.column == UNREACHED) {
                node.isReached = false;
                node.column = last + 1;
            }
    }

    const Subject& subject;
    const SignedContent signedContent;
    PackageGraph graph;
    std::unordered_map<const PartView*, std::size_t> parts;
    std::map<std::pair<GraphNode::Kind, std::string>, std::size_t> others;
};

} // namespace

std::string_view GraphEdge::typeName() const {
    const std::string_view trimmed =
        std::string_view(type).substr(0, type.find_last_not_of(" \t\r\n") + 1); // 0 if it is blank
    return trimmed.substr(trimmed.rfind('/') + 1);
}

PackageGraph makeGraph(const Subject& subject) {
    return GraphBuilder(subject).build();
}

PackageGraph makeGraph(const Archive& archive, const physical::ZipOptions& limits) {
    return makeGraph(Subject(archive, limits));
}

std::optional<std::size_t> findNode(const PackageGraph& graph, std::string_view name) {
    for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
        const GraphNode& node = graph.nodes[i];
        const bool isPart = node.kind == GraphNode::Kind::Package || node.kind == GraphNode::Kind::Part;
        if (isPart &&
            std::equal(node.name.begin(), node.name.end(), name.begin(), name.end(), areSameCaseless))
            return i;
    }
    return std::nullopt;
}

PackageGraph cutOut(const PackageGraph& graph, std::size_t from, std::size_t depth) {
    PackageGraph whole = graph;
    PackageGraph cut;
    cut.hasSignatures = graph.hasSignatures;
    std::vector<std::size_t> places(graph.nodes.size(), UNREACHED);
    for (const std::size_t node : measureDistances(whole, from, depth)) {
        places[node] = cut.nodes.size();
        cut.nodes.push_back(std::move(whole.nodes[node]));
    }
    for (GraphEdge& edge : whole.edges)
        if (places[edge.from] != UNREACHED && places[edge.to] != UNREACHED) {
            edge.from = places[edge.from];
            edge.to = places[edge.to];
            cut.edges.push_back(std::move(edge));
        }
    std::stable_sort(cut.edges.begin(), cut.edges.end(),
                     [](const GraphEdge& left, const GraphEdge& right) { return left.from < right.from; });
    return cut;
}

} // namespace opc::inspection
