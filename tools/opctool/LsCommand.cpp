#include "Commands.hpp"
#include "Files.hpp"
#include "OpenedPackage.hpp"

#include <opc/core/Text.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using opc::toUDEString;
using opc::model::Part;

void ls(FileRun& run) {
    OpenedPackage package(run, opc::interfaces::OpenMode::ReadOnly);
    ordered_json list = ordered_json::array();
    for (const Part& part : package->getParts())
        list.push_back({{"name", toUDEString(part.getName().toString())},
                        {"contentType", toUDEString(part.getContentType().toString())},
                        {"size", measure(part)},
                        {"relationships", part.getRelationships().size()}});
    if (run.wantsJSON()) {
        run.json().add(list);
        return;
    }
    Table table(
        {{"NAME"}, {"CONTENT TYPE"}, {"SIZE", Table::Align::Right}, {"RELATIONSHIPS", Table::Align::Right}});
    for (const auto& row : list)
        table.addRow({row["name"], row["contentType"], row["size"].dump(), row["relationships"].dump()});
    table.print(run.out(), run.tableStyle());
}

void declareLs(CLI::App& command) {
    const auto files = addFiles(command, LS);
    command.callback([files] { files->run(ls); });
}

} // namespace

const Command LS{"ls",
                 "List the parts: name, content type, size, relationships",
                 declareLs,
                 "",
                 "opctool ls report.docx\n"
                 "opctool ls -r folder --jsonl",
                 "",
                 R"({
  "type": "array",
  "items": {
    "type": "object",
    "required": ["name", "contentType", "size", "relationships"],
    "properties": {
      "name": {"type": "string"},
      "contentType": {"type": "string"},
      "size": {"description": "in bytes, uncompressed", "type": "integer"},
      "relationships": {"description": "how many it has", "type": "integer"}
    }
  }
})"};

} // namespace opctool
