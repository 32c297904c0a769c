#include "FuzzTarget.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/Format.hpp>
#include <opc/inspection/Inspection.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <algorithm>
#include <cerrno>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::inspection;

namespace {

constexpr std::uint64_t LARGEST_ITEM = 1 << 18;

physical::ZipOptions makeLimits() {
    physical::ZipOptions limits;
    limits.maxItems = 64;
    limits.maxItemSize = LARGEST_ITEM;
    limits.maxTotalSize = 4 * LARGEST_ITEM;
    return limits;
}

void requirePlaces(const Archive& archive) {
    for (const ArchiveItem& item : archive.items()) {
        require(item.central || item.local, "an item has a header");
        if (!item.endOffset)
            continue;
        require(item.local && *item.headerOffset < *item.dataOffset, "the content stands behind the header");
        require(*item.dataOffset <= *item.endOffset && *item.endOffset <= archive.size(),
                "an item lies in the archive");
    }
    std::uint64_t end = 0;
    for (const ArchiveGap& gap : archive.gaps()) {
        require(gap.size > 0 && gap.offset >= end, "gaps follow each other");
        end = gap.offset + gap.size;
        require(end <= archive.size(), "a gap lies in the archive");
        for (const ArchiveItem& item : archive.items())
            require(!item.endOffset || *item.endOffset <= gap.offset || *item.headerOffset >= end,
                    "no item lies in a gap");
    }
}

void readItems(const Archive& archive) {
    for (const ArchiveItem& item : archive.items())
        attempt<Exception>([&] {
            const auto stream = archive.open(item);
            std::uint64_t size = 0;
            unsigned char block[4096];
            while (!stream->isDone())
                size += stream->read(block, sizeof block);
            require(size <= LARGEST_ITEM, "no content goes beyond the limits");
        });
}

std::uint64_t countErrors(const Archive& archive, unsigned profiles) {
    InspectionOptions options;
    options.profiles = profiles;
    options.limits = makeLimits();
    const Report report = inspect(archive, options);
    for (const Finding& finding : report.findings) {
        require(finding.rule && !finding.message.empty(), "a finding has a rule and a message");
        require(finding.severity <= finding.rule->severity, "and at most the severity of the rule");
        require((finding.rule->profiles & profiles) != 0, "of a profile that was asked for");
        require(!finding.place.offset || *finding.place.offset <= archive.size(), "and lies in the archive");
    }
    return report.count(Severity::Error);
}

enum class Outcome { Whole, Damaged, Limited };

/// What the store makes of the archive, contents included.
Outcome readPackage(const Bytes& bytes) {
    physical::ZipPackage package(bytes, makeLimits());
    try {
        package.open(interfaces::OpenMode::ReadOnly);
        unsigned char block[4096];
        for (interfaces::IPhysicalPart* part : package.getParts()) {
            interfaces::IPhysicalInputStream& stream = *part->getInputStream();
            while (!stream.isDone())
                stream.read(block, sizeof block);
        }
    } catch (const Exception& e) {
        return e.code().value() == EFBIG ? Outcome::Limited : Outcome::Damaged;
    }
    return Outcome::Whole;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes(data, data + size);
    const Archive archive(bytes, makeLimits());
    requirePlaces(archive);
    readItems(archive);
    const Format format = detectFormat(archive);
    require(!format.name.empty() && !format.description.empty(), "a format has a name");
    for (const unsigned profiles : {unsigned{OPC}, unsigned{SECURITY}, unsigned{OFFICE}})
        countErrors(archive, profiles);
    const std::uint64_t errors = countErrors(archive, EVERY_PROFILE);
    if (readPackage(bytes) == Outcome::Damaged)
        require(errors > 0, "what the store refuses has an error");
    return 0;
}
