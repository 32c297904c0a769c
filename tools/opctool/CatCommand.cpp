#include "Commands.hpp"
#include "Files.hpp"
#include "OpenedPackage.hpp"

#include <opc/core/StreamHelper.hpp>

#include <CLI/CLI.hpp>

namespace opctool {

namespace {

void cat(FileRun& run, const opc::model::PartName& name) {
    OpenedPackage package(run, opc::interfaces::OpenMode::ReadOnly);
    opc::StreamHelper::copyStreamToStream(package->getPart(name).getInputStream(), run.out());
}

void declare(CLI::App& command) {
    const auto part = std::make_shared<std::string>();
    const auto files = addFile(command, CAT);
    command.add_option("PART", *part, "A part name")->required()->type_name("");
    command.callback([files, part] {
        const std::u16string name = fromArgument(*part);
        files->run([&name](FileRun& run) { cat(run, opc::model::PartName(name)); });
    });
}

} // namespace

const Command CAT{"cat", "Write the content of a part to standard output", declare, "",
                  "opctool cat report.docx /word/document.xml | xmllint --format -"};

} // namespace opctool
