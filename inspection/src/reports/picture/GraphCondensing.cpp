#include "reports/picture/PackageGraph.hpp"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <tuple>

namespace opc::inspection {

namespace {

constexpr std::size_t MOST_COLUMNS = 9;
constexpr std::size_t MOST_ROWS = 40;
constexpr std::size_t MOST_EDGES = 1'000;

/// "/word/media/*.png"
std::string patternOf(const GraphNode& node) {
    if (node.kind == GraphNode::Kind::External)
        return node.name.substr(0, node.name.find('/', node.name.find("://") + 3));
    const std::size_t name = node.name.rfind('/') + 1;
    const std::size_t dot = node.name.find('.', name);
    return node.name.substr(0, name) + "*" + (dot == std::string::npos ? "" : node.name.substr(dot));
}

/// Nodes with the same key become one.
using Key = std::tuple<GraphNode::Kind, bool, bool, std::string>;
using NameOf = std::function<std::string(const GraphNode&)>;

Key condensingKey(const GraphNode& node, const std::string& name) {
    return {node.kind, node.isReached, node.isSigned, name};
}

/// The finest of the ways to name nodes that leaves few of them in a column.
NameOf chooseNames(const PackageGraph& graph, const std::vector<std::size_t>& column) {
    const NameOf ways[] = {[](const GraphNode& node) { return node.name; }, patternOf,
                           [](const GraphNode&) { return std::string("*"); }};
    for (const NameOf& way : ways) {
        std::set<Key> keys;
        for (const std::size_t index : column) {
            keys.insert(condensingKey(graph.nodes[index], way(graph.nodes[index])));
            if (keys.size() > MOST_ROWS)
                break;
        }
        if (keys.size() <= MOST_ROWS)
            return way;
    }
    return ways[2];
}

class Condensing {
public:
    explicit Condensing(const PackageGraph& graph) : graph(graph), newIndices(graph.nodes.size()) {
        small.hasSignatures = graph.hasSignatures;
    }

    PackageGraph run() {
        condenseNodes();
        condenseEdges();
        return std::move(small);
    }

private:
    void condenseNodes() {
        std::vector<std::vector<std::size_t>> columns(MOST_COLUMNS);
        for (std::size_t i = 0; i < graph.nodes.size(); ++i)
            columns[columnOf(graph.nodes[i])].push_back(i);
        for (const auto& column : columns) {
            const NameOf names = chooseNames(graph, column);
            std::map<Key, std::size_t> places;
            for (const std::size_t index : column)
                put(index, names(graph.nodes[index]), places);
        }
    }

    std::size_t columnOf(const GraphNode& node) const {
        const std::size_t last = MOST_COLUMNS - (node.isReached ? 2 : 1);
        return std::min(node.column, last);
    }

    void put(std::size_t index, const std::string& name, std::map<Key, std::size_t>& places) {
        const GraphNode& node = graph.nodes[index];
        const auto [place, isNew] = places.try_emplace(condensingKey(node, name), small.nodes.size());
        newIndices[index] = place->second;
        if (isNew) {
            small.nodes.push_back(node);
            small.nodes.back().column = columnOf(node);
            return;
        }
        GraphNode& together = small.nodes[place->second];
        together.name = name;
        together.size += node.size;
        ++together.count;
        if (together.contentType != node.contentType)
            together.contentType.clear();
    }

    void condenseEdges() {
        std::map<std::tuple<std::size_t, std::size_t, bool>, std::size_t> places;
        for (const GraphEdge& edge : graph.edges) {
            const std::size_t from = newIndices[edge.from];
            const std::size_t to = newIndices[edge.to];
            const auto found = places.find({from, to, edge.isSigned});
            if (found != places.end()) {
                GraphEdge& together = small.edges[found->second];
                ++together.count;
                if (together.type != edge.type)
                    together.type.clear();
            } else if (small.edges.size() < MOST_EDGES) {
                places.emplace(std::tuple(from, to, edge.isSigned), small.edges.size());
                small.edges.push_back({from, to, edge.isSigned, edge.type});
            }
        }
    }

    const PackageGraph& graph;
    PackageGraph small;
    std::vector<std::size_t> newIndices; ///< by old index
};

} // namespace

PackageGraph condense(const PackageGraph& graph) {
    return Condensing(graph).run();
}

} // namespace opc::inspection
