#include "FuzzTarget.hpp"

#include <opc/core/Exception.hpp>
#include <opc/editing/Mending.hpp>

#include <utility>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::inspection;

namespace {

constexpr std::uint64_t LARGEST_ITEM = 1 << 18;

InspectionOptions makeOptions(unsigned profiles) {
    InspectionOptions options;
    options.profiles = profiles;
    options.fileName = "p.docx";
    options.limits.maxItems = 64;
    options.limits.maxItemSize = LARGEST_ITEM;
    options.limits.maxTotalSize = 4 * LARGEST_ITEM;
    return options;
}

Bytes bytesOf(const Archive& archive) {
    Bytes bytes(static_cast<std::size_t>(archive.size()));
    require(archive.read(0, bytes.data(), bytes.size()) == bytes.size(), "the archive has its size");
    return bytes;
}

/// A second time changes nothing, and what is left is what is found.
void requireMended(const Bytes& bytes, const InspectionOptions& options) {
    const editing::Mending first = editing::mend(Archive(bytes, options.limits), options);
    require(!first.mended.empty() || bytesOf(first.archive) == bytes, "nothing changes without a word");
    const Bytes mended = bytesOf(first.archive);
    const editing::Mending second = editing::mend(Archive(mended, options.limits), options);
    require(second.mended.empty(), "nothing can be mended twice");
    require(bytesOf(second.archive) == mended, "nothing changes a second time");
    require(second.left.size() == first.left.size(), "what is left is left");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes bytes(data, data + size);
    requireMended(bytes, makeOptions(OPC));
    requireMended(bytes, makeOptions(EVERY_PROFILE));
    return 0;
}
