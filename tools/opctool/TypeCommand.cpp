#include "ArchiveFile.hpp"
#include "Commands.hpp"
#include "Files.hpp"
#include "JSONText.hpp"
#include "TerminalText.hpp"

#include <opc/inspection/Format.hpp>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace opctool {

namespace {

using nlohmann::ordered_json;
using opc::inspection::Format;

/// @return null for documents that have but one form
const char* nameOf(Format::Conformance conformance) {
    switch (conformance) {
    case Format::Conformance::Transitional:
        return "transitional";
    case Format::Conformance::Strict:
        return "strict";
    default:
        return nullptr;
    }
}

ordered_json describe(const Format& format) {
    const char* const conformance = nameOf(format.conformance);
    return {{"format", format.name},
            {"description", format.description},
            {"mediaType", textOrNull(format.mediaType)},
            {"package", format.isPackage},
            {"conformance", conformance != nullptr ? ordered_json(conformance) : ordered_json()},
            {"macros", format.hasMacros},
            {"signed", format.isSigned},
            {"encrypted", format.isEncrypted},
            {"mainPart", textOrNull(format.mainPart)}};
}

void type(FileRun& run) {
    const Format format = opc::inspection::detectFormat(openArchive(run));
    if (run.wantsJSON()) {
        run.json().add(describe(format));
        return;
    }
    run.out() << format.name << ": " << format.description;
    if (const char* const conformance = nameOf(format.conformance))
        run.out() << ", " << conformance;
    run.out() << (format.hasMacros ? ", has macros" : "") << (format.isSigned ? ", signed" : "") << '\n';
}

void declareType(CLI::App& command) {
    const auto files = addFiles(command, TYPE);
    command.callback([files] { files->run(type); });
}

} // namespace

const Command TYPE{
    "type",
    "Tell the format of a file by its content",
    declareType,
    "The name of the file doesn't count. The answer is the usual extension of the format and a "
    "description, also for what is no package: other ZIP archives, OpenDocument, EPUB, PDF, encrypted "
    "and older Office documents, files that are cut off or empty.",
    "opctool type report.docx\n"
    "opctool type -r folder --all-files --jsonl",
    "",
    R"({
  "type": "object",
  "required": ["format", "description", "mediaType", "package", "conformance", "macros", "signed", "encrypted", "mainPart"],
  "properties": {
    "format": {"description": "the usual extension; opc for a package of another format, zip, encrypted, ole2, flat-opc, xml, html, rtf, text, cut-off, empty or unknown", "type": "string"},
    "description": {"type": "string"},
    "mediaType": {"description": "null if none is known", "type": ["string", "null"]},
    "package": {"description": "whether it is a package", "type": "boolean"},
    "conformance": {"description": "of Office Open XML; null for other formats", "enum": ["transitional", "strict", null]},
    "macros": {"type": "boolean"},
    "signed": {"description": "whether there is a signature; not whether it holds", "type": "boolean"},
    "encrypted": {"type": "boolean"},
    "mainPart": {"description": "null if there is none", "type": ["string", "null"]}
  }
})"};

} // namespace opctool
