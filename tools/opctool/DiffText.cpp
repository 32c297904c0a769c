#include "Color.hpp"
#include "DiffOutput.hpp"
#include "FileRun.hpp"
#include "TerminalText.hpp"

#include <opc/core/Exception.hpp>

#include <set>
#include <utility>

namespace opctool {

namespace {

using namespace opc::inspection;
using Kind = ContentDifference::Kind;
using Outcome = TextDifference::Outcome;

const char* nameOf(Kind kind) {
    static constexpr const char* NAMES[] = {"added", "removed", "moved", "changed"};
    return NAMES[static_cast<int>(kind)];
}

std::string counted(std::size_t count, const std::string& thing) {
    return std::to_string(count) + ' ' + thing + (count == 1 ? "" : "s");
}

std::string shownType(const ContentVersion& version) {
    return version.contentType.empty() ? "no type" : version.contentType;
}

/// Size and digest of a content, or why it has none.
std::string fingerprintOf(const ContentVersion& version) {
    std::string text = std::to_string(version.size) + " bytes";
    try {
        return text + ", sha256 " + digestOf(version);
    } catch (const opc::Exception&) {
        return text + ", can't be read";
    }
}

std::string describe(const RelationshipVersion& version) {
    return version.type + " -> " + version.target + (version.isExternal ? " (external)" : "");
}

class Printer {
public:
    Printer(FileRun& run, const Comparison& comparison, const DiffStyle& style)
        : run(run), comparison(comparison), style(style) {}

    void print() {
        for (const RelationshipDifference& one : comparison.relationships)
            printRelationship(one);
        for (const PropertyDifference& one : comparison.properties)
            addLine("property " + one.name + ": " + one.before.value_or("none") + " -> " +
                    one.now.value_or("none"));
        for (const ContentDifference& one : comparison.items)
            printContent("item", one);
        for (const ContentDifference& one : comparison.parts)
            printContent("part", one);
        if (style.extent == DiffStyle::Extent::Overview && !comparison.isEmpty())
            addLine(counted(comparison.parts.size(), "part") + ", " +
                    counted(comparison.relationships.size(), "relationship") + " and " +
                    counted(comparison.items.size(), "other item") +
                    (comparison.parts.size() + comparison.relationships.size() + comparison.items.size() == 1
                         ? " differs"
                         : " differ"));
    }

private:
    void addLine(const std::string& text, Color color = Color::None) {
        run.out() << paint(withoutControlCharacters(text), style.isColored ? color : Color::None) << '\n';
    }

    void printRelationship(const RelationshipDifference& one) {
        const bool isChange = one.before && one.now;
        const RelationshipVersion& version = one.now ? *one.now : *one.before;
        addLine(std::string(isChange  ? "changed"
                            : one.now ? "added"
                                      : "removed") +
                    " relationship " + version.id + " of " + one.source + ": " + describe(version) +
                    (isChange ? ", was " + describe(*one.before) : ""),
                isChange  ? Color::Yellow
                : one.now ? Color::Green
                          : Color::Red);
    }

    void printContent(const std::string& what, const ContentDifference& one) {
        const std::string head = std::string(nameOf(one.kind)) + ' ' + what + ' ';
        const ContentVersion& version = one.now ? *one.now : *one.before;
        switch (one.kind) {
        case Kind::Added:
        case Kind::Removed:
            addLine(head + version.name + ": " + (what == "part" ? shownType(version) + ", " : "") +
                        std::to_string(version.size) + " bytes",
                    one.kind == Kind::Added ? Color::Green : Color::Red);
            break;
        case Kind::Moved:
            addLine(head + one.before->name + " to " + version.name, Color::Yellow);
            break;
        case Kind::Changed:
            if (one.hasOtherContent)
                printChange(head, one);
        }
        if (one.hasOtherType)
            addLine("type of part " + version.name + ": " + shownType(*one.before) + " -> " +
                        shownType(version),
                    Color::Yellow);
    }

    void printChange(const std::string& head, const ContentDifference& one) {
        if (!one.unreadable.empty()) {
            addLine(head + one.name() + ": can't be compared: " + one.unreadable, Color::Yellow);
            return;
        }
        const TextDifference difference = compareText(one, style.context);
        std::string what;
        if (difference.outcome == Outcome::Lines)
            what = counted(difference.removedLines, "line") + " removed, " +
                   std::to_string(difference.addedLines) + " added";
        else if (difference.outcome == Outcome::SameText)
            what = "other bytes, the same XML";
        else
            what = fingerprintOf(*one.before) + " -> " + fingerprintOf(*one.now);
        addLine(head + one.name() + ": " + what, Color::Yellow);
        if (style.extent == DiffStyle::Extent::Lines && !difference.hunks.empty())
            printHunks(one, difference);
    }

    void printHunks(const ContentDifference& one, const TextDifference& difference) {
        const auto nameIn = [](const std::string& package, const std::string& name) {
            return package + '!' + name;
        };
        addLine("--- " + nameIn(style.before, one.before->name), Color::Bold);
        addLine("+++ " + nameIn(style.now, one.now->name), Color::Bold);
        for (const Hunk& hunk : difference.hunks) {
            addLine("@@ -" + std::to_string(hunk.beforeLine) + ',' + std::to_string(hunk.beforeCount) + " +" +
                        std::to_string(hunk.nowLine) + ',' + std::to_string(hunk.nowCount) + " @@",
                    Color::Bold);
            for (const HunkLine& line : hunk.lines)
                addLine(line.mark + line.text, line.mark == '+'   ? Color::Green
                                               : line.mark == '-' ? Color::Red
                                                                  : Color::None);
        }
    }

    FileRun& run;
    const Comparison& comparison;
    const DiffStyle& style;
};

/// Relationships stand for the part that they are in.
std::string partOfRelationships(const std::string& source) {
    const std::size_t file = source.rfind('/') + 1;
    return source.substr(0, file) + "_rels/" + source.substr(file) + ".rels";
}

void printNames(FileRun& run, const Comparison& comparison) {
    std::set<std::string> names;
    for (const auto* list : {&comparison.parts, &comparison.items})
        for (const ContentDifference& one : *list)
            for (const auto* version : {&one.before, &one.now})
                if (*version)
                    names.insert((*version)->name);
    for (const RelationshipDifference& one : comparison.relationships)
        names.insert(partOfRelationships(one.source));
    for (const std::string& name : names)
        run.out() << withoutControlCharacters(name) << '\n';
}

} // namespace

void printDiff(FileRun& run, const Comparison& comparison, const DiffStyle& style) {
    if (style.extent == DiffStyle::Extent::Names)
        printNames(run, comparison);
    else
        Printer(run, comparison, style).print();
}

} // namespace opctool
