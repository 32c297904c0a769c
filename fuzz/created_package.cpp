#include "FuzzTarget.hpp"

#include "support/OddPackage.hpp"

#include <opc/model/XercesGuard.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/MemoryPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

using namespace opc::fuzz;
using opc::physical::LenientPackage;
using opc::physical::MemoryPackage;
using opc::physical::ZipPackage;

namespace {

void check(opc::interfaces::IPhysicalPackage& store, const std::uint8_t* data, std::size_t size,
           bool leniently) {
    LenientPackage lenient(store);
    const std::string loss = opc::test::findLossInOddPackage(
        leniently ? static_cast<opc::interfaces::IPhysicalPackage&>(lenient) : store, data, size);
    require(loss.empty(), ("what was created is read back: " + loss).c_str());
}

} // namespace

/// The first byte selects the store, and whether a lenient one wraps it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const opc::model::XercesGuard guard; // starting Xerces takes longer than reading
    if (size == 0)
        return 0;
    ZipPackage zip(ZipPackage::Bytes{});
    MemoryPackage withStream(MemoryPackage::ContentTypes::InStream);
    MemoryPackage withoutStream(MemoryPackage::ContentTypes::InParts);
    opc::interfaces::IPhysicalPackage* const stores[] = {&zip, &withStream, &withoutStream};
    check(*stores[*data % 3], data + 1, size - 1, *data % 6 >= 3);
    return 0;
}
