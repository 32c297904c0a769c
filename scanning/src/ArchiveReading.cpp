#include "Reading.hpp"

#include "SubjectAnswers.hpp"

namespace opc::scanning {

using inspection::Archive;

namespace {

Archive openArchive(const Source& source, const ScanOptions& options) {
    physical::ZipOptions limits = options.limits;
    limits.lenient = !options.strict;
    return source.bytes ? Archive(*source.bytes, limits) : Archive(source.path, limits);
}

} // namespace

void readByArchive(const Source& source, const ScanOptions& options, Result& result) {
    const Archive archive = openArchive(source, options);
    const inspection::Subject subject(archive, options.limits); // one view for all answers
    if ((options.what & FORMAT) != 0)
        result.format = subject.detectedFormat();
    if ((options.what & FINDINGS) != 0) {
        inspection::InspectionOptions wanted = options.inspection;
        wanted.limits = options.limits;
        wanted.fileName = source.name;
        result.findings = inspection::inspect(subject, wanted);
    }
    if ((options.what & EXTERNALS) != 0)
        result.externals = inspection::listExternals(subject);
}

} // namespace opc::scanning
