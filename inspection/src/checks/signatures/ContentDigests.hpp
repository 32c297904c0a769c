#pragma once

#include "checks/signatures/SignatureDocument.hpp"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace opc::inspection {

/// Compares the content of parts with the digests that a signature states for their bytes. Each part is expanded once for
/// an algorithm, however many references lead to it.
class ContentDigests {
public:
    /// @param subject  must outlive this object
    explicit ContentDigests(const Subject& subject) : subject(subject) {}

    /// @param reference  without transforms
    /// @return whether the part has the digest. Also true if nobody can say: the algorithm is unknown, or the content is
    ///         damaged, which another rule tells
    bool isOf(const PartView& part, const SignatureReference& reference);

private:
    using Bytes = std::vector<unsigned char>;

    /// @return empty for damaged content
    const Bytes& digestOf(const PartView& part, int algorithm);

    const Subject& subject;
    std::map<std::pair<const PartView*, int>, Bytes> known;
};

} // namespace opc::inspection
