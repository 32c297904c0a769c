#include <opc/inspection/PackageGraph.hpp>

#include "reports/picture/NodeLooks.hpp"

#include <opc/core/PrintableText.hpp>

#include <algorithm>
#include <sstream>

namespace opc::inspection {

namespace {

constexpr std::size_t MOST_CHARACTERS_IN_LABEL = 60; // of a label

bool isPlainInMermaid(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' ||
           c == '.' || c == '_' || c == '-' || c == ' ' || (static_cast<unsigned char>(c) & 0x80U) != 0;
}

/// A text in quotation marks. Mermaid looks for marks of its own also in there, so that all but the plainest characters
/// become entities, which it writes as numbers.
std::string quotedForMermaid(const std::string& text) {
    std::string result = "\"";
    for (const char c : withoutControlCharacters(text))
        if (isPlainInMermaid(c))
            result += c;
        else
            result += '#' + std::to_string(static_cast<unsigned>(c)) + ';';
    return result + '"';
}

void defineClass(std::ostream& flowchart, const NodeLook& look) {
    flowchart << "  classDef " << look.name << " fill:" << look.fill << ",stroke:" << look.stroke
              << (&look == &PACKAGE_LOOK ? ",color:#fff" : ",color:#1f2933")
              << (look.isDashed ? ",stroke-dasharray:4 3" : "") << '\n';
}

} // namespace

std::string toMermaid(const PackageGraph& graph) {
    std::ostringstream flowchart;
    flowchart << "flowchart LR\n";
    for (std::size_t i = 0; i < graph.nodes.size(); ++i)
        flowchart << "  n" << i << '[' << quotedForMermaid(labelOf(graph.nodes[i], MOST_CHARACTERS_IN_LABEL))
                  << "]:::" << lookOf(graph.nodes[i]).name << '\n';
    for (const GraphEdge& edge : graph.edges)
        flowchart << "  n" << edge.from << (lookOf(edge, graph).isDashed ? " -.->" : " -->") << " n"
                  << edge.to << '\n';
    for (const NodeLook* look :
         {&PACKAGE_LOOK, &PLAIN_LOOK, &SIGNED_LOOK, &UNREACHED_LOOK, &EXTERNAL_LOOK, &MISSING_LOOK})
        if (std::any_of(graph.nodes.begin(), graph.nodes.end(),
                        [look](const GraphNode& node) { return &lookOf(node) == look; }))
            defineClass(flowchart, *look);
    return flowchart.str();
}

} // namespace opc::inspection
