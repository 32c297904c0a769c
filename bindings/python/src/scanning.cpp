#include "Bindings.hpp"
#include "Collected.hpp"
#include "Lock.hpp"
#include "Session.hpp"
#include "Values.hpp"

#include <opc/model/CorePropertyField.hpp>
#include <opc/scanning/FolderWalk.hpp>
#include <opc/scanning/ResultJSON.hpp>
#include <opc/scanning/Scanner.hpp>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <datetime.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace opcpython {

namespace {

using opc::scanning::Result;
using opc::scanning::Scanner;
using opc::scanning::ScanOptions;
using opc::scanning::Source;

/// The bytes of a path that is a `str`; null for everything else. Nearly all sources are one.
py::object encodePath(const py::handle& item) {
    if (PyUnicode_CheckExact(item.ptr()) == 0)
        return {};
    PyObject* const path = PyUnicode_EncodeFSDefault(item.ptr());
    if (path == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::object>(path);
}

bool hasNull(const std::string& path) {
    return path.find('\0') != std::string::npos;
}

/// @param item  what `scan` takes: a path, or a pair of a name and the bytes of the package
Source toSource(const py::object& item) {
    if (const py::object path = encodePath(item))
        if (std::string text{py::reinterpret_borrow<py::bytes>(path)}; !hasNull(text))
            return opc::scanning::fileSource(std::move(text));
    const py::object source = py::module_::import("opcmodel._scanning").attr("_source")(item);
    if (py::isinstance<py::bytes>(source))
        return opc::scanning::fileSource(std::string(py::reinterpret_borrow<py::bytes>(source)));
    const auto pair = py::reinterpret_borrow<py::tuple>(source);
    const std::string bytes = py::cast<py::bytes>(pair[1]);
    return {py::cast<py::bytes>(pair[0]),
            {},
            std::make_shared<const std::vector<unsigned char>>(bytes.begin(), bytes.end())};
}

/// The results of a scan over what an iterator gives.
class Scan {
public:
    Scan(py::iterator sources, ScanOptions options)
        : sources(std::move(sources)),
          scanner(std::make_unique<Scanner>([this] { return takeNext(); }, std::move(options))) {
        all.insert(this);
    }
    Scan(const Scan&) = delete;
    Scan& operator=(const Scan&) = delete;
    ~Scan() {
        all.erase(this);
        close();
    }

    /// @throws py::stop_iteration  there are no more, or it was closed
    std::unique_ptr<Result> next() {
        if (!isHere())
            throw py::value_error("the scan runs in the process that this one was forked from");
        if (isRunning)
            throw py::value_error("the scan is running already, in another call");
        if (!scanner)
            throw py::stop_iteration();
        std::optional<Result> result = takeResult();
        if (result)
            return std::make_unique<Result>(std::move(*result));
        if (raised)
            throw py::error_already_set(*std::exchange(raised, std::nullopt));
        throw py::stop_iteration();
    }

    /// Waits for the files that are being read, and drops their results.
    void close() {
        if (!isHere()) {
            static_cast<void>(scanner.release()); // its threads, for which it would wait, aren't here
            return;
        }
        if (isRunning)
            throw py::value_error("the scan is running, in another call");
        std::unique_ptr<Scanner> ended = std::move(scanner);
        const LockReleased released;
        ended.reset();
    }

    /// For the garbage collector: what gives the sources can hold the scan.
    /// @{
    int visit(visitproc visit, void* arg) const {
        if (!isRunning)
            Py_VISIT(sources.ptr());
        return 0;
    }
    void finish() { close(); }
    void forget() { sources = py::iterator(); }
    /// @}

    /// For the end of the process, when no thread has the lock any more.
    static void stopAll() noexcept {
        for (Scan* const scan : all)
            if (scan->scanner && scan->isHere())
                scan->scanner->stop();
    }

private:
    bool isHere() const { return process == ::getpid(); }

    std::optional<Result> takeResult() {
        if (scanner->isReady())
            return scanner->next();
        struct Running {
            bool& flag;
            explicit Running(bool& flag) : flag(flag) { flag = true; }
            ~Running() { flag = false; }
        };
        const Running running(isRunning);
        const LockReleased released;
        return scanner->next();
    }

    /// Is called within `next`. What the iterator raises, is raised when the results before have been given.
    std::optional<Source> takeNext() {
        const LockTaken taken;
        try {
            PyObject* const item = PyIter_Next(sources.ptr());
            if (item == nullptr && PyErr_Occurred() != nullptr)
                throw py::error_already_set();
            if (item == nullptr)
                return std::nullopt;
            return toSource(py::reinterpret_steal<py::object>(item));
        } catch (py::error_already_set& e) {
            raised.emplace(std::move(e));
            return std::nullopt;
        }
    }

    static inline std::unordered_set<Scan*> all;

    const pid_t process = ::getpid();
    py::iterator sources;
    std::optional<py::error_already_set> raised;
    bool isRunning = false;
    std::unique_ptr<Scanner> scanner;
};

py::object nameOf(const Result& result) {
    return py::reinterpret_steal<py::object>(
        PyUnicode_DecodeFSDefaultAndSize(result.name.data(), static_cast<Py_ssize_t>(result.name.size())));
}

/// A row of a class that is a named tuple. It is made as `tuple` itself makes it, since there are very many.
/// @param values  new references
template <std::size_t COUNT>
py::object makeRow(const py::type& type, const std::array<PyObject*, COUNT>& values) {
    auto* const python = reinterpret_cast<PyTypeObject*>(type.ptr());
    PyObject* const row = python->tp_alloc(python, static_cast<Py_ssize_t>(COUNT));
    const bool isWhole = row != nullptr && std::find(values.begin(), values.end(), nullptr) == values.end();
    for (std::size_t i = 0; i < COUNT; ++i)
        if (isWhole)
            PyTuple_SET_ITEM(row, static_cast<Py_ssize_t>(i), values[i]);
        else
            Py_XDECREF(values[i]);
    if (!isWhole) {
        Py_XDECREF(row);
        throw py::error_already_set();
    }
    return py::reinterpret_steal<py::object>(row);
}

PyObject* newText(std::string_view text) {
    return PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace");
}

PyObject* newNumber(std::uint64_t number) {
    return PyLong_FromUnsignedLongLong(number);
}

void requireTuple(const py::type& rowType) {
    if (PyType_IsSubtype(reinterpret_cast<PyTypeObject*>(rowType.ptr()), &PyTuple_Type) == 0)
        throw py::type_error("the rows need a class of tuples");
}

py::object partsOf(const Result& result, const py::type& rowType) {
    requireTuple(rowType);
    if (!result.parts)
        return py::none();
    py::tuple rows(result.parts->size());
    std::size_t at = 0;
    for (const opc::scanning::ScannedPart& part : *result.parts)
        rows[at++] = makeRow<4>(rowType, {newText(part.name), newText(part.contentType), newNumber(part.size),
                                          newNumber(part.relationships)});
    return rows;
}

py::object relationshipsOf(const Result& result, const py::type& rowType) {
    requireTuple(rowType);
    if (!result.relationships)
        return py::none();
    py::tuple rows(result.relationships->size());
    std::size_t at = 0;
    std::string_view sourceText;
    py::object source;
    for (const opc::scanning::ScannedRelationship& one : *result.relationships) {
        if (at == 0 || one.source != sourceText) {
            source = toPython(one.source);
            sourceText = one.source;
        }
        rows[at++] = makeRow<6>(
            rowType, {source.inc_ref().ptr(), newText(one.id), newText(one.type), newText(one.target),
                      PyBool_FromLong(one.isExternal ? 1 : 0),
                      one.isExternal ? py::none().release().ptr() : PyBool_FromLong(one.exists ? 1 : 0)});
    }
    return rows;
}

py::object toValue(const std::u16string& text) {
    return toPython(toText(text));
}

/// An aware `datetime`.
py::object toValue(const boost::posix_time::ptime& time) {
    const boost::gregorian::date date = time.date();
    const boost::posix_time::time_duration clock = time.time_of_day();
    return py::reinterpret_steal<py::object>(PyDateTimeAPI->DateTime_FromDateAndTime(
        date.year(), date.month(), date.day(), static_cast<int>(clock.hours()),
        static_cast<int>(clock.minutes()), static_cast<int>(clock.seconds()),
        static_cast<int>(clock.total_microseconds() % 1000000), PyDateTime_TimeZone_UTC,
        PyDateTimeAPI->DateTimeType));
}

py::object toValue(const opc::model::CoreProperties::KeywordList& keywords) {
    py::tuple list(keywords.size());
    for (std::size_t i = 0; i < keywords.size(); ++i)
        list[i] = py::make_tuple(toValue(keywords[i].first), toValue(keywords[i].second));
    return list;
}

py::object propertiesOf(const Result& result) {
    if (!result.properties)
        return py::none();
    py::dict values;
    for (const opc::model::CorePropertyField& field : opc::model::CorePropertyField::all())
        field.visit(*result.properties, [&](const auto& value) {
            if (value)
                values[toPython(field.name())] = toValue(*value);
        });
    return values;
}

py::object failureOf(const Result& result) {
    if (!result.failure)
        return py::none();
    const opc::scanning::Failure& failure = *result.failure;
    return py::module_::import("opcmodel._errors")
        .attr("make")(failure.className, toPython(failure.message), failure.code, py::none(),
                      orNone(failure.part), orNone(failure.relationship));
}

ScanOptions makeOptions(unsigned what, unsigned jobs, std::size_t window, unsigned profiles,
                        const OpenOptions& reading) {
    ScanOptions options;
    options.what = what;
    options.jobs = jobs;
    options.window = window;
    options.strict = reading.strict;
    options.limits = reading.zip;
    options.inspection.profiles = profiles;
    return options;
}

} // namespace

void stopScans() noexcept {
    Scan::stopAll();
}

void bindScanning(py::module_& module) {
    PyDateTime_IMPORT;
    py::class_<Result>(module, "ScannedFile")
        .def_property_readonly("name", nameOf)
        .def_property_readonly("error", failureOf)
        .def("parts", partsOf)
        .def("relationships", relationshipsOf)
        .def_property_readonly("properties", propertiesOf)
        .def("to_json", [](const Result& result, unsigned aspects) {
            std::string text;
            {
                const LockReleased released;
                text = opc::scanning::toJSON(result, aspects);
            }
            return toPython(text);
        });
    py::class_<Scan>(module, "Scan", collected<Scan>())
        .def(py::init([](py::iterator sources, unsigned what, unsigned jobs, std::size_t window,
                         unsigned profiles, const OpenOptions& reading) {
            return std::make_unique<Scan>(std::move(sources),
                                          makeOptions(what, jobs, window, profiles, reading));
        }))
        .def("next", &Scan::next)
        .def("close", &Scan::close);
    module.def("known_extensions", [] {
        py::set names;
        for (const std::string& name : opc::scanning::knownExtensions())
            names.add(name);
        return names;
    });
    module.def("resolve_target", [](const std::string& source, const std::string& target) {
        return toPython(opc::scanning::resolveTarget(source, target));
    });
}

} // namespace opcpython
