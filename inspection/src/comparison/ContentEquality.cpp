#include "comparison/ContentEquality.hpp"

#include "subject/ItemsStream.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <cstring>
#include <numeric>

namespace opc::inspection {

namespace {

/// What the archive states of its content.
const ItemHeader& headerOf(const ArchiveItem& item) {
    return item.central ? *item.central : *item.local;
}

/// Flags that say nothing of how a content is read: how well it is compressed, a descriptor, a name in UTF-8.
constexpr unsigned HARMLESS_FLAGS = 0x080E;

bool haveSameShape(const ArchiveItem& left, const ArchiveItem& right) {
    const ItemHeader& one = headerOf(left);
    const ItemHeader& other = headerOf(right);
    return left.central && right.central && left.dataOffset && right.dataOffset &&
           left.unreadable == right.unreadable && one.method == other.method && one.size == other.size &&
           one.compressedSize == other.compressedSize && one.checksum == other.checksum &&
           ((one.flags ^ other.flags) & ~HARMLESS_FLAGS) == 0;
}

} // namespace

/// Gives a content in pieces of one size.
class ContentEquality::Reader {
public:
    Reader(const PlacedContent& content, unsigned char* buffer) : buffer(buffer) {
        attempt([&] { stream = openItems(content.archive, content.items); });
    }

    /// @return its size, less than `SIZE` only at the end
    std::size_t next() {
        std::size_t filled = 0;
        attempt([&] {
            while (stream && filled < SIZE && !stream->isDone())
                filled += static_cast<std::size_t>(stream->read(buffer + filled, SIZE - filled));
        });
        return filled;
    }

    std::string failure;

private:
    template <typename Action>
    void attempt(const Action& action) {
        try {
            action();
        } catch (const Exception& e) {
            failure = withoutPlace(e.what());
        }
    }

    unsigned char* const buffer;
    std::unique_ptr<InputStream> stream;
};

ContentEquality::ContentEquality() : leftBytes(new unsigned char[SIZE]), rightBytes(new unsigned char[SIZE]) {
}

bool ContentEquality::areSame(const PlacedContent& left, const PlacedContent& right) {
    failure.clear();
    return haveSameCompressedBytes(left, right) ||
           (sizeOf(left.items) == sizeOf(right.items) && expandSame(left, right));
}

bool ContentEquality::haveSameCompressedBytes(const PlacedContent& left, const PlacedContent& right) {
    const ArchiveItem& one = *left.items.front();
    const ArchiveItem& other = *right.items.front();
    if (left.items.size() != 1 || right.items.size() != 1 || !haveSameShape(one, other))
        return false;
    const std::uint64_t size = one.central->compressedSize;
    for (std::uint64_t done = 0; done < size;) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(SIZE, size - done));
        if (left.archive.read(*one.dataOffset + done, leftBytes.get(), wanted) != wanted ||
            right.archive.read(*other.dataOffset + done, rightBytes.get(), wanted) != wanted ||
            std::memcmp(leftBytes.get(), rightBytes.get(), wanted) != 0)
            return false;
        done += wanted;
    }
    return true;
}

bool ContentEquality::expandSame(const PlacedContent& left, const PlacedContent& right) {
    Reader one(left, leftBytes.get());
    Reader other(right, rightBytes.get());
    for (;;) {
        const std::size_t size = one.next();
        const std::size_t otherSize = other.next();
        failure = one.failure.empty() ? other.failure : one.failure;
        if (!failure.empty() || size != otherSize ||
            std::memcmp(leftBytes.get(), rightBytes.get(), size) != 0)
            return false;
        if (size < SIZE)
            return true;
    }
}

std::uint64_t sizeOf(const std::vector<const ArchiveItem*>& items) {
    return std::accumulate(
        items.begin(), items.end(), std::uint64_t{0},
        [](std::uint64_t sum, const ArchiveItem* item) { return sum + headerOf(*item).size; });
}

std::string withoutPlace(const std::string& message) {
    const std::size_t place = message.rfind(": ");
    return message.substr(place == std::string::npos ? 0 : place + 2);
}

} // namespace opc::inspection
