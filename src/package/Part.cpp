#include <opc/model/Part.hpp>

#include "package/RelationshipSourceImpl.hpp"

#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/IPhysicalPartSize.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PhysicalInputStream.hpp>
#include <opc/model/PhysicalOutputStream.hpp>

namespace opc::model {

namespace {

void throwIfGone(const interfaces::IPhysicalPart* physicalPart) {
    if (physicalPart == nullptr)
        throw Exception("The part's content has been deleted");
}

} // namespace

struct Part::Impl : RelationshipSource::Impl {
    Impl(Package* owner, interfaces::IPhysicalPart* content, const PartName& partName,
         const ContentType& type, interfaces::OpenMode mode)
        : RelationshipSource::Impl(partName.getURI()), package(owner), physicalPart(content), name(partName),
          contentType(type), openMode(mode) {}

    Package* package;
    interfaces::IPhysicalPart* physicalPart; // null once its deletion has succeeded
    PartName name;
    ContentType contentType;
    interfaces::OpenMode openMode;
    std::unique_ptr<PhysicalInputStream> inputStream;
    std::unique_ptr<PhysicalOutputStream> outputStream;
    bool valid = true;

    /// What `ask` gets from the content.
    template <typename Ask>
    auto askContent(Ask ask) const {
        try {
            throwIfGone(physicalPart);
            return ask(*physicalPart);
        } catch (const Exception& e) {
            throw translated<InvalidPartStream>(e, e.what());
        }
    }

    /// The adapter in its place, which is made when it is asked for first.
    template <typename Adapter, typename GetStream>
    Adapter& connect(std::unique_ptr<Adapter>& adapter, GetStream getStream) const {
        return *askContent([&](interfaces::IPhysicalPart& content) {
            if (!adapter)
                adapter = std::make_unique<Adapter>(getStream(content));
            return adapter.get();
        });
    }
};

Part::Part(Package* package, interfaces::IPhysicalPart* physicalPart, const PartName& name,
           const ContentType& contentType, interfaces::OpenMode openMode)
    : RelationshipSource(std::make_shared<Impl>(package, physicalPart, name, contentType, openMode)) {
}

Part::Part(const Part&) = default;
Part& Part::operator=(const Part&) = default;
Part::~Part() = default;

Part::Impl& Part::state() const noexcept {
    return static_cast<Impl&>(getState());
}

PartName Part::getName() const {
    return state().name;
}

ContentType Part::getContentType() const {
    return state().contentType;
}

InputStream& Part::getInputStream() const {
    throwIfInvalid();
    throwIfNotOpen();
    return state().connect(state().inputStream, [](auto& content) { return content.getInputStream(); });
}

OutputStream& Part::getOutputStream() const {
    throwIfInvalid();
    throwIfNotOpen();
    throwIfReadOnly();
    return state().connect(state().outputStream, [](auto& content) { return content.getOutputStream(); });
}

std::optional<std::uint64_t> Part::getSize() const {
    throwIfInvalid();
    throwIfNotOpen();
    return state().askContent([](const interfaces::IPhysicalPart& content) {
        const auto* sized = dynamic_cast<const interfaces::IPhysicalPartSize*>(&content);
        return sized ? std::optional(sized->getSize()) : std::nullopt;
    });
}

bool Part::isValid() const {
    return state().valid;
}

// A part of a closed package is invalid, and that is what its handles answer with.
bool Part::isOpen() const {
    return true;
}

bool Part::isReadOnly() const {
    return state().openMode == interfaces::OpenMode::ReadOnly;
}

bool Part::isCreateOnly() const {
    return state().openMode == interfaces::OpenMode::CreateOnly;
}

Package& Part::getPackage() const {
    return *state().package;
}

void Part::flush() {
    throwIfInvalid();
    throwIfNotOpen();
    RelationshipSource::flush();
}

interfaces::IPhysicalPart* Part::getPhysicalPart() const {
    return state().physicalPart;
}

void Part::setPhysicalPart(interfaces::IPhysicalPart* physicalPart) {
    state().physicalPart = physicalPart;
}

// The adapters stay, since the caller may hold references to them.
void Part::forgetPhysicalPart() {
    if (state().inputStream)
        state().inputStream->disconnect();
    if (state().outputStream)
        state().outputStream->disconnect();
    state().physicalPart = nullptr;
}

void Part::markAsInvalid() {
    state().valid = false;
}

} // namespace opc::model
