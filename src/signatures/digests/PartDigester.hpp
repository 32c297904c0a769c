#pragma once

#include "package/PartSearch.hpp"

#include <opc/model/PartName.hpp>
#include <opc/model/SignatureParams.hpp>

#include <map>
#include <memory>
#include <vector>

namespace bedrock::crypto {
class DigestEngine;
}

namespace opc {
class InputStream;
}

namespace opc::model {

class Package;

/// Computes the digests of parts by one method, as signatures need them: of the whole content, except the keywords of
/// core properties. Afterwards the part's stream is at its start. Each part is read only once, because a small
/// signature could name a large part many times.
class PartDigester {
public:
    /// @param package  must outlive this object, and keep its parts meanwhile
    /// @throws CouldNotGenerateSignature  the method isn't available
    PartDigester(const Package& package, DigestMethod method);

    /// @throws CouldNotGenerateSignature  the services fail
    /// @throws PartNotFound, and everything that reading the part throws
    const std::vector<unsigned char>& digest(const PartName& name);

private:
    std::vector<unsigned char> compute(InputStream& stream, const PartName& name) const;

    PartSearch parts;
    std::shared_ptr<bedrock::crypto::DigestEngine> engine;
    std::map<const InputStream*, std::vector<unsigned char>> computed; // by the part's stream
};

/// The digesters of one package. Each is made when its method is first needed.
class PartDigesters {
public:
    /// @param package  must outlive this object, and keep its parts meanwhile
    explicit PartDigesters(const Package& package) : package(package) {}

    /// Works as `PartDigester::digest`.
    const std::vector<unsigned char>& digest(const PartName& name, DigestMethod method) {
        return digesters.try_emplace(method, package, method).first->second.digest(name);
    }

private:
    const Package& package;
    std::map<DigestMethod, PartDigester> digesters;
};

} // namespace opc::model
