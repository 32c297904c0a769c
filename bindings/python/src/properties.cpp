#include "Bindings.hpp"
#include "Session.hpp"
#include "Values.hpp"

#include <opc/core/Time.hpp>
#include <opc/editing/CorePropertyChanges.hpp>
#include <opc/editing/Properties.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/CorePropertyField.hpp>
#include <opc/model/PackageHelper.hpp>

#include <boost/date_time/posix_time/posix_time.hpp>
#include <pybind11/stl.h>

#include <stdexcept>
#include <tuple>

namespace opcpython {

using opc::editing::Property;
using opc::editing::PropertyKind;
using opc::model::CoreProperties;
using opc::model::CorePropertyField;
using opc::model::PackageHelper;

namespace {

using SharedSession = std::shared_ptr<Session>;

const CorePropertyField& fieldOf(const std::string& name) {
    for (const CorePropertyField& field : CorePropertyField::all())
        if (field.name() == name)
            return field;
    throw py::key_error(name);
}

py::object toPython(const std::u16string& text) {
    return opcpython::toPython(toText(text));
}

/// A time in UTC, in the form of ISO 8601 without a zone.
py::object toPython(const boost::posix_time::ptime& time) {
    return opcpython::toPython(boost::posix_time::to_iso_extended_string(time));
}

py::object toPython(const CoreProperties::KeywordList& keywords) {
    py::list all;
    for (const auto& [text, language] : keywords)
        all.append(py::make_tuple(toPython(text), toPython(language)));
    return all;
}

void assign(CoreProperties::Text& member, const py::object& value) {
    member = fromText(value.cast<std::string>());
}

void assign(CoreProperties::Time& member, const py::object& value) {
    const auto text = value.cast<std::string>();
    const auto time = opc::convertStringToTime(fromText(text));
    if (time.is_not_a_date_time())
        throw py::value_error(text + " is no time that a package can hold");
    member = time;
}

void assign(CoreProperties::Keywords& member, const py::object& value) {
    CoreProperties::KeywordList keywords;
    for (const auto& [text, language] : value.cast<std::vector<std::pair<std::string, std::string>>>())
        keywords.emplace_back(fromText(text), fromText(language));
    member = keywords;
}

CoreProperties readAll(const SharedSession& session) {
    return session->use([&] { return PackageHelper::getCoreProperties(session->package()); });
}

py::dict listCoreProperties(const SharedSession& session) {
    const CoreProperties properties = readAll(session);
    py::dict values;
    for (const CorePropertyField& field : CorePropertyField::all())
        field.visit(properties, [&](const auto& value) {
            if (value)
                values[opcpython::toPython(field.name())] = toPython(*value);
        });
    return values;
}

/// @param changes  by name; `None` makes a property absent
void setCoreProperties(const SharedSession& session, const py::dict& changes, bool clear) {
    CoreProperties properties = clear ? CoreProperties() : readAll(session);
    for (const auto& [name, value] : changes)
        fieldOf(name.cast<std::string>()).visit(properties, [&given = value](auto& member) {
            if (given.is_none())
                member = boost::none;
            else
                assign(member, py::reinterpret_borrow<py::object>(given));
        });
    session->use([&] { opc::editing::setCoreProperties(session->edit(), properties); });
}

PropertyKind kindOf(bool isCustom) {
    return isCustom ? PropertyKind::Custom : PropertyKind::Extended;
}

/// Type and text, or type and a list of the same.
py::tuple toRow(const opc::editing::PropertyValue& value) {
    if (value.type != "vector" && value.type != "array")
        return py::make_tuple(opcpython::toPython(value.type), opcpython::toPython(value.text));
    py::list items;
    for (const auto& item : value.items)
        items.append(toRow(item));
    return py::make_tuple(opcpython::toPython(value.type), items);
}

py::list listProperties(const SharedSession& session, bool isCustom) {
    const auto found =
        session->use([&] { return opc::editing::readProperties(session->package(), kindOf(isCustom)); });
    py::list rows;
    for (const Property& property : found)
        rows.append(py::make_tuple(opcpython::toPython(property.name), toRow(property.value)));
    return rows;
}

/// @param set  name, type and text
void changeProperties(const SharedSession& session, bool isCustom, const std::vector<std::string>& unset,
                      const std::vector<std::tuple<std::string, std::string, std::string>>& set) {
    opc::editing::PropertyChanges changes;
    changes.unset = unset;
    for (const auto& [name, type, text] : set)
        changes.set.push_back({name, {type, text, {}}});
    session->use([&] { opc::editing::changeProperties(session->edit(), kindOf(isCustom), changes); });
}

} // namespace

void bindProperties(py::module_& module) {
    module.def("list_core_properties", &listCoreProperties);
    module.def("set_core_properties", &setCoreProperties);
    module.def("list_properties", &listProperties);
    module.def("change_properties", &changeProperties);
}

} // namespace opcpython
