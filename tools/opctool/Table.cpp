#include "Table.hpp"

#include "TerminalText.hpp"
#include "Wrapping.hpp"

#include <algorithm>
#include <ostream>

namespace opctool {

namespace {

/// The most characters of all cells of a column together, with padding. A single long cell among very many rows would
/// make each row as long, so beyond this limit the column isn't padded.
constexpr std::size_t MAXIMUM_OF_COLUMN = std::size_t{64} << 20;

void printCells(std::ostream& stream, const std::vector<std::string>& cells,
                const std::vector<Table::Column>& columns, const std::vector<std::size_t>& widths,
                bool isColored) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::size_t taken = widthOf(cells[i]);
        const std::string padding(widths[i] > taken ? widths[i] - taken : 0, ' ');
        const bool isLast = i + 1 == cells.size();
        const auto color = columns[i].paint;
        const std::string text = isColored && color != nullptr ? paint(cells[i], color(cells[i])) : cells[i];
        if (columns[i].align == Table::Align::Right)
            stream << padding << text;
        else
            stream << text << (isLast ? "" : padding);
        stream << (isLast ? "" : "  ");
    }
}

} // namespace

void Table::addRow(std::vector<std::string> cells) {
    rows.push_back(std::move(cells));
}

void Table::print(std::ostream& stream, Style style) const {
    print(stream, style, [this](const auto& visit) { std::for_each(rows.begin(), rows.end(), visit); });
}

void Table::print(std::ostream& stream, Style style, const Rows& forEachRow) const {
    const auto forEachShown = [&forEachRow](const auto& visit) {
        forEachRow([&visit](Cells cells) {
            std::transform(cells.begin(), cells.end(), cells.begin(), withoutControlCharacters);
            visit(cells);
        });
    };
    Cells headings;
    std::vector<std::size_t> widths;
    for (const Column& column : columns) {
        headings.push_back(column.heading);
        widths.push_back(style.hasHeading ? widthOf(column.heading) : 0);
    }
    std::size_t rowCount = 0;
    forEachShown([&](const Cells& cells) {
        ++rowCount;
        for (std::size_t i = 0; i < cells.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(cells[i]));
    });
    if (rowCount == 0)
        return;
    for (std::size_t& columnWidth : widths)
        columnWidth = std::min(columnWidth, MAXIMUM_OF_COLUMN / rowCount);
    if (style.hasHeading) {
        stream << (style.isColored ? "\033[1m" : "");
        printCells(stream, headings, columns, widths, false);
        stream << (style.isColored ? "\033[0m\n" : "\n");
    }
    forEachShown([&](const Cells& cells) {
        printCells(stream, cells, columns, widths, style.isColored);
        stream << '\n';
    });
}

} // namespace opctool
