#include "ArchiveFile.hpp"
#include "Commands.hpp"
#include "Files.hpp"
#include "JSONText.hpp"
#include "TerminalText.hpp"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <map>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using namespace opc::inspection;

const char* nameOf(ItemKind kind) {
    static constexpr const char* NAMES[] = {"part",   "relationships", "content-types", "piece",
                                            "folder", "ignored",       "hidden"};
    return NAMES[static_cast<int>(kind)];
}

const char* nameOf(ArchiveGap::Where where) {
    static constexpr const char* NAMES[] = {"before-items", "between-items", "before-directory",
                                            "behind-directory", "behind-end"};
    return NAMES[static_cast<int>(where)];
}

std::string nameOfMethod(unsigned method) {
    return method == 0 ? "store" : method == 8 ? "deflate" : "method " + std::to_string(method);
}

/// Date and time of MS-DOS, which has no time zone.
std::string timeOf(const ItemHeader& header) {
    const unsigned date = header.date;
    const unsigned time = header.time;
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u", 1980 + (date >> 9U), date >> 5U & 15U,
                  date & 31U, time >> 11U, time >> 5U & 63U, 2 * (time & 31U));
    return text;
}

template <typename Number>
ordered_json numberOrNull(const std::optional<Number>& number) {
    return number ? ordered_json(*number) : ordered_json();
}

ordered_json describe(const std::optional<ItemHeader>& header) {
    if (!header)
        return nullptr;
    return {{"method", header->method},
            {"flags", header->flags},
            {"versionNeeded", header->versionNeeded},
            {"time", timeOf(*header)},
            {"checksum", header->checksum},
            {"compressedSize", header->compressedSize},
            {"size", header->size},
            {"nameSize", header->name.size()},
            {"extraSize", header->extraFields.size()}};
}

ordered_json describe(const ArchiveItem& item) {
    return {{"name", item.name},
            {"kind", nameOf(item.kind)},
            {"part", textOrNull(item.partName)},
            {"piece", item.hasPieceName ? ordered_json(item.pieceNumber) : ordered_json()},
            {"reason", textOrNull(item.reason)},
            {"offset", numberOrNull(item.headerOffset)},
            {"data", numberOrNull(item.dataOffset)},
            {"end", numberOrNull(item.endOffset)},
            {"central", describe(item.central)},
            {"local", describe(item.local)},
            {"descriptor", item.hasDescriptor},
            {"madeBy", item.versionMadeBy},
            {"attributes", item.externalAttributes},
            {"commentSize", item.comment.size()}};
}

void printJSON(FileRun& run, const Archive& archive) {
    JSONOutput& output = run.json();
    output.beginObject();
    output.add(archive.size(), "size");
    output.add(archive.isZip(), "directory");
    output.add(archive.comment().size(), "commentSize");
    output.beginArray("items");
    for (const ArchiveItem& item : archive.items())
        output.add(describe(item));
    output.end();
    output.beginArray("gaps");
    for (const ArchiveGap& gap : archive.gaps())
        output.add(ordered_json{{"offset", gap.offset}, {"size", gap.size}, {"where", nameOf(gap.where)}});
    output.end();
    output.beginArray("faults");
    for (const ArchiveFault& fault : archive.faults())
        output.add(ordered_json{{"rule", std::string(fault.rule)},
                                {"item", numberOrNull(fault.item)},
                                {"offset", numberOrNull(fault.offset)},
                                {"message", fault.message}});
    output.end();
    output.end();
}

/// A row of the table, with where it stands in the archive.
struct ItemRow {
    std::uint64_t place;
    Table::Cells cells;
};

Table::Cells cellsOf(const ArchiveItem& item, const std::string& faults) {
    const ItemHeader& header = item.central ? *item.central : *item.local;
    std::string note = item.reason;
    if (!faults.empty())
        note += (note.empty() ? "" : "; ") + faults;
    return {item.headerOffset ? std::to_string(*item.headerOffset) : "-",
            nameOf(item.kind),
            nameOfMethod(header.method),
            std::to_string(header.size),
            std::to_string(header.compressedSize),
            item.name,
            note};
}

/// The items and gaps as they lie in the archive.
std::vector<ItemRow> makeRows(const Archive& archive) {
    std::map<std::size_t, std::string> faults; // by item
    for (const ArchiveFault& fault : archive.faults())
        if (fault.item)
            faults[*fault.item] += (faults[*fault.item].empty() ? "" : "; ") + fault.message;
    std::vector<ItemRow> rows;
    for (std::size_t i = 0; i < archive.items().size(); ++i) {
        const ArchiveItem& item = archive.items()[i];
        const auto found = faults.find(i);
        rows.push_back({item.headerOffset.value_or(0),
                        cellsOf(item, found == faults.end() ? std::string() : found->second)});
    }
    for (const ArchiveGap& gap : archive.gaps())
        rows.push_back({gap.offset,
                        {std::to_string(gap.offset), "gap", "-", std::to_string(gap.size), "-", "-",
                         nameOf(gap.where)}});
    std::stable_sort(rows.begin(), rows.end(),
                     [](const ItemRow& left, const ItemRow& right) { return left.place < right.place; });
    return rows;
}

void items(FileRun& run) {
    const Archive archive = openToInspect(run);
    if (run.wantsJSON())
        return printJSON(run, archive);
    Table table({{"OFFSET", Table::Align::Right},
                 {"KIND"},
                 {"METHOD"},
                 {"SIZE", Table::Align::Right},
                 {"PACKED", Table::Align::Right},
                 {"NAME"},
                 {"NOTE"}});
    for (ItemRow& row : makeRows(archive))
        table.addRow(std::move(row.cells));
    table.print(run.out(), run.tableStyle());
    for (const ArchiveFault& fault : archive.faults())
        if (!fault.item)
            run.out() << withoutControlCharacters(fault.message) << '\n';
    if (!archive.isZip())
        run.out() << "No directory\n";
}

void declareItems(CLI::App& command) {
    const auto files = addFiles(command, ITEMS);
    command.callback([files] { files->run(items); });
}

} // namespace

const Command ITEMS{
    "items",
    "List what the archive of a package holds, as it lies",
    declareItems,
    "Unlike ls it needs no package: it also reads archives that the other commands refuse, and files "
    "without a directory. The table has the items in the order of their places, hidden ones too, which "
    "the directory doesn't list, and the gaps between them; NOTE says why an item is no part, and what is "
    "wrong "
    "with its records.",
    "opctool items report.docx\n"
    "opctool items broken.docx --json",
    "",
    R"({
  "type": "object",
  "required": ["size", "directory", "commentSize", "items", "gaps", "faults"],
  "properties": {
    "size": {"description": "of the file, in bytes", "type": "integer"},
    "directory": {"description": "whether there is a directory that can be read", "type": "boolean"},
    "commentSize": {"type": "integer"},
    "items": {
      "description": "in the order of the directory, then those that it doesn't list",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["name", "kind", "part", "piece", "reason", "offset", "data", "end", "central", "local",
                     "descriptor", "madeBy", "attributes", "commentSize"],
        "properties": {
          "name": {"type": "string"},
          "kind": {"enum": ["part", "relationships", "content-types", "piece", "folder", "ignored", "hidden"]},
          "part": {"description": "the name of the part in it", "type": ["string", "null"]},
          "piece": {"description": "its number among the pieces of a part", "type": ["integer", "null"]},
          "reason": {"description": "why it is no part", "type": ["string", "null"]},
          "offset": {"description": "of the local header", "type": ["integer", "null"]},
          "data": {"description": "offset of the content", "type": ["integer", "null"]},
          "end": {"description": "offset behind all of it", "type": ["integer", "null"]},
          "central": {
            "description": "what the directory says; null for a hidden item",
            "type": ["object", "null"],
            "required": ["method", "flags", "versionNeeded", "time", "checksum", "compressedSize", "size",
                         "nameSize", "extraSize"],
            "properties": {
              "method": {"description": "0 stored, 8 deflated", "type": "integer"},
              "flags": {"type": "integer"},
              "versionNeeded": {"type": "integer"},
              "time": {"description": "without a time zone", "type": "string"},
              "checksum": {"description": "CRC-32", "type": "integer"},
              "compressedSize": {"type": "integer"},
              "size": {"type": "integer"},
              "nameSize": {"type": "integer"},
              "extraSize": {"description": "of the extra fields", "type": "integer"}
            }
          },
          "local": {
            "description": "what the local header says; null if there is none",
            "anyOf": [{"type": "null"}, {"$ref": "#/properties/result/properties/items/items/properties/central"}]
          },
          "descriptor": {"description": "whether a data descriptor stands behind the content", "type": "boolean"},
          "madeBy": {"type": "integer"},
          "attributes": {"type": "integer"},
          "commentSize": {"type": "integer"}
        }
      }
    },
    "gaps": {
      "description": "bytes that belong to no item and no record",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["offset", "size", "where"],
        "properties": {
          "offset": {"type": "integer"},
          "size": {"type": "integer"},
          "where": {"enum": ["before-items", "between-items", "before-directory", "behind-directory", "behind-end"]}
        }
      }
    },
    "faults": {
      "description": "what is wrong with the records",
      "type": "array",
      "items": {
        "type": "object",
        "required": ["rule", "item", "offset", "message"],
        "properties": {
          "rule": {"type": "string"},
          "item": {"description": "its place among the items", "type": ["integer", "null"]},
          "offset": {"type": ["integer", "null"]},
          "message": {"type": "string"}
        }
      }
    }
  }
})"};

} // namespace opctool
