#include <opc/inspection/PackageGraph.hpp>

#include "reports/picture/NodeLooks.hpp"

#include <opc/core/PrintableText.hpp>

#include <sstream>

namespace opc::inspection {

namespace {

constexpr std::size_t MOST_CHARACTERS_OF_LABEL = 60; // of a label

/// A string in quotation marks. Graphviz reads a backslash as the beginning of an escape sequence, and an ampersand as that
/// of an HTML entity.
std::string quotedForDOT(const std::string& text) {
    std::string result = "\"";
    std::size_t start = 0;
    do { // line by line, because line ends are control characters, too
        const std::size_t end = std::min(text.find('\n', start), text.size());
        for (const char c : withoutControlCharacters(text.substr(start, end - start)))
            if (c == '"' || c == '\\')
                result.append({'\\', c});
            else if (c == '&')
                result += "&amp;";
            else
                result += c;
        start = end + 1;
        if (start < text.size())
            result += "\\n";
    } while (start < text.size());
    return result + '"';
}

void write(std::ostream& dot, const GraphNode& node, std::size_t index) {
    const NodeLook& look = lookOf(node);
    dot << "  n" << index
        << " [label=" << quotedForDOT(withoutControlCharacters(labelOf(node, MOST_CHARACTERS_OF_LABEL)))
        << ", tooltip=" << quotedForDOT(titleOf(node)) << ", fillcolor=\"" << look.fill << "\", color=\""
        << look.stroke << '"';
    if (look.isDashed)
        dot << R"(, style="filled,rounded,dashed")";
    if (node.kind == GraphNode::Kind::Package)
        dot << R"(, fontcolor="#ffffff")";
    dot << "];\n";
}

void write(std::ostream& dot, const GraphEdge& edge, const PackageGraph& graph) {
    const NodeLook& look = lookOf(edge, graph);
    dot << "  n" << edge.from << " -> n" << edge.to << " [tooltip=" << quotedForDOT(titleOf(edge))
        << ", color=\"" << look.stroke << (look.isDashed ? R"(", style="dashed"])" : "\"]") << ";\n";
}

} // namespace

std::string toDOT(const PackageGraph& graph) {
    std::ostringstream dot;
    dot << "digraph package {\n"
           "  charset=\"UTF-8\";\n"
           "  rankdir=\"LR\";\n"
           "  node [shape=\"box\", style=\"filled,rounded\", fontname=\"sans-serif\", fontsize=\"10\"];\n"
           "  edge [arrowsize=\"0.6\"];\n";
    for (std::size_t i = 0; i < graph.nodes.size(); ++i)
        write(dot, graph.nodes[i], i);
    for (const GraphEdge& edge : graph.edges)
        write(dot, edge, graph);
    dot << "}\n";
    return dot.str();
}

} // namespace opc::inspection
