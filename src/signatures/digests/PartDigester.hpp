#pragma once

#include <opc/model/PartName.hpp>
#include <opc/model/SignatureParams.hpp>

#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace bedrock::crypto {
class DigestEngine;
}

namespace opc {
class InputStream;
}

namespace opc::model {

class Package;

/// Computes the digests of parts by one method, as signatures hold them: of the whole content, but for core properties
/// without their keywords. Afterwards the part's stream is at its start. Each part is read once, however often its
/// digest is asked for: a small signature could name a large part many times.
class PartDigester {
public:
    /// @param package  must outlive this object
    /// @throws CouldNotGenerateSignature  if the method isn't available
    PartDigester(const Package& package, DigestMethod method);

    /// @throws CouldNotGenerateSignature  if the services fail
    /// @throws PartNotFound, and whatever reading the part raises
    const std::vector<unsigned char>& digest(const PartName& name);

private:
    std::vector<unsigned char> compute(InputStream& stream, const PartName& name) const;

    const Package& package;
    std::shared_ptr<bedrock::crypto::DigestEngine> engine;
    std::unordered_map<const InputStream*, std::vector<unsigned char>> computed; // by the part's stream
};

/// Digesters of one package, made for each method when it is asked for.
class PartDigesters {
public:
    /// @param package  must outlive this object
    explicit PartDigesters(const Package& package) : package(package) {}

    /// As `PartDigester::digest`.
    const std::vector<unsigned char>& digest(const PartName& name, DigestMethod method) {
        return digesters.try_emplace(method, package, method).first->second.digest(name);
    }

private:
    const Package& package;
    std::map<DigestMethod, PartDigester> digesters;
};

} // namespace opc::model
