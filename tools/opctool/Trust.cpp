#include "Trust.hpp"

#include "KeyFiles.hpp"
#include "RepeatableOption.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

#include <CLI/CLI.hpp>
#include <boost/date_time/posix_time/conversion.hpp>

namespace opctool {

using bedrock::certificates::CertificateValidationOptions;
using bedrock::certificates::TrustStore;

namespace {

constexpr const char* SYSTEM = "system";
constexpr const char* NOW = "now";

boost::posix_time::ptime parseCheckTime(const std::string& text) {
    return opc::convertStringToTime(opc::toString(text, true));
}

} // namespace

std::vector<CLI::Option*> addTrustOptions(CLI::App& command, Trust& trust) {
    command.add_flag(
        "--accept-weak", trust.acceptWeak,
        "Accept MD5, SHA-1 and RSA keys of 1024 bits, also in certificates and revocation lists");
    return {
        addRepeatable(
            &command, "--trust", trust.files,
            "A file of trusted certificates, PEM or DER, or \"system\" for the system's certificates")
            ->check([](const std::string& value) {
                return value == SYSTEM ? std::string() : CLI::ExistingFile(value);
            })
            ->type_name("FILE"),
        addRepeatable(&command, "--crl", trust.revocationLists,
                      "A revocation list, PEM or DER; with this option a current list must cover the signer")
            ->check(CLI::ExistingFile)};
}

std::string checkTime(const std::string& text) {
    constexpr int FIRST_YEAR = 1970;
    constexpr int LAST_YEAR = 2261; // which the clock can count
    if (text == NOW)
        return {};
    const auto time = parseCheckTime(text);
    if (time.is_special() || time.date().year() < FIRST_YEAR || time.date().year() > LAST_YEAR)
        return text + " isn't a time from 1970 to 2261; write 2024-02-29, 2024-02-29T13:45Z or now";
    return {};
}

TrustStore makeTrustStore(const Trust& trust) {
    TrustStore store;
    for (const std::string& file : trust.files)
        if (file == SYSTEM)
            store.addSystemCertificates(TrustStore::Usage::Signing, false);
        else
            store.addFile(file);
    return store;
}

namespace {

// Without a time_t between, which would end in 2038 on some machines.
std::chrono::system_clock::time_point checkTimeOf(const std::string& text) {
    using boost::posix_time::ptime;
    const auto since = parseCheckTime(text) - ptime(boost::gregorian::date(1970, 1, 1));
    return std::chrono::system_clock::time_point(std::chrono::seconds(since.total_seconds()));
}

} // namespace

CertificateValidationOptions makeValidationOptions(const Trust& trust) {
    CertificateValidationOptions options;
    options.setAcceptingWeakKeys(trust.acceptWeak);
    options.setAcceptingWeakDigests(trust.acceptWeak);
    if (!trust.time.empty())
        options.setCheckTime(trust.time == NOW ? std::chrono::system_clock::now() : checkTimeOf(trust.time));
    for (const std::string& file : trust.revocationLists)
        options.addRevocationList(readFile(file));
    return options;
}

std::vector<bedrock::certificates::X509Certificate> readCertificates(const std::string& path) {
    TrustStore store; // reads both forms; nothing trusts it here
    store.addFile(path);
    return store.getCertificates();
}

} // namespace opctool
