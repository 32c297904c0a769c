#include "ArchiveSource.hpp"
#include "Bindings.hpp"
#include "Values.hpp"

#include <opc/inspection/ContentHash.hpp>
#include <opc/inspection/External.hpp>
#include <opc/inspection/FlatText.hpp>
#include <opc/inspection/Format.hpp>
#include <opc/inspection/Inspection.hpp>
#include <opc/inspection/Reports.hpp>

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <array>
#include <sstream>
#include <stdexcept>

namespace opcpython {

using namespace opc::inspection;

namespace {

const char* nameOf(Severity severity) {
    constexpr std::array NAMES{"info", "warning", "error"};
    return NAMES.at(static_cast<std::size_t>(severity));
}

unsigned profilesOf(const std::vector<std::string>& names) {
    unsigned profiles = 0;
    for (const std::string& name : names)
        if (name == "opc")
            profiles |= OPC;
        else if (name == "security")
            profiles |= SECURITY;
        else if (name == "office")
            profiles |= OFFICE;
        else if (name == "all")
            profiles |= EVERY_PROFILE;
        else
            throw std::invalid_argument("there is no profile " + name);
    return profiles;
}

/// The members of `opcmodel.Rule`.
py::tuple toRow(const Rule& rule) {
    return py::make_tuple(toPython(rule.id), toPython(rule.title), nameOf(rule.severity),
                          toPython(rule.standard), toPython(rule.statement), toPython(rule.cause),
                          toPython(rule.writers), toPython(rule.readers), toPython(rule.remedy));
}

std::shared_ptr<InspectedFile> check(ArchiveSource& source, const std::string& name,
                                     const InspectionOptions& options) {
    auto file = std::make_shared<InspectedFile>();
    file->name = name;
    source.withArchive([&](Archive& archive) {
        file->report = inspect(archive, options);
        file->picture = drawPackage(archive, options.limits);
    });
    return file;
}

std::string write(const InspectedFile& file, std::unique_ptr<ReportFormat> format) {
    return withoutLock([&] {
        std::ostringstream text;
        ReportWriter writer(text, std::move(format));
        writer.add(file);
        writer.end();
        return text.str();
    });
}

void bindReport(py::module_& module) {
    py::class_<InspectedFile, std::shared_ptr<InspectedFile>>(module, "Report")
        .def_property_readonly("format", [](const InspectedFile& file) { return file.report.format; })
        .def_property_readonly("unlisted", [](const InspectedFile& file) { return file.report.unlisted; })
        .def_property_readonly("findings",
                               [](const InspectedFile& file) {
                                   py::list rows;
                                   for (const Finding& finding : file.report.findings)
                                       rows.append(opcpython::toRow(finding));
                                   return rows;
                               })
        .def("to_json",
             [](const InspectedFile& file) {
                 std::ostringstream text;
                 writeJSON(text, file);
                 return toPython(text.str());
             })
        .def("to_text", [](const InspectedFile& file) { return toPython(write(file, makeTextReport())); })
        .def("to_html", [](const InspectedFile& file) { return toPython(write(file, makeHTMLReport())); })
        .def("to_sarif", [](const InspectedFile& file, const std::filesystem::path& root) {
            return toPython(write(file, makeSARIFReport({"opcmodel", OPCMODEL_VERSION, root})));
        });
}

py::tuple detect(ArchiveSource& source) {
    constexpr std::array CONFORMANCES{"", "transitional", "strict"};
    const Format format = source.withArchive([](Archive& archive) { return detectFormat(archive); });
    return py::make_tuple(toPython(format.name), orNone(format.mediaType), toPython(format.description),
                          orNone(CONFORMANCES.at(static_cast<std::size_t>(format.conformance))),
                          format.isPackage, format.hasMacros, format.isSigned, format.isEncrypted,
                          orNone(format.mainPart));
}

py::tuple hash(ArchiveSource& source, bool ignoresCore, bool ignoresIds, bool ignoresSignatures) {
    const ContentHash hash = source.withArchive([&](Archive& archive) {
        return hashContent(archive, {ignoresCore, ignoresIds, ignoresSignatures});
    });
    py::dict parts;
    for (const HashedPart& part : hash.parts)
        parts[toPython(part.name)] = toPython(part.sha256);
    return py::make_tuple(toPython(hash.sha256), parts);
}

} // namespace

py::tuple toRow(const Finding& finding) {
    const Place& place = finding.place;
    return py::make_tuple(toPython(finding.rule->id), nameOf(finding.severity), toPython(finding.message),
                          orNone(place.part), orNone(place.item), orNone(place.relationship),
                          orNone(place.target), place.line, place.column, place.offset, orNone(finding.hint),
                          orNone(finding.rule->standard));
}

InspectionOptions makeInspectionOptions(const std::vector<std::string>& profiles,
                                        const std::vector<std::string>& only,
                                        const std::vector<std::string>& never,
                                        const opc::physical::ZipOptions& limits) {
    InspectionOptions options;
    options.profiles = profilesOf(profiles);
    for (const auto* list : {&only, &never})
        for (const std::string& id : *list)
            if (findRules(id).empty())
                throw std::invalid_argument("there is no rule " + id);
    options.only = only;
    options.never = never;
    options.limits = limits;
    return options;
}

void bindInspection(py::module_& module) {
    bindReport(module);
    module.def("inspect",
               [](ArchiveSource& source, const std::string& name, const std::vector<std::string>& profiles,
                  const std::vector<std::string>& only, const std::vector<std::string>& never) {
                   InspectionOptions options = makeInspectionOptions(profiles, only, never, source.limits());
                   options.fileName = name;
                   return check(source, name, options);
               });
    module.def("list_rules", [] {
        py::list rows;
        for (const Rule* rule : rules())
            rows.append(toRow(*rule));
        return rows;
    });
    module.def("detect_format", &detect);
    module.def("hash_content", &hash);
    module.def("flat_text", [](ArchiveSource& source) {
        std::ostringstream text;
        source.withArchive([&](Archive& archive) { writeFlatText(archive, text); });
        return toPython(text.str());
    });
}

} // namespace opcpython
