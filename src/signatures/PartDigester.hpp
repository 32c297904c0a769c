#pragma once

#include <opc/model/PartName.hpp>
#include <opc/model/SignatureParams.hpp>

#include <memory>
#include <vector>

namespace bedrock::crypto {
class DigestEngine;
}

namespace opc::model {

class Package;

/// Computes the digests of parts by one method, as signatures hold them: of the content, but of the core
/// properties without their keywords. A part's stream is at its start then.
class PartDigester {
public:
    /// @param containing  must outlive this object
    /// @throws CouldNotGenerateSignature  if the method isn't to be had
    PartDigester(const Package& containing, DigestMethod method);

    DigestMethod getMethod() const { return digestMethod; }

    /// @throws CouldNotGenerateSignature  if the services fail
    /// @throws PartNotFound, and whatever reading the part raises
    std::vector<unsigned char> digest(const PartName& name) const;

private:
    const Package& package;
    DigestMethod digestMethod;
    std::shared_ptr<bedrock::crypto::DigestEngine> engine;
};

} // namespace opc::model
