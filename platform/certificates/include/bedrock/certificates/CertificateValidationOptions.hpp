#pragma once

#include <bedrock/crypto/Export.hpp>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace bedrock::certificates {

namespace detail {
struct RevocationList;
}

/// How a certificate is validated; a value. By default: now, no weak algorithms, no revocation lists.
class BEDROCK_CRYPTO_EXPORT CertificateValidationOptions {
public:
    using Time = std::chrono::system_clock::time_point;

    /// The time at which the chain must be valid. Without one it is the time that a signature claims for
    /// itself, where there is such a time, and else the time of the check.
    void setCheckTime(std::optional<Time> time) { checkTime = time; }
    std::optional<Time> getCheckTime() const { return checkTime; }

    /// Whether keys of less than 112 bits of security pass, such as RSA keys of 1024 bits.
    void setAcceptingWeakKeys(bool accepting) { acceptingWeakKeys = accepting; }
    bool isAcceptingWeakKeys() const { return acceptingWeakKeys; }

    /// Whether certificates and revocation lists signed over a digest of less than 112 bits of security pass,
    /// such as MD5 and SHA-1. The signatures on certificates of the trust store don't matter. A list that is
    /// signed over such a digest revokes what it names in any case; this is about whether it covers a
    /// certificate.
    void setAcceptingWeakDigests(bool accepting) { acceptingWeakDigests = accepting; }
    bool isAcceptingWeakDigests() const { return acceptingWeakDigests; }

    /// Adds a revocation list, and has the lists used from now on.
    /// @param bytes  one list in DER or PEM
    /// @throws CertificateException  if the bytes are no revocation list
    void addRevocationList(const std::vector<unsigned char>& bytes);

    /// Whether revocation lists are used. If so, the validated certificate must be covered by a list that had
    /// not run out at the time of the check; the certificates above it are looked up in the lists that there
    /// are. What any list of its issuer names is revoked, whenever that was: a claimed time of signing is no
    /// proof.
    ///
    /// A list covers what its issuer issued, within its issuing distribution point. These cover nothing (RFC
    /// 5280 section 5.2): delta lists, indirect ones, ones for some reasons of revocation only, and ones with a
    /// critical extension that isn't known.
    void setUsingRevocationLists(bool use) { usingRevocationLists = use; }
    bool isUsingRevocationLists() const { return usingRevocationLists; }

    /// The lists in the order they were added; internal.
    const std::vector<std::shared_ptr<const detail::RevocationList>>& getRevocationLists() const {
        return lists;
    }

private:
    std::optional<Time> checkTime;
    bool acceptingWeakKeys = false;
    bool acceptingWeakDigests = false;
    bool usingRevocationLists = false;
    std::vector<std::shared_ptr<const detail::RevocationList>> lists;
};

} // namespace bedrock::certificates
