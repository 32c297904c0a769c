#include "Reading.hpp"

#include <opc/core/Exception.hpp>

#include <utility>

namespace opc::scanning {

namespace {

constexpr unsigned BY_MODEL = PARTS | RELATIONSHIPS | PROPERTIES | SIGNATURES;
constexpr unsigned BY_ARCHIVE = FORMAT | EXTERNALS | FINDINGS;

using Reading = void (*)(const Source&, const ScanOptions&, Result&);

void tryReading(Reading read, const Source& source, const ScanOptions& options, Result& result) {
    std::optional<Failure> failure;
    try {
        read(source, options, result);
        return;
    } catch (const std::exception& e) {
        failure = describe(e, source.path.string());
    }
    if (!result.failure)
        result.failure = std::move(failure);
}

} // namespace

Source fileSource(const std::filesystem::path& path) {
    return {path.string(), path, nullptr};
}

Result readFile(const Source& source, const ScanOptions& options) {
    Result result;
    result.name = source.name;
    if ((options.what & BY_MODEL) != 0)
        tryReading(readByModel, source, options, result);
    if ((options.what & BY_ARCHIVE) != 0)
        tryReading(readByArchive, source, options, result);
    return result;
}

} // namespace opc::scanning
