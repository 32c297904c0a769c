#pragma once

#include "Color.hpp"

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace opctool {

/// Rows for people: aligned columns under a heading.
class Table {
public:
    enum class Align { Left, Right };

    /// Gives a cell's colour, if cells have colours.
    using Paint = Color (*)(const std::string& cell);

    struct Column {
        std::string heading;
        Align align = Align::Left;
        Paint paint = nullptr;
    };

    struct Style {
        bool hasHeading = true;
        bool isColored = false; ///< the heading is bold, and cells have their colours
    };

    explicit Table(std::vector<Column> columns) : columns(std::move(columns)) {}

    /// @param cells  one for each column, in UTF-8; control characters become blanks
    void addRow(std::vector<std::string> cells);

    /// Prints nothing if there are no rows.
    void print(std::ostream& stream, Style style) const;

    using Cells = std::vector<std::string>;
    using Rows = std::function<void(const std::function<void(Cells)>&)>;

    /// The same for rows that aren't kept, because there may be very many.
    /// @param forEachRow  calls its argument with each row; called twice
    void print(std::ostream& stream, Style style, const Rows& forEachRow) const;

private:
    std::vector<Column> columns;
    std::vector<std::vector<std::string>> rows;
};

} // namespace opctool
