#include <opc/inspection/Reports.hpp>

#include "reports/MarkupText.hpp"
#include "reports/picture/NodeLooks.hpp"
#include "reports/picture/PackageGraph.hpp"

#include <algorithm>
#include <sstream>

namespace opc::inspection {

namespace {

constexpr std::size_t WIDTH = 180;       // of a node
constexpr std::size_t HEIGHT = 26;       // of a node
constexpr std::size_t GAP = 48;          // between columns
constexpr std::size_t ROW = HEIGHT + 10; // from a node to the next
constexpr std::size_t MARGIN = 8;
constexpr std::size_t LEGEND = 34;
constexpr std::size_t MOST_CHARACTERS_IN_BOX = 24;
constexpr const char* DASHES = "4 3";

struct Point {
    std::size_t x, y;
};

class Picture {
public:
    explicit Picture(PackageGraph graph) : graph(std::move(graph)), places(this->graph.nodes.size()) {
        arrange();
    }

    std::string draw();

private:
    void arrange();
    void sortColumn(std::vector<std::size_t>& column, const std::vector<double>& rows) const;
    void draw(const GraphEdge& edge);
    void draw(std::size_t node);
    void drawBox(const NodeLook& look, Point place, std::size_t width, std::size_t height);
    void drawText(const std::string& text, Point place, const char* color);
    void drawLegend(std::size_t y);

    const PackageGraph graph;
    std::vector<Point> places; ///< of the upper left corners
    std::size_t columnCount = 0;
    std::size_t rowCount = 0;
    std::ostringstream svg;
};

/// From the left to the right, each node at the height of what leads to it.
void Picture::arrange() {
    std::vector<std::vector<std::size_t>> columns;
    for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
        columns.resize(std::max(columns.size(), graph.nodes[i].column + 1));
        columns[graph.nodes[i].column].push_back(i);
    }
    for (const auto& column : columns)
        rowCount = std::max(rowCount, column.size());
    std::vector<std::pair<double, double>> sources(graph.nodes.size()); // sum of rows, and how many
    for (auto& column : columns) {
        if (column.empty())
            continue;
        std::vector<double> wanted(graph.nodes.size());
        for (const std::size_t node : column)
            wanted[node] = sources[node].second == 0 ? 1e9 : sources[node].first / sources[node].second;
        sortColumn(column, wanted);
        const std::size_t top = (rowCount - column.size()) * ROW / 2;
        for (std::size_t row = 0; row < column.size(); ++row)
            places[column[row]] = {MARGIN + columnCount * (WIDTH + GAP), MARGIN + top + row * ROW};
        ++columnCount;
        for (const GraphEdge& edge : graph.edges)
            if (graph.nodes[edge.from].column == graph.nodes[column.front()].column) {
                sources[edge.to].first += static_cast<double>(places[edge.from].y);
                ++sources[edge.to].second;
            }
    }
}

void Picture::sortColumn(std::vector<std::size_t>& column, const std::vector<double>& rows) const {
    std::sort(column.begin(), column.end(), [&](std::size_t left, std::size_t right) {
        return std::tie(rows[left], graph.nodes[left].name) < std::tie(rows[right], graph.nodes[right].name);
    });
}

std::string Picture::draw() {
    const std::size_t width = 2 * MARGIN + columnCount * (WIDTH + GAP) - GAP + GAP / 2;
    const std::size_t bottom = 2 * MARGIN + rowCount * ROW;
    svg << R"(<svg xmlns="http://www.w3.org/2000/svg" width=")" << std::max<std::size_t>(width, 860)
        << "\" height=\"" << bottom + LEGEND << "\" role=\"img\">\n";
    for (const GraphEdge& edge : graph.edges)
        draw(edge);
    for (std::size_t i = 0; i < graph.nodes.size(); ++i)
        draw(i);
    drawLegend(bottom);
    svg << "</svg>\n";
    return svg.str();
}

void Picture::draw(const GraphEdge& edge) {
    const GraphNode& target = graph.nodes[edge.to];
    const NodeLook& look = lookOf(edge, graph);
    const Point from{places[edge.from].x + WIDTH, places[edge.from].y + HEIGHT / 2};
    const bool leadsOn = target.column > graph.nodes[edge.from].column;
    const Point to{places[edge.to].x + (leadsOn ? 0 : WIDTH), places[edge.to].y + HEIGHT / 2};
    svg << "<path d=\"M" << from.x << ' ' << from.y << 'C' << from.x + GAP / 2 << ' ' << from.y << ' '
        << (leadsOn ? to.x - GAP / 2 : to.x + GAP / 2) << ' ' << to.y << ' ' << to.x << ' ' << to.y
        << R"(" fill="none" stroke=")" << look.stroke << R"(" stroke-opacity="0.6")";
    if (look.isDashed || !leadsOn)
        svg << " stroke-dasharray=\"" << (leadsOn ? DASHES : "2 3") << '"';
    svg << "><title>" << toMarkup(titleOf(edge)) << "</title></path>\n";
}

void Picture::draw(std::size_t index) {
    const GraphNode& node = graph.nodes[index];
    const Point place = places[index];
    svg << "<g><title>" << toMarkup(titleOf(node)) << "</title>";
    drawBox(lookOf(node), place, WIDTH, HEIGHT);
    drawText(labelOf(node, MOST_CHARACTERS_IN_BOX), {place.x + 8, place.y + 17},
             node.kind == GraphNode::Kind::Package ? "#fff" : "#1f2933");
    svg << "</g>\n";
}

void Picture::drawBox(const NodeLook& look, Point place, std::size_t width, std::size_t height) {
    svg << "<rect x=\"" << place.x << "\" y=\"" << place.y << "\" width=\"" << width << "\" height=\""
        << height << R"(" rx="4" fill=")" << look.fill << "\" stroke=\"" << look.stroke << '"';
    if (look.isDashed)
        svg << " stroke-dasharray=\"" << DASHES << '"';
    svg << "/>";
}

void Picture::drawText(const std::string& text, Point place, const char* color) {
    svg << "<text x=\"" << place.x << "\" y=\"" << place.y
        << R"(" font-family="system-ui, sans-serif" font-size="12" style="fill:)" << color << "\">"
        << toMarkup(text) << "</text>";
}

/// Explains the colours that the picture has.
void Picture::drawLegend(std::size_t y) {
    std::size_t x = MARGIN;
    for (const NodeLook* look : {&PLAIN_LOOK, &SIGNED_LOOK, &UNREACHED_LOOK, &EXTERNAL_LOOK, &MISSING_LOOK}) {
        const bool isUsed = std::any_of(graph.nodes.begin(), graph.nodes.end(),
                                        [look](const GraphNode& node) { return &lookOf(node) == look; });
        if (!isUsed)
            continue;
        drawBox(*look, {x, y + 6}, 22, 14);
        drawText(look->meaning, {x + 30, y + 18}, "#5b6776");
        x += 170;
    }
}

} // namespace

std::string toSVG(const PackageGraph& graph) {
    return Picture(condense(graph)).draw();
}

std::string drawPackage(const Archive& archive, const physical::ZipOptions& limits) {
    return toSVG(makeGraph(archive, limits));
}

} // namespace opc::inspection
