#include <opc/model/SignatureCoverage.hpp>

#include "signatures/coverage/CoverageIndex.hpp"
#include "signatures/manager/DigitalSignatureManagerImpl.hpp"

#include <opc/model/DigitalSignature.hpp>

namespace opc::model {

SignatureCoverage::SignatureCoverage(const DigitalSignatureManager& manager,
                                     const DigitalSignature& signature) {
    manager.m_impl->throwIfNotOpen();
    const auto made = std::make_shared<CoverageIndex>(manager.loaded().findOriginOfSignatures());
    made->add(signature);
    index = made;
}

bool SignatureCoverage::covers(const PartName& name) const {
    return index->find(name) != nullptr;
}

bool SignatureCoverage::covers(const Relationship& relationship) const {
    return index->covers(relationship, index->findSelected(relationship.getSourceURI()));
}

} // namespace opc::model
