#include <opc/model/Part.hpp>

#include <opc/interfaces/IPhysicalPart.hpp>
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

struct Part::Impl {
    Impl(Package* owner, interfaces::IPhysicalPart* content, const PartName& partName,
         const ContentType& type, interfaces::OpenMode mode)
        : package(owner), physicalPart(content), name(partName), contentType(type), openMode(mode) {}

    Package* package;
    interfaces::IPhysicalPart* physicalPart; // null once its deletion has succeeded
    PartName name;
    ContentType contentType;
    interfaces::OpenMode openMode;
    std::unique_ptr<InputStream> inputStream;
    std::unique_ptr<OutputStream> outputStream;
    bool valid = true;
};

Part::Part(Package* package, interfaces::IPhysicalPart* physicalPart, const PartName& name,
           const ContentType& contentType, interfaces::OpenMode openMode)
    : RelationshipSource(name.getURI()),
      impl(std::make_shared<Impl>(package, physicalPart, name, contentType, openMode)) {
}

Part::Part(const Part&) = default;
Part& Part::operator=(const Part&) = default;
Part::~Part() = default;

PartName Part::getName() const {
    return impl->name;
}

ContentType Part::getContentType() const {
    return impl->contentType;
}

InputStream& Part::getInputStream() const {
    throwIfInvalid();
    throwIfNotOpen();
    if (!impl->inputStream) {
        try {
            throwIfGone(impl->physicalPart);
            impl->inputStream = std::make_unique<PhysicalInputStream>(impl->physicalPart->getInputStream());
        } catch (const Exception& e) {
            throw InvalidPartStream(e.what());
        }
    }
    return *impl->inputStream;
}

OutputStream& Part::getOutputStream() const {
    throwIfInvalid();
    throwIfNotOpen();
    throwIfReadOnly();
    if (!impl->outputStream) {
        try {
            throwIfGone(impl->physicalPart);
            impl->outputStream =
                std::make_unique<PhysicalOutputStream>(impl->physicalPart->getOutputStream());
        } catch (const Exception& e) {
            throw InvalidPartStream(e.what());
        }
    }
    return *impl->outputStream;
}

bool Part::isValid() const {
    return impl->valid;
}

// A part of a closed package is invalid, and that is what its handles answer with.
bool Part::isOpen() const {
    return true;
}

bool Part::isReadOnly() const {
    return impl->openMode == interfaces::OpenMode::ReadOnly;
}

bool Part::isCreateOnly() const {
    return impl->openMode == interfaces::OpenMode::CreateOnly;
}

Package& Part::getPackage() const {
    return *impl->package;
}

void Part::flush() {
    throwIfInvalid();
    throwIfNotOpen();
    RelationshipSource::flush();
}

interfaces::IPhysicalPart* Part::getPhysicalPart() const {
    return impl->physicalPart;
}

void Part::setPhysicalPart(interfaces::IPhysicalPart* physicalPart) {
    impl->physicalPart = physicalPart;
}

void Part::forgetPhysicalPart() {
    impl->inputStream.reset();
    impl->outputStream.reset();
    impl->physicalPart = nullptr;
}

void Part::markAsInvalid() {
    impl->valid = false;
}

} // namespace opc::model
