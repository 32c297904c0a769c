#include "BaselineFile.hpp"

#include <opc/core/Exception.hpp>

#include <nlohmann/json.hpp>

#include <fstream>
#include <iterator>

namespace opctool {

namespace {

using nlohmann::json;
using opc::inspection::Baseline;

void addSARIF(Baseline& baseline, const json& log) {
    for (const json& run : log.at("runs"))
        for (const json& result : run.at("results")) {
            const json& place = result.at("locations").at(0).at("physicalLocation").at("artifactLocation");
            baseline.add(place.at("uri"), result.at("partialFingerprints").at("opcRule/v1"));
        }
}

void addFile(Baseline& baseline, const json& file, const std::string& root) {
    const std::string uri = opc::inspection::toSARIFURI(file.at("file"), root);
    for (const json& finding : file.at("findings"))
        baseline.add(uri, finding.at("fingerprint"));
}

void addDocument(Baseline& baseline, const json& document, const std::string& root) {
    if (document.is_array())
        for (const json& file : document)
            addFile(baseline, file, root);
    else if (document.contains("runs"))
        addSARIF(baseline, document);
    else
        addFile(baseline, document, root);
}

} // namespace

Baseline readBaseline(const std::string& path, const std::string& root) {
    std::ifstream file(path);
    if (!file)
        throw opc::Exception(path + ": can't be read");
    Baseline baseline;
    try {
        while (file >> std::ws && file.peek() != std::ifstream::traits_type::eof()) {
            json document;
            file >> document;
            addDocument(baseline, document, root);
        }
    } catch (const json::exception& e) {
        throw opc::Exception(path + ": is no report of opctool check in JSON or SARIF: " + e.what());
    }
    return baseline;
}

} // namespace opctool
