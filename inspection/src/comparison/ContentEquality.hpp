#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Export.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace opc::inspection {

/// A content of one archive: one item, or the pieces of a part.
struct PlacedContent {
    const Archive& archive;
    const std::vector<const ArchiveItem*>& items;
};

/// Compares contents byte by byte, piece by piece. Where both lie in their archives with the same compressed bytes, nothing
/// is expanded. A checksum never counts as a content.
class ContentEquality {
public:
    ContentEquality();

    /// Whether both contents have the same bytes. Contents that can't be read are the same if their compressed bytes are.
    bool areSame(const PlacedContent& left, const PlacedContent& right);

    /// Why one of those that were compared last can't be read; empty if both were read as far as they are the same.
    const std::string& unreadable() const { return failure; }

private:
    class Reader;

    bool haveSameCompressedBytes(const PlacedContent& left, const PlacedContent& right);
    bool expandSame(const PlacedContent& left, const PlacedContent& right);

    static constexpr std::size_t SIZE = 65536;

    const std::unique_ptr<unsigned char[]> leftBytes, rightBytes;
    std::string failure;
};

/// The sum of the sizes that the archive states.
std::uint64_t sizeOf(const std::vector<const ArchiveItem*>& items);

/// The end of a message that begins with the names of the archive and the item.
OPC_INSPECTION_EXPORT std::string withoutPlace(const std::string& message);

} // namespace opc::inspection
