#include <opc/physical/ZipPackage.hpp>

#include "ArchiveStore.hpp"
#include "Failure.hpp"
#include "SourceStore.hpp"
#include "StreamStore.hpp"
#include "ZipSession.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPartInfo.hpp>

#include <cerrno>
#include <ostream>

namespace opc::physical {

class ZipPackage::Impl {
public:
    Impl(std::unique_ptr<zip::ArchiveStore> store, ZipOptions options)
        : store(std::move(store)), options(std::move(options)) {}

    zip::ZipSession& opened() {
        if (!session)
            zip::fail(store->place(), "not open", EBADF);
        return *session;
    }

    /// @param use  gets the offset of each block of the archive, its bytes and its size
    template <typename Use>
    void forEachBlock(Use use) const {
        const std::shared_ptr<zip::ByteSource> archive = store->read();
        std::vector<unsigned char> block(std::size_t{64} * 1024);
        for (std::uint64_t offset = 0; offset < archive->size();) {
            std::size_t got = 0;
            if (const int error = archive->readAt(offset, block.data(), block.size(), got))
                zip::failSystem(store->place(), "can't read", error);
            if (got == 0)
                zip::fail(store->place(), "can't read: cut off", EIO);
            use(offset, block.data(), got);
            offset += got;
        }
    }

    std::unique_ptr<zip::ArchiveStore> store;
    const ZipOptions options;
    std::unique_ptr<zip::ZipSession> session;
};

ZipPackage::ZipPackage(std::filesystem::path path, ZipOptions options)
    : impl(std::make_unique<Impl>(std::make_unique<zip::FileStore>(std::move(path), options.beforeReplacing),
                                  std::move(options))) {
}

ZipPackage::ZipPackage(Bytes archive, ZipOptions options)
    : impl(std::make_unique<Impl>(std::make_unique<zip::MemoryStore>(std::move(archive)),
                                  std::move(options))) {
}

ZipPackage::ZipPackage(std::istream& archive, ZipOptions options)
    : impl(std::make_unique<Impl>(std::make_unique<zip::StreamStore>(archive, options), std::move(options))) {
}

ZipPackage::ZipPackage(RandomAccessSource& archive, ZipOptions options)
    : impl(std::make_unique<Impl>(std::make_unique<zip::SourceStore>(archive, options), std::move(options))) {
}

ZipPackage::~ZipPackage() = default;

bool ZipPackage::usesContentTypeStream() {
    return true;
}

interfaces::IPhysicalInputStream* ZipPackage::getContentTypeInputStream() {
    zip::ZipContent& stream = impl->opened().contentTypesStream();
    if (!stream.exists())
        zip::fail(zip::itemPlace(impl->store->place(), "[Content_Types].xml"),
                  "doesn't exist; the archive is no package", ENOENT);
    return stream.read();
}

interfaces::IPhysicalOutputStream* ZipPackage::getContentTypeOutputStream() {
    return impl->opened().contentTypesStream().write();
}

std::vector<interfaces::IPhysicalPart*> ZipPackage::getParts() {
    auto& all = impl->opened().allParts();
    std::vector<interfaces::IPhysicalPart*> parts;
    parts.reserve(all.size());
    for (zip::ZipPart& part : all)
        parts.push_back(&part);
    return parts;
}

void ZipPackage::open(const interfaces::OpenMode& mode) {
    if (impl->session)
        zip::fail(impl->store->place(), "already open", EBUSY);
    impl->session = std::make_unique<zip::ZipSession>(*impl->store, impl->options, mode);
}

void ZipPackage::close(bool abandon) {
    zip::ZipSession& session = impl->opened();
    if (!abandon)
        session.save();
    impl->session.reset();
}

interfaces::IPhysicalPart* ZipPackage::createPart(const std::u16string& name,
                                                  const std::u16string& /*contentType*/,
                                                  const interfaces::IPhysicalPartInfo& info) {
    return &impl->opened().create(name, info.getCompressionType());
}

void ZipPackage::deletePart(const std::u16string& name) {
    impl->opened().remove(name);
}

const std::vector<ZipPackage::IgnoredItem>& ZipPackage::ignoredItems() const {
    return impl->opened().ignoredItems();
}

std::vector<interfaces::IgnoredItem> ZipPackage::getIgnoredItems() {
    std::vector<interfaces::IgnoredItem> items;
    for (const IgnoredItem& item : ignoredItems())
        if (item.isItem && (item.name.empty() || (item.name.back() != '/' && item.name.back() != '\\')))
            items.push_back({toString(item.name, true), item.reason});
    return items;
}

std::vector<interfaces::MisnamedItem> ZipPackage::getMisnamedItems() {
    return impl->opened().misnamedItems();
}

std::vector<interfaces::Oddity> ZipPackage::getOddities() {
    return impl->opened().oddities();
}

const ZipPackage::Bytes& ZipPackage::bytes() const {
    const auto* memory = dynamic_cast<const zip::MemoryStore*>(impl->store.get());
    if (!memory)
        zip::fail(impl->store->place(), "not in memory", EINVAL);
    return memory->bytes();
}

void ZipPackage::writeTo(std::ostream& stream) const {
    impl->forEachBlock([&stream](std::uint64_t, const unsigned char* block, std::size_t size) {
        stream.write(reinterpret_cast<const char*>(block), static_cast<std::streamsize>(size));
    });
    if (!stream.flush())
        zip::fail(impl->store->place(), "can't write to the stream", EIO);
}

void ZipPackage::writeTo(const std::filesystem::path& path) const {
    zip::FileStore target(path, impl->options.beforeReplacing);
    target.checkWritable();
    target.replace({}, [&](zip::ByteTarget& file) {
        impl->forEachBlock([&](std::uint64_t offset, const unsigned char* block, std::size_t size) {
            if (const int error = file.writeAt(offset, block, size))
                zip::failSystem(target.place(), "can't write", error);
        });
    });
}

} // namespace opc::physical
