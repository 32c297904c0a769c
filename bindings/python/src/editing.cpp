#include "ArchiveSource.hpp"
#include "Bindings.hpp"
#include "PartHandle.hpp"
#include "Values.hpp"

#include <opc/editing/Cleaning.hpp>
#include <opc/editing/Job.hpp>
#include <opc/editing/Mending.hpp>
#include <opc/editing/Moving.hpp>
#include <opc/editing/Removing.hpp>

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <sstream>

namespace opcpython {

using namespace opc::editing;
using opc::model::PartName;

namespace {

using SharedSession = std::shared_ptr<Session>;

/// Text, type of a relationship, whether it is external, size of a part.
py::tuple toRow(const Change::State& state) {
    return py::make_tuple(orNone(state.text), orNone(state.type), state.isExternal, state.size);
}

/// The members of `opcmodel.Change`.
py::list toRows(const std::vector<Change>& changes) {
    py::list rows;
    for (const Change& change : changes)
        rows.append(py::make_tuple(nameOf(change.kind), toPython(change.place), orNone(change.name),
                                   toRow(change.before), toRow(change.after), toPython(describe(change))));
    return rows;
}

py::list listChanges(const SharedSession& session) {
    const auto made = session->use(
        [&] { return session->editor() == nullptr ? std::vector<Change>() : session->editor()->changes(); });
    return toRows(made);
}

/// What was mended, what is left, and the signatures that don't hold any more.
py::tuple describeMending(const Mending& mending) {
    py::list mended;
    for (const Mended& one : mending.mended)
        mended.append(py::make_tuple(toPython(one.rule->id), orNone(one.place.part), orNone(one.place.item),
                                     orNone(one.place.relationship), toPython(one.what)));
    py::list left;
    for (const auto& finding : mending.left)
        left.append(opcpython::toRow(finding));
    py::list broken;
    for (const std::string& part : mending.signatures.brokenBy(mending.changes()))
        broken.append(toPython(part));
    return py::make_tuple(mended, left, broken);
}

/// @param target  a path, a file object, or `None` for the bytes
py::tuple mendPackage(ArchiveSource& source, const std::vector<std::string>& profiles,
                      const std::vector<std::string>& only, const std::vector<std::string>& never,
                      bool breaksSignatures, const py::object& target) {
    const auto options = makeInspectionOptions(profiles, only, never, source.limits());
    std::optional<std::filesystem::path> path;
    std::unique_ptr<FileObject> object;
    if (py::hasattr(target, "write"))
        object = std::make_unique<FileObject>(target);
    else if (!target.is_none())
        path = target.cast<std::filesystem::path>();
    std::string bytes;
    std::optional<Mending> mending;
    source.withArchive([&](opc::inspection::Archive& archive) {
        mending.emplace(mend(std::move(archive), options));
        if (!breaksSignatures)
            mending->signatures.throwIfBrokenBy(mending->changes());
        if (path)
            return writeTo(*path, mending->archive);
        std::ostringstream text;
        writeTo(text, mending->archive);
        bytes = text.str();
        if (object)
            object->write(bytes.data(), bytes.size());
    });
    return py::make_tuple(describeMending(*mending),
                          path || object ? py::object(py::none()) : py::bytes(bytes));
}

} // namespace

void bindEditing(py::module_& module) {
    module.def("move_part", [](const SharedSession& session, const std::string& from, const std::string& to) {
        session->use([&] { movePart(session->edit(), wantedName(from), PartName(fromText(to))); });
    });
    module.def("collect_unreachable", [](const SharedSession& session) {
        return session->use([&] { return collectUnreachable(session->edit()); });
    });
    module.def("clean",
               [](const SharedSession& session, bool core, bool extended, bool custom, bool thumbnails) {
                   session->use([&] { clean(session->edit(), {core, extended, custom, thumbnails}); });
               });
    module.def("apply_job", [](const SharedSession& session, const std::string& job,
                               const std::filesystem::path& folder, bool mayBeLeft, bool refusesErrors) {
        session->use([&] { session->apply(readJob(job), {folder, mayBeLeft}, refusesErrors); });
    });
    module.def("list_changes", &listChanges);
    module.def("list_broken_signatures", [](const SharedSession& session) {
        return session->use([&] {
            return session->editor() == nullptr ? std::vector<std::string>()
                                                : session->editor()->brokenSignatures();
        });
    });
    module.def("mend", &mendPackage);
}

} // namespace opcpython
