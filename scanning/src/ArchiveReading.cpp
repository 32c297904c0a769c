#include "Reading.hpp"

#include "SubjectAnswers.hpp"

namespace opc::scanning {

using inspection::Archive;

namespace {

Archive openArchive(const Source& source, physical::ZipOptions limits, bool lenient) {
    limits.lenient = lenient;
    return source.bytes ? Archive(*source.bytes, limits) : Archive(source.path, limits);
}

void readContent(const Source& source, const ScanOptions& options, Result& result) {
    const Archive archive = openArchive(source, options.limits, !options.strict);
    const inspection::Subject subject(archive, options.limits); // one view for both answers
    if ((options.what & FORMAT) != 0)
        result.format = subject.detectedFormat();
    if ((options.what & EXTERNALS) != 0)
        result.externals = inspection::listExternals(subject);
}

/// Isn't lenient: what lenience passes over is a finding.
void findFaults(const Source& source, const ScanOptions& options, Result& result) {
    inspection::InspectionOptions wanted = options.inspection;
    wanted.limits = options.limits;
    wanted.fileName = source.name;
    result.findings = inspection::inspect(openArchive(source, options.limits, false), wanted);
}

} // namespace

void readByArchive(const Source& source, const ScanOptions& options, Result& result) {
    if ((options.what & FINDINGS) != 0)
        findFaults(source, options, result);
    if ((options.what & (FORMAT | EXTERNALS)) != 0)
        readContent(source, options, result); // fails where there is no package
}

} // namespace opc::scanning
