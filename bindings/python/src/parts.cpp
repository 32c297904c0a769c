#include "Bindings.hpp"
#include "PartHandle.hpp"
#include "Values.hpp"

#include <opc/editing/Removing.hpp>
#include <opc/model/Errors.hpp>

#include <pybind11/stl.h>

#include <algorithm>
#include <array>

namespace opcpython {

using opc::model::ContentType;
using opc::model::Part;
using opc::model::PartName;

namespace {

constexpr std::size_t READ_AT_ONCE = std::size_t{256} * 1024;

std::string contentOf(PartHandle& handle) {
    opc::InputStream& stream = handle.get().getInputStream();
    handle.session()->readings.erase(handle.name().toString());
    stream.close();
    stream.open();
    return readAll(stream);
}

void replaceContent(PartHandle& handle, const py::object& content) {
    const auto input = makeInput(content);
    Session& session = *handle.session();
    session.use([&] {
        handle.get();
        session.readings.erase(handle.name().toString());
        session.edit().replaceContent(handle.name(), *input);
    });
}

std::size_t readInto(PartReader& reader, const py::buffer& buffer) {
    const py::buffer_info info = buffer.request(true);
    const auto count = static_cast<std::size_t>(info.size * info.itemsize);
    return reader.session().use([&] { return reader.read(static_cast<unsigned char*>(info.ptr), count); });
}

PartHandle addPart(const std::shared_ptr<Session>& session, const std::string& name,
                   const std::string& contentType, const py::object& content) {
    const auto input = makeInput(content);
    return session->use([&] {
        const PartName partName(fromText(name));
        session->edit().createPart(partName, ContentType(fromText(contentType)), *input);
        return PartHandle(session, session->package().getPart(partName));
    });
}

void removePart(const std::shared_ptr<Session>& session, const std::string& name, bool incoming,
                bool cascade) {
    session->use([&] {
        session->package().getPart(wantedName(name)); // the name is no pattern
        opc::editing::removeParts(session->edit(), {name}, {incoming, cascade});
    });
}

void bindHandle(py::module_& module) {
    py::class_<PartHandle>(module, "PartHandle")
        .def_property_readonly("name",
                               [](const PartHandle& handle) { return toText(handle.name().toString()); })
        .def_property_readonly("content_type",
                               [](PartHandle& handle) {
                                   return handle.session()->use(
                                       [&] { return toText(handle.get().getContentType().toString()); });
                               })
        .def_property_readonly(
            "size",
            [](PartHandle& handle) { return handle.session()->use([&] { return handle.get().getSize(); }); })
        .def("read",
             [](PartHandle& handle) {
                 return py::bytes(handle.session()->use([&] { return contentOf(handle); }));
             })
        .def("write", &replaceContent)
        .def("reader", [](PartHandle& handle) {
            handle.session()->use([&] { handle.get(); });
            return PartReader(handle);
        });
}

} // namespace

PartHandle::PartHandle(std::shared_ptr<Session> session, Part part)
    : owner(std::move(session)), partName(part.getName()), part(std::move(part)),
      generation(owner->generation()) {
}

Part& PartHandle::get() {
    opc::model::Package& package = owner->package();
    if (generation != owner->generation() && package.isOpen()) {
        if (!package.hasPart(partName))
            throw opc::model::InvalidObject("Object is no longer valid");
        part = package.getPart(partName);
        generation = owner->generation();
    }
    part.hasRelationship(u"rId1"); // throws if the part was deleted
    return part;
}

std::size_t PartReader::read(unsigned char* buffer, std::size_t count) {
    opc::InputStream& stream = part.get().getInputStream();
    Session::Reading& reading = session().readings[part.name().toString()];
    if (reading.reader != this || reading.position > place) {
        stream.close();
        stream.open();
        reading = {this, 0};
    }
    std::array<unsigned char, 16384> skipped;
    while (reading.position < place && !stream.isDone())
        reading.position +=
            stream.read(skipped.data(), std::min<std::uint64_t>(skipped.size(), place - reading.position));
    if (reading.position < place || stream.isDone() || count == 0)
        return 0;
    const auto got = static_cast<std::size_t>(stream.read(buffer, count));
    reading.position += got;
    place += got;
    return got;
}

PartName wantedName(const std::string& name) {
    try {
        return PartName(fromText(name));
    } catch (const opc::Exception& e) {
        throw opc::translated<opc::model::PartNotFound>(e, e.what());
    }
}

std::string readAll(opc::InputStream& stream) {
    std::string all;
    std::size_t size = 0;
    while (!stream.isDone()) {
        all.resize(size + READ_AT_ONCE);
        size +=
            static_cast<std::size_t>(stream.read(reinterpret_cast<unsigned char*>(&all[size]), READ_AT_ONCE));
    }
    all.resize(size);
    return all;
}

std::vector<PartHandle> listParts(const std::shared_ptr<Session>& session) {
    std::vector<PartHandle> all;
    for (const Part& part : session->package().getParts())
        all.emplace_back(session, part);
    return all;
}

void bindParts(py::module_& module) {
    bindHandle(module);
    py::class_<PartReader>(module, "PartReader")
        .def("readinto", &readInto)
        .def("seek", &PartReader::seek)
        .def("tell", &PartReader::position)
        .def("size", [](PartReader& reader) { return reader.session().use([&] { return reader.size(); }); });
    module.def("add_part", &addPart);
    module.def("remove_part", &removePart);
    module.def("retype_part", [](const std::shared_ptr<Session>& session, const std::string& name,
                                 const std::string& contentType) {
        session->use(
            [&] { session->edit().retypePart(wantedName(name), ContentType(fromText(contentType))); });
    });
    module.def("has_part", [](const std::shared_ptr<Session>& session, const std::string& name) {
        return session->use([&] {
            session->requireOpen();
            try {
                return session->package().hasPart(PartName(fromText(name)));
            } catch (const opc::model::InvalidPartName&) {
            } catch (const opc::model::InvalidURI&) {
            }
            return false;
        });
    });
    module.def("get_part", [](const std::shared_ptr<Session>& session, const std::string& name) {
        return session->use([&] {
            session->requireOpen();
            return PartHandle(session, session->package().getPart(wantedName(name)));
        });
    });
    module.def("list_parts", [](const std::shared_ptr<Session>& session) {
        return session->use([&] { return listParts(session); });
    });
}

} // namespace opcpython
