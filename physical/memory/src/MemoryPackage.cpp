#include <opc/physical/MemoryPackage.hpp>

#include "MemoryPart.hpp"
#include "MemoryStore.hpp"

#include <opc/interfaces/OpenMode.hpp>

#include <cerrno>

namespace opc::physical {

using interfaces::OpenMode;
using namespace memory;

namespace {

const std::u16string CONTENT_TYPES_STREAM = u"[Content_Types].xml";

} // namespace

class MemoryPackage::Impl {
public:
    /// The content of an open package. The store doesn't change before `close(false)`.
    struct Session {
        Session(OpenMode mode, SharedBytes types)
            : mode(mode), contentTypes(std::move(types), mode == OpenMode::ReadOnly) {}

        bool readOnly() const { return mode == OpenMode::ReadOnly; }

        const OpenMode mode;
        MemoryContent contentTypes;
        NamedList<MemoryPart> parts;
    };

    explicit Impl(ContentTypes contentTypes) : contentTypes(contentTypes) {}

    Session& opened() {
        if (!session)
            raise("not open", EBADF);
        return *session;
    }

    Session& writable(const std::u16string& name) {
        if (opened().readOnly())
            raise("opened to read", name, EACCES);
        return *session;
    }

    MemoryStore& closed() {
        if (session)
            raise("open", EBUSY);
        return *store;
    }

    StoredPart& stored(const std::u16string& name) {
        StoredPart* part = closed().parts.find(name);
        if (!part)
            raise("no such part", name, ENOENT);
        return *part;
    }

    void load(const OpenMode& mode);
    void save();

    const ContentTypes contentTypes;
    std::unique_ptr<MemoryStore> store = std::make_unique<MemoryStore>();
    std::unique_ptr<Session> session;
};

void MemoryPackage::Impl::load(const OpenMode& mode) {
    closed();
    if (mode != OpenMode::CreateOnly && !store->exists)
        raise("doesn't exist", ENOENT);
    const bool fresh = mode == OpenMode::CreateOnly;
    auto next = std::make_unique<Session>(mode, fresh ? nullptr : store->contentTypes);
    if (!fresh) {
        for (const StoredPart& part : store->parts.all())
            next->parts.add(part.name, part.name, part.contentType, part.bytes, next->readOnly());
    }
    session = std::move(next);
}

void MemoryPackage::Impl::save() {
    auto next = std::make_unique<MemoryStore>();
    next->exists = true;
    next->contentTypes = session->contentTypes.get();
    for (const MemoryPart& part : session->parts.all())
        next->parts.add(part.name, part.name, part.contentType, part.content.get());
    store = std::move(next);
}

MemoryPackage::MemoryPackage(ContentTypes contentTypes) : impl(std::make_unique<Impl>(contentTypes)) {
}

MemoryPackage::~MemoryPackage() = default;

bool MemoryPackage::usesContentTypeStream() {
    return impl->contentTypes == ContentTypes::InStream;
}

interfaces::IPhysicalInputStream* MemoryPackage::getContentTypeInputStream() {
    MemoryContent& content = impl->opened().contentTypes;
    if (!content.get())
        raise("no content types stream", ENOENT);
    return content.read();
}

interfaces::IPhysicalOutputStream* MemoryPackage::getContentTypeOutputStream() {
    return impl->opened().contentTypes.write(CONTENT_TYPES_STREAM);
}

std::vector<interfaces::IPhysicalPart*> MemoryPackage::getParts() {
    std::vector<interfaces::IPhysicalPart*> parts;
    for (MemoryPart& part : impl->opened().parts.all())
        parts.push_back(&part);
    return parts;
}

void MemoryPackage::open(const OpenMode& mode) {
    impl->load(mode);
}

void MemoryPackage::close(bool abandon) {
    if (!impl->opened().readOnly() && !abandon)
        impl->save();
    impl->session.reset();
}

interfaces::IPhysicalPart* MemoryPackage::createPart(const std::u16string& name,
                                                     const std::u16string& contentType,
                                                     const interfaces::IPhysicalPartInfo& /*info*/) {
    Impl::Session& session = impl->writable(name);
    auto bytes = std::make_shared<Bytes>();
    MemoryPart* part = session.parts.find(name);
    if (!part)
        return session.parts.add(name, name, contentType, std::move(bytes), false);
    part->content.replace(std::move(bytes));
    part->contentType = contentType;
    return part;
}

void MemoryPackage::deletePart(const std::u16string& name) {
    if (!impl->writable(name).parts.remove(name))
        raise("no such part", name, ENOENT);
}

std::vector<std::u16string> MemoryPackage::partNames() const {
    std::vector<std::u16string> names;
    for (const StoredPart& part : impl->closed().parts.all())
        names.push_back(part.name);
    return names;
}

bool MemoryPackage::hasPart(const std::u16string& name) const {
    return impl->closed().parts.find(name) != nullptr;
}

MemoryPackage::Bytes MemoryPackage::partBytes(const std::u16string& name) const {
    return *impl->stored(name).bytes;
}

void MemoryPackage::setPart(const std::u16string& name, Bytes bytes, const std::u16string& contentType) {
    MemoryStore& store = impl->closed();
    auto content = std::make_shared<Bytes>(std::move(bytes));
    if (StoredPart* part = store.parts.find(name))
        *part = StoredPart(name, contentType, std::move(content));
    else
        store.parts.add(name, name, contentType, std::move(content));
    store.exists = true;
}

void MemoryPackage::removePart(const std::u16string& name) {
    if (!impl->closed().parts.remove(name))
        raise("no such part", name, ENOENT);
}

bool MemoryPackage::hasContentTypes() const {
    return impl->closed().contentTypes != nullptr;
}

MemoryPackage::Bytes MemoryPackage::contentTypes() const {
    if (!hasContentTypes())
        raise("no content types stream", ENOENT);
    return *impl->store->contentTypes;
}

void MemoryPackage::setContentTypes(Bytes bytes) {
    impl->closed().contentTypes = std::make_shared<Bytes>(std::move(bytes));
    impl->store->exists = true;
}

void MemoryPackage::removeContentTypes() {
    impl->closed().contentTypes = nullptr;
}

} // namespace opc::physical
