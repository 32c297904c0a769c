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

/// How a certificate is validated. A value type. The defaults: the present time, no weak algorithms, no revocation lists.
class BEDROCK_CRYPTO_EXPORT CertificateValidationOptions {
public:
    using Time = std::chrono::system_clock::time_point;

    /// The time at which the chain must be valid. Without one it is the time that a signature claims and, without such a
    /// claim, the present time.
    void setCheckTime(std::optional<Time> time) { checkTime = time; }
    std::optional<Time> getCheckTime() const { return checkTime; }

    /// Whether the time of the check is proven, by a time stamp, and not a claim alone. Then a revocation doesn't count that is
    /// later, if the list gives as its reason that the certificate was replaced or isn't used any more: affiliationChanged,
    /// superseded or cessationOfOperation (RFC 5280 section 5.3.1), without an invalidity date before. With any other reason,
    /// and with none, somebody else can have had the key.
    void setCheckTimeProven(bool proven) { checkTimeProven = proven; }
    bool isCheckTimeProven() const { return checkTimeProven; }

    /// Whether keys with less than 112 bits of security are accepted, such as RSA keys of 1024 bits.
    void setAcceptingWeakKeys(bool accepting) { acceptingWeakKeys = accepting; }
    bool isAcceptingWeakKeys() const { return acceptingWeakKeys; }

    /// Whether certificates and revocation lists are accepted that are signed over a digest with less than 112 bits of
    /// security, such as MD5 and SHA-1. The signatures on certificates of the trust store don't matter. A revocation list
    /// over such a digest always revokes the certificates that it names; this option decides whether it covers others.
    void setAcceptingWeakDigests(bool accepting) { acceptingWeakDigests = accepting; }
    bool isAcceptingWeakDigests() const { return acceptingWeakDigests; }

    /// Whether the validated certificate may have another key than one for RSA with PKCS#1 padding: one on an elliptic
    /// curve, or one that is limited to RSA-PSS.
    void setAcceptingOtherKeys(bool accepting) { acceptingOtherKeys = accepting; }
    bool isAcceptingOtherKeys() const { return acceptingOtherKeys; }

    /// Adds a revocation list, and switches the use of revocation lists on.
    /// @param bytes  one list in DER or PEM
    /// @throws CertificateException  the bytes aren't a revocation list
    void addRevocationList(const std::vector<unsigned char>& bytes);

    /// Whether revocation lists are used. If so, a list that hasn't expired at the time of the check must cover the
    /// validated certificate. The certificates above it are looked up in the available lists. A certificate that a list of
    /// its issuer names is revoked, whatever the date of the revocation, unless the time of the check is proven: a claimed time
    /// of signing is no proof.
    ///
    /// A list covers the certificates of its issuer, within its issuing distribution point. These lists cover nothing (RFC
    /// 5280 section 5.2): delta lists, indirect lists, lists for only some reasons of revocation, and lists with an unknown
    /// critical extension.
    void setUsingRevocationLists(bool use) { usingRevocationLists = use; }
    bool isUsingRevocationLists() const { return usingRevocationLists; }

    /// The lists in the order in which they were added; internal.
    const std::vector<std::shared_ptr<const detail::RevocationList>>& getRevocationLists() const {
        return lists;
    }

private:
    std::optional<Time> checkTime;
    bool checkTimeProven = false;
    bool acceptingWeakKeys = false;
    bool acceptingWeakDigests = false;
    bool acceptingOtherKeys = false;
    bool usingRevocationLists = false;
    std::vector<std::shared_ptr<const detail::RevocationList>> lists;
};

} // namespace bedrock::certificates
