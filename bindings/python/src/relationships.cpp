#include "Bindings.hpp"
#include "PartHandle.hpp"
#include "Values.hpp"

#include <opc/model/Relationship.hpp>

#include <pybind11/stl.h>

#include <optional>
#include <tuple>
#include <utility>

namespace opcpython {

using opc::model::PartName;
using opc::model::Relationship;
using opc::model::RelationshipSource;
using opc::model::TargetMode;

namespace {

/// Source, ID, type, target, whether it is external, and the URI to which an internal one leads, as a whole and without
/// what follows the name of the part.
using Row = std::tuple<std::string, std::string, std::string, std::string, bool, std::optional<std::string>,
                       std::optional<std::string>>;

using Resolved = std::pair<std::optional<std::string>, std::optional<std::string>>;

Resolved resolve(const Relationship& relationship) {
    if (relationship.getTargetMode() == TargetMode::External)
        return {};
    try {
        const opc::model::URI target = relationship.getTargetURI();
        if (target.hasScheme() || target.hasAuthority()) // such as C:/a.xml
            return {toText(target.toString()), std::nullopt};
        return {toText(target.toString()), toText(target.getPath())};
    } catch (const opc::Exception&) { // it leads to nothing that has a name
        return {};
    }
}

Row rowOf(const Relationship& relationship) {
    auto [uri, part] = resolve(relationship);
    return {toText(relationship.getSourceURI().toString()),
            toText(relationship.getID()),
            toText(relationship.getType()),
            toText(relationship.getTarget()),
            relationship.getTargetMode() == TargetMode::External,
            std::move(uri),
            std::move(part)};
}

std::vector<Row> rowsOf(const opc::model::Enumerator<std::vector<Relationship>>& relationships) {
    std::vector<Row> rows;
    rows.reserve(relationships.size());
    for (const Relationship& relationship : relationships)
        rows.push_back(rowOf(relationship));
    return rows;
}

/// The relationships of a package or of a part.
class Source {
public:
    explicit Source(std::shared_ptr<Session> session) : session(std::move(session)) {}
    explicit Source(const PartHandle& part) : session(part.session()), part(part) {}

    template <typename Action>
    auto use(Action action) {
        return session->use([&] { return action(get()); });
    }

    /// For changes, with the editor and the name.
    template <typename Action>
    auto change(Action action) {
        return session->use([&] {
            get();
            return action(session->edit(), part ? part->name() : PartName(u"/"));
        });
    }

private:
    RelationshipSource& get() {
        if (part)
            return part->get();
        return session->package();
    }

    std::shared_ptr<Session> session;
    std::optional<PartHandle> part;
};

std::string add(Source& source, const std::string& type, const std::string& target, bool external,
                const std::string& id) {
    return source.change([&](opc::editing::Editor& editor, const PartName& name) {
        const TargetMode mode = external ? TargetMode::External : TargetMode::Internal;
        return toText(
            editor.addRelationship(name, {fromText(type), fromText(target), mode, fromText(id)}).getID());
    });
}

void retarget(Source& source, const std::string& id, const std::string& target, bool external) {
    source.change([&](opc::editing::Editor& editor, const PartName& name) {
        editor.retarget(name, fromText(id), fromText(target),
                        external ? TargetMode::External : TargetMode::Internal);
    });
}

} // namespace

void bindRelationships(py::module_& module) {
    py::class_<Source>(module, "RelationshipSource")
        .def(py::init<std::shared_ptr<Session>>())
        .def(py::init<const PartHandle&>())
        .def("all",
             [](Source& source) {
                 return source.use([](RelationshipSource& from) { return rowsOf(from.getRelationships()); });
             })
        .def("by_type",
             [](Source& source, const std::string& type) {
                 return source.use([&](RelationshipSource& from) {
                     return rowsOf(from.getRelationshipsByType(fromText(type)));
                 });
             })
        .def("get",
             [](Source& source, const std::string& id) {
                 return source.use(
                     [&](RelationshipSource& from) { return rowOf(from.getRelationshipByID(fromText(id))); });
             })
        .def("has",
             [](Source& source, const std::string& id) {
                 return source.use(
                     [&](RelationshipSource& from) { return from.hasRelationship(fromText(id)); });
             })
        .def("count",
             [](Source& source) {
                 return source.use([](RelationshipSource& from) { return from.getRelationships().size(); });
             })
        .def("add", &add)
        .def("remove",
             [](Source& source, const std::string& id) {
                 source.change([&](opc::editing::Editor& editor, const PartName& name) {
                     editor.deleteRelationship(name, fromText(id));
                 });
             })
        .def("retarget", &retarget);
}

} // namespace opcpython
