#include "BaselineFile.hpp"

#include "Command.hpp"
#include "Messages.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Text.hpp>

#include <nlohmann/json.hpp>

#include <filesystem>
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

/// A name that isn't UTF-8 stands there as its bytes.
std::string nameOf(const json& file) {
    if (file.is_string())
        return file;
    const auto bytes = bedrock::crypto::utils::base64Decode(opc::toString(file.at("bytes"), true));
    return {bytes.begin(), bytes.end()};
}

void addFileOfReport(Baseline& baseline, const json& file, const std::string& root) {
    if (file.contains("error"))
        return;
    const std::string uri = opc::inspection::toSARIFURI(nameOf(file.at("file")), root);
    for (const json& finding : file.at("result").at("findings"))
        baseline.add(uri, finding.at("fingerprint"));
}

void addDocument(Baseline& baseline, const json& document, const std::string& root) {
    if (document.is_array())
        for (const json& file : document)
            addFileOfReport(baseline, file, root);
    else if (document.contains("runs"))
        addSARIF(baseline, document);
    else
        addFileOfReport(baseline, document, root);
}

/// It is no package that fails.
[[noreturn]] void refuseBaseline(const std::string& path, const std::string& why) {
    tell(path, why);
    throw EndsWith{FAILURE};
}

} // namespace

Baseline readBaseline(const std::string& path, const std::string& root) {
    std::ifstream file{std::filesystem::path(path)};
    if (!file)
        refuseBaseline(path, "can't be read");
    Baseline baseline;
    try {
        while (file >> std::ws && file.peek() != std::ifstream::traits_type::eof()) {
            json document;
            file >> document;
            addDocument(baseline, document, root);
        }
    } catch (const json::exception&) {
        refuseBaseline(path, "is no report of opctool check in JSON or SARIF");
    }
    return baseline;
}

} // namespace opctool
