#pragma once

#include <cstdint>
#include <filesystem>

namespace opc::physical {

/// How a `ZipPackage` works. Sizes are in bytes.
struct ZipOptions {
    /// Parts that are being written stay in memory up to 1 MiB each and up to this size together; what is
    /// beyond goes to a temporary file that has no name.
    std::uint64_t memoryForWrittenParts = 32ULL << 20;

    /// Where that temporary file lies. Empty: in the folder of the package, or for a package in memory in
    /// the system's folder for temporary files.
    std::filesystem::path temporaryFolder;

    /// The same operations give the same bytes: what is written gets a fixed time stamp.
    bool deterministic = false;

    /// Takes these archives too, which break the standard but which all programs read alike, and tells of each by
    /// `ZipPackage::getOddities`:
    ///
    /// - Up to 64 KiB, less the comment of the archive, stand behind the end record. They aren't read, and the next
    ///   save drops them. A record among them refuses the archive, and so do bytes in front of the items or records
    ///   of ZIP64 besides: which end record counts isn't certain then.
    /// - The compressed data of an item ends without the last block of Deflate. The content is read if it has the
    ///   size and the checksum that the directory says. A save that keeps the item copies it as it is.
    /// - An item is encrypted, or compressed by another method than Store and Deflate. It stays through every save;
    ///   reading it fails, with the code 95.
    ///
    /// All else that `ZipPackage` refuses is refused here too.
    bool lenient = false;

    /// @name Limits on what is opened, for hostile files. Exceeding one fails the `open`. A part can't be created whose
    /// name or number would. What would exceed the ratio when it is written is stored instead.
    /// @{

    std::uint64_t maxItems = 100000;
    std::uint64_t maxDirectorySize = 64ULL << 20; ///< of the directory, which holds all names
    std::uint64_t maxNameLength = 4096;           ///< of an item's name
    std::uint64_t maxDepth = 256;                 ///< how many folders an item's name may lead through
    std::uint64_t maxItemSize = 16ULL << 30;      ///< of one item, not compressed
    std::uint64_t maxTotalSize = 64ULL << 30;     ///< of all items, not compressed
    std::uint64_t maxRatio = 1000; ///< size to compressed size above `ratioFloor`; 0 counts as 1
    std::uint64_t ratioFloor = 100ULL << 20;

    /// @}
};

} // namespace opc::physical
