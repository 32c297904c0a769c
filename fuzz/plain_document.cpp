#include "FuzzTarget.hpp"

#include "support/ScannerComparison.hpp"

using namespace opc::fuzz;

/// Any bytes may be either kind of document.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static opc::test::ScannerComparison comparisons[] = {
        opc::test::ScannerComparison(opc::model::schemas::RELATIONSHIPS),
        opc::test::ScannerComparison(opc::model::schemas::CONTENT_TYPES)};
    const Bytes document(data, data + size);
    for (auto& comparison : comparisons) {
        const std::string difference = comparison.findDifference(document);
        require(difference.empty(), ("scanner and parser find the same: " + difference).c_str());
    }
    return 0;
}
