#include "ArchiveSource.hpp"

#include "Bindings.hpp"

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

namespace opcpython {

using opc::inspection::Archive;

Archive ArchiveSource::open() {
    if (const auto* const path = std::get_if<std::filesystem::path>(&place))
        return Archive(*path, zipOptions);
    if (const auto* const bytes = std::get_if<Bytes>(&place))
        return Archive(*bytes, zipOptions);
    if (const auto* const session = std::get_if<std::shared_ptr<Session>>(&place))
        return (*session)->openArchive(zipOptions.lenient);
    return Archive(std::make_shared<FileObjectSource>(std::get<std::shared_ptr<FileObject>>(place)),
                   zipOptions);
}

void bindArchiveSource(py::module_& module) {
    py::class_<ArchiveSource>(module, "ArchiveSource")
        .def_static("of_path", [](const std::filesystem::path& path,
                                  const OpenOptions& options) { return ArchiveSource(path, options.zip); })
        .def_static("of_bytes",
                    [](const std::string& bytes, const OpenOptions& options) {
                        return ArchiveSource(ArchiveSource::Bytes(bytes.begin(), bytes.end()), options.zip);
                    })
        .def_static("of_object",
                    [](py::object file, const OpenOptions& options) {
                        return ArchiveSource(std::make_shared<FileObject>(std::move(file)), options.zip);
                    })
        .def_static("of_session", [](const std::shared_ptr<Session>& session, const OpenOptions& options) {
            return ArchiveSource(session, options.zip);
        });
}

} // namespace opcpython
