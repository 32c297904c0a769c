#include "reports/picture/NodeLooks.hpp"

#include "reports/ReportTexts.hpp"

#include <vector>

namespace opc::inspection {

namespace {

constexpr std::size_t MOST_CHARACTERS_IN_TITLE = 1'000; // of a title

std::string shortened(const std::string& text, std::size_t mostCharacters) {
    if (text.size() <= mostCharacters)
        return text;
    std::vector<std::size_t> starts; // of the UTF-8 characters
    for (std::size_t i = 0; i < text.size(); ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U)
            starts.push_back(i);
    if (starts.size() <= mostCharacters)
        return text;
    return "\u2026" + text.substr(starts[starts.size() - mostCharacters + 1]);
}

} // namespace

const NodeLook& lookOf(const GraphNode& node) {
    switch (node.kind) {
    case GraphNode::Kind::Package:
        return PACKAGE_LOOK;
    case GraphNode::Kind::External:
        return EXTERNAL_LOOK;
    case GraphNode::Kind::Missing:
        return MISSING_LOOK;
    case GraphNode::Kind::Part:
        break;
    }
    return !node.isReached ? UNREACHED_LOOK : node.isSigned ? SIGNED_LOOK : PLAIN_LOOK;
}

const NodeLook& lookOf(const GraphEdge& edge, const PackageGraph& graph) {
    const GraphNode& target = graph.nodes[edge.to];
    const bool leadsToPart = target.kind == GraphNode::Kind::Part || target.kind == GraphNode::Kind::Package;
    return !leadsToPart ? lookOf(target) : edge.isSigned ? SIGNED_LOOK : PLAIN_LOOK;
}

std::string labelOf(const GraphNode& node, std::size_t mostCharacters) {
    if (node.count == 1)
        return shortened(node.name, mostCharacters);
    return std::to_string(node.count) + " \u00d7 " + shortened(node.name, mostCharacters);
}

std::string titleOf(const GraphNode& node) {
    std::string title = shortened(node.name, MOST_CHARACTERS_IN_TITLE);
    if (node.count > 1)
        title = countOf(node.count, "part") + " " + title;
    if (!node.contentType.empty())
        title += "\n" + shortened(node.contentType, MOST_CHARACTERS_IN_TITLE);
    if (node.kind == GraphNode::Kind::Part)
        title += "\n" + countOf(node.size, "byte");
    return title + "\n" + lookOf(node).meaning;
}

std::string titleOf(const GraphEdge& edge) {
    return edge.count == 1 ? shortened(std::string(edge.typeName()), MOST_CHARACTERS_IN_TITLE)
                           : countOf(edge.count, "relationship");
}

} // namespace opc::inspection
