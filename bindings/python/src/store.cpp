#include "Bindings.hpp"
#include "PythonStore.hpp"
#include "Session.hpp"
#include "Values.hpp"

#include <opc/core/Exception.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalPartSize.hpp>

#include <cerrno>
#include <functional>
#include <optional>
#include <utility>

namespace opcpython {

using opc::interfaces::IPhysicalInputStream;
using opc::interfaces::IPhysicalOutputStream;
using opc::interfaces::IPhysicalPart;
using opc::interfaces::OpenMode;

namespace {

[[noreturn]] void refuseChange() {
    throw opc::Exception("A store in Python is only read", {EROFS, boost::system::generic_category()});
}

} // namespace

/// A content, which the store opens anew each time that it is read from its start.
class PythonStore::Input : public IPhysicalInputStream {
public:
    using Open = std::function<py::object()>;

    explicit Input(Open openObject) : openObject(std::move(openObject)) {}
    ~Input() override {
        const LockTaken taken; // what opens may hold objects of Python
        input.reset();
        file.reset();
    }

    void open() override {
        file = callPython([this] { return std::make_unique<PythonObject>(openObject()); });
        input = callPython([this] { return std::make_unique<FileObjectInput>(file->get()); });
    }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        return opened().read(buffer, count);
    }
    bool isDone() const override { return const_cast<Input*>(this)->opened().isDone(); }
    void close() override {
        if (file)
            callPython([this] {
                if (py::hasattr(file->get(), "close"))
                    file->get().attr("close")();
            });
        input.reset();
        file.reset();
    }

private:
    FileObjectInput& opened() {
        if (!input)
            open();
        return *input;
    }

    const Open openObject;
    std::unique_ptr<PythonObject> file;
    std::unique_ptr<FileObjectInput> input;
};

class PythonStore::Part : public IPhysicalPart {
public:
    Part(std::shared_ptr<PythonObject> store, const std::string& name, std::string contentType)
        : name(fromText(name)), contentType(std::move(contentType)),
          input([store = std::move(store), name] { return store->get().attr("open")(name); }) {}

    std::u16string getName() const override { return name; }
    std::u16string getContentType() const override { return fromText(contentType); }
    IPhysicalInputStream* getInputStream() override { return &input; }
    IPhysicalOutputStream* getOutputStream() override { refuseChange(); }

private:
    const std::u16string name;
    const std::string contentType;
    Input input;
};

class PythonStore::SizedPart : public Part, public opc::interfaces::IPhysicalPartSize {
public:
    SizedPart(std::shared_ptr<PythonObject> store, const std::string& name, std::string contentType,
              std::uint64_t size)
        : Part(std::move(store), name, std::move(contentType)), size(size) {}

    std::uint64_t getSize() const override { return size; }

private:
    const std::uint64_t size;
};

PythonStore::PythonStore(py::object store) : store(std::make_shared<PythonObject>(std::move(store))) {
}

PythonStore::~PythonStore() = default;

IPhysicalInputStream* PythonStore::getContentTypeInputStream() {
    contentTypes = std::make_unique<Input>([store = store] {
        return py::module_::import("io").attr("BytesIO")(store->get().attr("content_types")());
    });
    return contentTypes.get();
}

IPhysicalOutputStream* PythonStore::getContentTypeOutputStream() {
    refuseChange();
}

std::vector<IPhysicalPart*> PythonStore::getParts() {
    std::vector<IPhysicalPart*> all;
    all.reserve(parts.size());
    for (const auto& part : parts)
        all.push_back(part.get());
    return all;
}

void PythonStore::open(const OpenMode& mode) {
    if (mode != OpenMode::ReadOnly)
        refuseChange();
    parts.clear();
    isOpen = true;
    callPython([this] {
        const py::object& object = store->get();
        hasContentTypes = !object.attr("content_types")().is_none();
        for (const py::handle item : object.attr("names")()) {
            const auto name = item.cast<std::string>();
            const std::string type =
                hasContentTypes ? std::string() : object.attr("content_type")(name).cast<std::string>();
            const py::object size = object.attr("size")(name);
            if (size.is_none())
                parts.push_back(std::make_unique<Part>(store, name, type));
            else
                parts.push_back(std::make_unique<SizedPart>(store, name, type, size.cast<std::uint64_t>()));
        }
    });
}

void PythonStore::close(bool /*abandon*/) {
    parts.clear();
    contentTypes.reset();
    if (std::exchange(isOpen, false)) // once, also if it fails
        callPython([this] { store->get().attr("close")(); });
}

IPhysicalPart* PythonStore::createPart(const std::u16string& /*name*/, const std::u16string& /*contentType*/,
                                       const opc::interfaces::IPhysicalPartInfo& /*info*/) {
    refuseChange();
}

void PythonStore::deletePart(const std::u16string& /*name*/) {
    refuseChange();
}

void bindStore(py::module_& module) {
    module.def("open_store", [](py::object store, const OpenOptions& options) {
        auto made = std::make_unique<PythonStore>(std::move(store));
        return withoutLock(
            [&] { return std::make_shared<Session>(std::move(made), OpenMode::ReadOnly, options); });
    });
}

} // namespace opcpython
