#include "FuzzTarget.hpp"

#include "support/EventComparison.hpp"
#include "support/ScannerComparison.hpp"
#include "support/SignatureComparison.hpp"

using namespace opc::fuzz;

/// Any bytes can be any kind of document.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static opc::test::ScannerComparison comparisons[] = {
        opc::test::ScannerComparison(opc::model::schemas::RELATIONSHIPS),
        opc::test::ScannerComparison(opc::model::schemas::CONTENT_TYPES)};
    static opc::test::SignatureComparison signatures;
    const Bytes document(data, data + size);
    const auto requireNone = [](const std::string& difference) {
        require(difference.empty(), ("scanner and parser find the same: " + difference).c_str());
    };
    for (auto& comparison : comparisons)
        requireNone(comparison.findDifference(document));
    requireNone(signatures.findDifference(document));
    requireNone(opc::test::findEventDifference(document));
    return 0;
}
