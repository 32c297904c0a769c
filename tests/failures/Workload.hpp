#pragma once

#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/MemoryPackage.hpp>

#include <optional>
#include <string>
#include <vector>

namespace opc::test {

/// What an application does with a package from `open` to `close`, step by step: it reads, creates, relates, sets
/// properties, signs, verifies, countersigns, removes and saves. Without failures it leaves no signature, so that the
/// result has the same bytes each time.
class Workload {
public:
    struct Step {
        const char* name;
        bool repeatable; ///< a failure in it changes nothing visible, and it can be repeated
        void (*run)(Workload&);
    };

    explicit Workload(interfaces::IPhysicalPackage& physical) : package(physical), signatures(package) {}

    static const std::vector<Step>& steps();

    /// Makes a package in the store that has something for every step.
    static void fill(physical::MemoryPackage& store);

    model::Package package;
    model::DigitalSignatureManager signatures;

private:
    std::optional<model::DigitalSignature> signature;
};

/// Names, content types and relationships of an open package, from its handles.
std::string describe(const model::Package& package);

/// The same with the content of each part.
std::string describeWithContent(const model::Package& package);

/// Every byte of a store.
std::string contentOf(const physical::MemoryPackage& store);

} // namespace opc::test
