#include <opc/inspection/Archive.hpp>

namespace opc::inspection {

class Archive::Impl {
public:
    std::vector<unsigned char> bytes;
    std::vector<ArchiveItem> items;
    std::vector<ArchiveGap> gaps;
};

Archive::Archive(const std::filesystem::path&, const physical::ZipOptions&) : impl(new Impl) {
}
Archive::Archive(std::vector<unsigned char> bytes, const physical::ZipOptions&) : impl(new Impl) {
    impl->bytes = std::move(bytes);
}
Archive::Archive(Archive&&) noexcept = default;
Archive& Archive::operator=(Archive&&) noexcept = default;
Archive::~Archive() = default;

std::uint64_t Archive::size() const {
    return impl->bytes.size();
}
std::size_t Archive::read(std::uint64_t, unsigned char*, std::size_t) const {
    return 0;
}
const std::vector<ArchiveItem>& Archive::items() const {
    return impl->items;
}
const std::vector<ArchiveGap>& Archive::gaps() const {
    return impl->gaps;
}
bool Archive::isZip() const {
    return false;
}
std::string Archive::comment() const {
    return {};
}
std::unique_ptr<InputStream> Archive::open(const ArchiveItem&) const {
    return nullptr;
}

} // namespace opc::inspection
