#include <bedrock/certificates/TimeStamp.hpp>

#include "CertificateAccess.hpp"
#include "CheckTime.hpp"
#include "Revocation.hpp"

#include <bedrock/certificates/Exceptions.hpp>

#include <openssl/err.h>
#include <openssl/ts.h>

#include <ctime>

namespace bedrock::certificates {

namespace {

using Time = std::chrono::system_clock::time_point;
using Pkcs7Ptr = std::unique_ptr<PKCS7, openssl::Deleter<PKCS7_free>>;
using InfoPtr = std::unique_ptr<TS_TST_INFO, openssl::Deleter<TS_TST_INFO_free>>;
using ContextPtr = std::unique_ptr<TS_VERIFY_CTX, openssl::Deleter<TS_VERIFY_CTX_free>>;

constexpr int STRONG_DIGEST_SIZE = 28; // 112 bits of security

std::optional<Time> timeOf(const TS_TST_INFO& info) {
    const std::unique_ptr<ASN1_TIME, openssl::Deleter<ASN1_TIME_free>> epoch(ASN1_TIME_set(nullptr, 0));
    int days = 0;
    int seconds = 0;
    if (!epoch || ASN1_TIME_diff(&days, &seconds, epoch.get(), TS_TST_INFO_get_time(&info)) != 1)
        return std::nullopt;
    return Time(days * std::chrono::hours(24) + std::chrono::seconds(seconds));
}

bool isImprintWeak(TS_TST_INFO& info) {
    return ASN1_STRING_length(TS_MSG_IMPRINT_get_msg(TS_TST_INFO_get_msg_imprint(&info))) <
           STRONG_DIGEST_SIZE;
}

openssl::StorePtr makeStore(const CertificateValidationOptions& options, const TrustStore& trustStore) {
    openssl::StorePtr store = openssl::made(openssl::StorePtr(X509_STORE_new()));
    for (const X509Certificate& certificate : trustStore.getCertificates())
        if (!X509_STORE_add_cert(store.get(), &detail::CertificateAccess::get(certificate)))
            openssl::fail<X509CertificateException>("A certificate of the trust store can't be used.");
    if (trustStore.getSystemUsage() && !X509_STORE_set_default_paths(store.get()))
        openssl::fail<CertificateException>("The system's certificates can't be used.");
    X509_VERIFY_PARAM& parameters = *X509_STORE_get0_param(store.get());
    unsigned long flags = X509_V_FLAG_PARTIAL_CHAIN;
    if (options.isUsingRevocationLists()) {
        const openssl::CrlStackPtr covering = detail::coveringLists(options, detail::CoveringLists::Strong);
        for (int i = 0; i < sk_X509_CRL_num(covering.get()); ++i)
            if (!X509_STORE_add_crl(store.get(), sk_X509_CRL_value(covering.get(), i)))
                openssl::fail<CertificateException>("A revocation list can't be used.");
        flags |= X509_V_FLAG_CRL_CHECK | X509_V_FLAG_CRL_CHECK_ALL;
    }
    X509_VERIFY_PARAM_set_flags(&parameters, flags);
    if (!options.isAcceptingWeakDigests() || !options.isAcceptingWeakKeys())
        X509_VERIFY_PARAM_set_auth_level(&parameters, 2); // 112 bits of security
    detail::setCheckTime(parameters, options);
    return store;
}

} // namespace

TimeStampResults checkTimeStamp(const std::vector<unsigned char>& token, const std::string& content,
                                const CertificateValidationOptions& options, const TrustStore& trustStore) {
    const openssl::ErrorScope scope;
    TimeStampResults results;
    const auto structure = openssl::fromDer<Pkcs7Ptr, d2i_PKCS7>(token.data(), token.size());
    const InfoPtr info(
        structure && PKCS7_type_is_signed(structure.get()) ? PKCS7_to_TS_TST_INFO(structure.get()) : nullptr);
    if (!info) {
        results.error = "it isn't a time stamp token";
        return results;
    }
    results.time = timeOf(*info);
    results.isWeak = isImprintWeak(*info);
    const std::vector<unsigned char> bytes(content.begin(), content.end());
    const ContextPtr context = openssl::made(ContextPtr(TS_VERIFY_CTX_new()));
    TS_VERIFY_CTX_set_flags(context.get(), TS_VFY_SIGNATURE | TS_VFY_VERSION | TS_VFY_DATA);
    TS_VERIFY_CTX_set_store(context.get(), makeStore(options, trustStore).release());
    TS_VERIFY_CTX_set_data(context.get(), openssl::readingBio(bytes).release());
    if (TS_RESP_verify_token(context.get(), structure.get()) != 1)
        results.error = openssl::withErrors("it doesn't hold");
    else if (!results.time)
        results.error = "its time can't be read";
    else if (results.isWeak && !options.isAcceptingWeakDigests())
        results.error = "its digest of the signature value is too weak";
    results.isTrusted = results.error.empty();
    return results;
}

} // namespace bedrock::certificates
