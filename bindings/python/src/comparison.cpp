#include "ArchiveSource.hpp"
#include "Bindings.hpp"
#include "Values.hpp"

#include <opc/inspection/Comparison.hpp>

#include <pybind11/stl.h>

#include <array>

namespace opcpython {

using namespace opc::inspection;

namespace {

/// Name, content type and size.
py::object toRow(const std::optional<ContentVersion>& version) {
    if (!version)
        return py::none();
    return py::make_tuple(toPython(version->name), toPython(version->contentType), version->size);
}

/// The members of `opcmodel.ContentDifference`.
py::tuple toRow(const ContentDifference& difference) {
    constexpr std::array KINDS{"added", "removed", "moved", "changed"};
    return py::make_tuple(KINDS.at(static_cast<std::size_t>(difference.kind)), toRow(difference.before),
                          toRow(difference.now), difference.hasOtherContent, difference.hasOtherType,
                          orNone(difference.unreadable));
}

/// ID, type, target, where it leads, and whether it is external.
py::object toRow(const std::optional<RelationshipVersion>& version) {
    if (!version)
        return py::none();
    return py::make_tuple(toPython(version->id), toPython(version->type), toPython(version->target),
                          orNone(version->resolved), version->isExternal);
}

py::tuple toRow(const RelationshipDifference& difference) {
    return py::make_tuple(toPython(difference.source), toRow(difference.before), toRow(difference.now));
}

py::object orNone(const std::optional<std::string>& text) {
    return text ? py::object(toPython(*text)) : py::object(py::none());
}

py::tuple toRow(const PropertyDifference& difference) {
    return py::make_tuple(toPython(difference.name), orNone(difference.before), orNone(difference.now));
}

template <typename Element>
py::list toRows(const std::vector<Element>& all) {
    py::list rows;
    for (const Element& one : all)
        rows.append(toRow(one));
    return rows;
}

/// Parts, items, relationships and properties that differ.
py::tuple compareArchives(ArchiveSource& before, ArchiveSource& now, const std::vector<std::string>& names,
                          bool findsMoves) {
    const Comparison found = before.withArchives(now, [&](Archive& old, Archive& other) {
        return compare(old, other, {names, findsMoves});
    });
    return py::make_tuple(toRows(found.parts), toRows(found.items), toRows(found.relationships),
                          toRows(found.properties));
}

/// The hunks in which a part differs as XML, each with its place and its lines; `None` if it can't be told by lines.
py::object compareTexts(ArchiveSource& before, ArchiveSource& now, const std::string& part,
                        std::size_t context) {
    const TextDifference found = before.withArchives(now, [&](Archive& old, Archive& other) {
        for (const ContentDifference& one : compare(old, other, {{part}, false}).parts)
            if (one.kind == ContentDifference::Kind::Changed)
                return compareText(one, context);
        return TextDifference{TextDifference::Outcome::SameText, {}};
    });
    if (found.outcome == TextDifference::Outcome::NotXml ||
        found.outcome == TextDifference::Outcome::TooLarge)
        return py::none();
    py::list hunks;
    for (const Hunk& hunk : found.hunks) {
        py::list lines;
        for (const HunkLine& line : hunk.lines)
            lines.append(toPython(line.mark + line.text));
        hunks.append(py::make_tuple(hunk.beforeLine, hunk.beforeCount, hunk.nowLine, hunk.nowCount, lines));
    }
    return hunks;
}

} // namespace

void bindComparison(py::module_& module) {
    module.def("compare", &compareArchives);
    module.def("compare_texts", &compareTexts);
}

} // namespace opcpython
