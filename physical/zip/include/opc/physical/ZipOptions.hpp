#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>

namespace opc::physical {

class ReadingMemory;

/// The options of a `ZipPackage`. Sizes are in bytes.
struct ZipOptions {
    /// Written parts stay in memory up to 1 MiB each and up to this size together. Larger ones go to a temporary file that
    /// has no name.
    std::uint64_t memoryForWrittenParts = 32ULL << 20;

    /// The folder of that temporary file. If it is empty: the folder of the package or, for a package in memory, the
    /// system's folder for temporary files.
    std::filesystem::path temporaryFolder;

    /// Whether the same operations write the same bytes: then written items have a fixed time stamp.
    bool deterministic = false;

    /// That time stamp: seconds since 1970, in UTC. The archive holds times from 1980 to 2107, in steps of two seconds.
    std::int64_t deterministicTime = 0;

    /// Called by a save, and by `ZipPackage::writeTo`, when the new archive is complete in its temporary file, which then
    /// replaces the old file. An exception ends the save: the old file stays, and the new archive is dropped. An archive that
    /// isn't saved in a file isn't passed.
    std::function<void(const std::filesystem::path& written)> beforeReplacing;

    /// Called when content of items has been read, with the number of bytes: for those who show how far a long step has come.
    /// May be empty. It must not throw.
    std::function<void(std::uint64_t bytes)> whenRead;

    /// What the package has in common with those that this thread reads before and after it. May be null. Only archives in
    /// memory and in files up to 128 KiB use it.
    std::shared_ptr<ReadingMemory> memory;

    /// Whether these archives are accepted too. They break the standard, but all programs read them in the same way.
    /// `ZipPackage::getOddities` reports each.
    ///
    /// - Up to 64 KiB, minus the comment of the archive, follow the end record. They are ignored, and the next save drops
    ///   them. The archive is still refused if they contain a record, if bytes precede the items, or if the archive has
    ///   ZIP64 records: then it isn't certain which end record counts.
    /// - The compressed data of an item ends without the last block of Deflate. The content is read if it has the size and
    ///   the checksum in the directory. A save that keeps the item copies it unchanged.
    /// - An item is encrypted, or compressed by another method than Store and Deflate. It stays through every save;
    ///   reading it fails with the code 95.
    ///
    /// Everything else that `ZipPackage` refuses is still refused.
    bool lenient = false;

    /// @name Limits for hostile files. `open` fails beyond a limit. A part can't be created if its name, or the number of
    /// items, is beyond a limit. Written content that exceeds the ratio is stored uncompressed.
    /// @{

    std::uint64_t maxItems = 100000;
    std::uint64_t maxDirectorySize = 64ULL << 20; ///< of the directory with all names
    std::uint64_t maxNameLength = 4096;           ///< of an item's name
    std::uint64_t maxDepth = 256;                 ///< how many folders the name of an item can have
    std::uint64_t maxItemSize = 16ULL << 30;      ///< of one item, uncompressed
    std::uint64_t maxTotalSize = 64ULL << 30;     ///< of all items, uncompressed
    std::uint64_t maxRatio = 1000; ///< size divided by compressed size, above `ratioFloor`; 0 counts as 1
    std::uint64_t ratioFloor = 100ULL << 20;

    /// @}
};

} // namespace opc::physical
