#include "subject/ItemsStream.hpp"

#include <cstddef>

namespace opc::inspection {

namespace {

class ItemsStream final : public InputStream {
public:
    ItemsStream(const Archive& archive, std::vector<const ArchiveItem*> all)
        : archive(archive), items(std::move(all)) {
        openItem(0);
    }

    void open() override { openItem(0); }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const std::uint64_t got = current->read(buffer, count);
        passEnds();
        return got;
    }
    bool isDone() const override { return current->isDone(); }
    void close() override { current->close(); }

private:
    void openItem(std::size_t index) {
        place = index;
        current = archive.open(*items[place]);
        current->open();
        passEnds();
    }

    void passEnds() {
        while (current->isDone() && place + 1 < items.size()) {
            current = archive.open(*items[++place]);
            current->open();
        }
    }

    const Archive& archive;
    const std::vector<const ArchiveItem*> items;
    std::size_t place = 0;
    std::unique_ptr<InputStream> current;
};

} // namespace

std::unique_ptr<InputStream> openItems(const Archive& archive, const std::vector<const ArchiveItem*>& items) {
    if (items.size() > 1)
        return std::make_unique<ItemsStream>(archive, items);
    std::unique_ptr<InputStream> stream = archive.open(*items.front());
    stream->open();
    return stream;
}

} // namespace opc::inspection
