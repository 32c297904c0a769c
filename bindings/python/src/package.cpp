#include "Bindings.hpp"
#include "Collected.hpp"
#include "Session.hpp"
#include "Values.hpp"

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <stdexcept>
#include <tuple>

namespace opcpython {

using opc::interfaces::OpenMode;

namespace {

using SharedSession = std::shared_ptr<Session>;

OpenMode modeOf(const std::string& mode) {
    if (mode == "r")
        return OpenMode::ReadOnly;
    return mode == "r+" ? OpenMode::ReadWrite : OpenMode::CreateOnly;
}

/// The limits of `opcmodel.Limits`, by their names there.
void setLimit(opc::physical::ZipOptions& zip, const std::string& name, std::uint64_t value) {
    const std::pair<const char*, std::uint64_t*> all[] = {{"items", &zip.maxItems},
                                                          {"directory_size", &zip.maxDirectorySize},
                                                          {"name_length", &zip.maxNameLength},
                                                          {"depth", &zip.maxDepth},
                                                          {"item_size", &zip.maxItemSize},
                                                          {"total_size", &zip.maxTotalSize},
                                                          {"ratio", &zip.maxRatio},
                                                          {"ratio_floor", &zip.ratioFloor}};
    for (const auto& [known, member] : all)
        if (name == known) {
            *member = value;
            return;
        }
    throw std::invalid_argument("there is no limit " + name);
}

OpenOptions makeOptions(bool strict, bool breaksSignatures, std::optional<std::int64_t> time,
                        const std::map<std::string, std::uint64_t>& limits) {
    OpenOptions options;
    options.strict = strict;
    options.zip.lenient = !strict;
    options.breaksSignatures = breaksSignatures;
    options.zip.deterministic = time.has_value();
    options.zip.deterministicTime = time.value_or(0);
    for (const auto& [name, value] : limits)
        setLimit(options.zip, name, value);
    return options;
}

SharedSession open(ArchivePlace place, const std::string& mode, const OpenOptions& options) {
    return withoutLock([&] { return std::make_shared<Session>(std::move(place), modeOf(mode), options); });
}

opc::physical::ZipPackage::Bytes toBytes(const std::string& bytes) {
    return {bytes.begin(), bytes.end()};
}

/// Place, line, what is odd, what is done about it, and the rule.
py::list listOddities(const SharedSession& session) {
    const auto found = session->use([&] {
        session->requireOpen();
        return session->view().getOddities();
    });
    py::list rows;
    for (const auto& one : found)
        rows.append(py::make_tuple(toPython(toText(one.place)), one.line, toPython(one.what),
                                   toPython(one.done), toPython(one.rule)));
    return rows;
}

py::list listIgnored(const SharedSession& session) {
    const auto found = session->use([&] { return session->package().getIgnoredItems(); });
    py::list rows;
    for (const auto& one : found)
        rows.append(py::make_tuple(toPython(toText(one.name)), toPython(one.reason)));
    return rows;
}

} // namespace

void bindPackage(py::module_& module) {
    py::class_<OpenOptions>(module, "OpenOptions").def(py::init(&makeOptions));
    py::class_<Session, SharedSession>(module, "Session", collected<Session>())
        .def("save", [](Session& session) { session.use([&] { session.save(); }); })
        .def("save_to_path",
             [](Session& session, const std::filesystem::path& path) {
                 session.use([&] { session.saveTo(ArchivePlace::file(path)); });
             })
        .def("save_to_object",
             [](Session& session, const py::object& file) {
                 ArchivePlace place = ArchivePlace::newObject(file);
                 session.use([&] { session.saveTo(std::move(place)); });
             })
        .def("finish", [](Session& session) { session.use([&] { session.saveAndClose(); }); })
        .def("close", [](Session& session) { session.use([&] { session.close(); }); })
        .def("bytes",
             [](Session& session) { return py::bytes(session.use([&] { return session.bytes(); })); })
        .def_property_readonly(
            "is_open",
            [](Session& session) { return session.use([&] { return session.package().isOpen(); }); })
        .def_property_readonly(
            "is_changed", [](Session& session) { return session.use([&] { return session.isChanged(); }); })
        .def("require_saved", [](Session& session) { session.use([&] { session.requireSaved(); }); });
    module.def("open_path",
               [](std::filesystem::path path, const std::string& mode, const OpenOptions& options) {
                   return open(ArchivePlace::file(std::move(path)), mode, options);
               });
    module.def("open_bytes", [](const py::bytes& bytes, const std::string& mode, const OpenOptions& options) {
        return open(ArchivePlace::bytes(toBytes(bytes)), mode, options);
    });
    module.def("open_object", [](py::object file, const std::string& mode, const OpenOptions& options) {
        return open(modeOf(mode) == OpenMode::CreateOnly ? ArchivePlace::newObject(std::move(file))
                                                         : ArchivePlace::object(std::move(file)),
                    mode, options);
    });
    module.def("list_oddities", &listOddities);
    module.def("list_ignored", &listIgnored);
}

} // namespace opcpython
