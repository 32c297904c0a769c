#include "ArchiveFile.hpp"
#include "Commands.hpp"
#include "Files.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/PackageGraph.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <limits>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using opc::inspection::GraphEdge;
using opc::inspection::GraphNode;
using opc::inspection::PackageGraph;

struct GraphArguments {
    std::string format = "dot";
    std::string from = "/";
    std::size_t depth = std::numeric_limits<std::size_t>::max();
    bool isPart = false; ///< whether only what is reached from `from` is shown
};

const char* nameOf(GraphNode::Kind kind) {
    static constexpr const char* NAMES[] = {"package", "part", "external", "missing"};
    return NAMES[static_cast<int>(kind)];
}

ordered_json describe(const GraphNode& node) {
    const bool isPart = node.kind == GraphNode::Kind::Part;
    return {{"kind", nameOf(node.kind)},
            {"name", node.name},
            {"contentType", node.contentType.empty() ? ordered_json() : ordered_json(node.contentType)},
            {"size", isPart ? ordered_json(node.size) : ordered_json()},
            {"distance", node.isReached ? ordered_json(node.column) : ordered_json()},
            {"signed", node.isSigned}};
}

void printJSON(JSONOutput& output, const PackageGraph& graph) {
    output.beginObject();
    output.beginArray("nodes");
    for (const GraphNode& node : graph.nodes)
        output.add(describe(node));
    output.end();
    output.beginArray("edges");
    for (const GraphEdge& edge : graph.edges)
        output.add(ordered_json{{"from", edge.from},
                                {"to", edge.to},
                                {"id", edge.id},
                                {"type", edge.type},
                                {"signed", edge.isSigned}});
    output.end();
    output.end();
}

PackageGraph readGraph(const FileRun& run, const GraphArguments& arguments) {
    PackageGraph graph = makeGraph(openArchive(run), run.options().reading.zip);
    if (!arguments.isPart)
        return graph;
    const auto from = findNode(graph, arguments.from);
    if (!from)
        throw opc::Exception("There is no part " + arguments.from,
                             make_error_code(boost::system::errc::no_such_file_or_directory));
    return cutOut(graph, *from, arguments.depth);
}

void graph(FileRun& run, const GraphArguments& arguments) {
    const PackageGraph graph = readGraph(run, arguments);
    if (run.wantsJSON())
        printJSON(run.json(), graph);
    else
        run.out() << (arguments.format == "svg"       ? toSVG(graph)
                      : arguments.format == "mermaid" ? toMermaid(graph)
                                                      : toDOT(graph));
}

void declareGraph(CLI::App& command) {
    const auto arguments = std::make_shared<GraphArguments>();
    const auto files = addFile(command, GRAPH);
    command.add_option("--format", arguments->format, "The form of the output")
        ->check(CLI::IsMember({"dot", "mermaid", "svg", "json"}))
        ->type_name("FORMAT")
        ->capture_default_str();
    CLI::Option* const from =
        command.add_option("--from", arguments->from, "Show only what is reached from this part")
            ->type_name("PART");
    CLI::Option* const depth =
        command.add_option("--depth", arguments->depth, "Show only what is reached by so many relationships");
    depth->type_name("N");
    addJSONOptions(command, files->options.output);
    command.callback([files, arguments, from, depth] {
        arguments->isPart = from->count() + depth->count() > 0;
        if (arguments->format == "json" && files->options.output.format() == OutputOptions::Format::Text)
            files->options.output.shape = 1;
        files->run([&](FileRun& run) { graph(run, *arguments); });
    });
}

} // namespace

const Command GRAPH{
    "graph",
    "Draw the parts of a package and the relationships between them",
    declareGraph,
    "The output is text for Graphviz (dot) or Mermaid, a picture (svg) or data (json). Colours show external "
    "targets, targets that are missing, parts that nothing leads to, and what signatures name. The picture "
    "draws "
    "many parts of a kind as one. It needs no package that other commands can open.",
    "opctool graph report.docx >report.dot\n"
    "opctool graph report.docx --format svg >report.svg\n"
    "opctool graph report.docx --from /word/document.xml --depth 1 --json",
    "",
    R"({
  "type": "object",
  "required": ["nodes", "edges"],
  "properties": {
    "nodes": {
      "description": "the first is where the graph begins: the package, or the part that --from names",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["kind", "name", "contentType", "size", "distance", "signed"],
        "properties": {
          "kind": {"enum": ["package", "part", "external", "missing"]},
          "name": {"description": "of the part; the target where there is none", "type": "string"},
          "contentType": {"type": ["string", "null"]},
          "size": {"description": "in bytes; null if it is no part", "type": ["integer", "null"]},
          "distance": {"description": "relationships on the shortest path from the first; null if no path leads there", "type": ["integer", "null"]},
          "signed": {"description": "whether a signature names it; not whether it holds", "type": "boolean"}
        }
      }
    },
    "edges": {
      "type": "array",
      "items": {
        "type": "object",
        "required": ["from", "to", "id", "type", "signed"],
        "properties": {
          "from": {"description": "the place of the source among the nodes", "type": "integer"},
          "to": {"type": "integer"},
          "id": {"description": "of the relationship", "type": "string"},
          "type": {"description": "of the relationship", "type": "string"},
          "signed": {"type": "boolean"}
        }
      }
    }
  }
})"};

} // namespace opctool
