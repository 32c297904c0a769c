#include "SystemStore.hpp"

#include <bedrock/certificates/Exceptions.hpp>

#include <openssl/x509.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string>
#include <tuple>

namespace bedrock::certificates::detail {

namespace {

namespace fs = std::filesystem;

/// Where the certificates come from, and in which state.
using Source = std::tuple<std::string, std::string, fs::file_time_type, std::uintmax_t>;

std::string placeOf(const char* variable, const char* usual) {
    const char* const given = std::getenv(variable);
    return given != nullptr ? given : usual;
}

Source findSource() {
    const std::string file = placeOf(X509_get_default_cert_file_env(), X509_get_default_cert_file());
    std::error_code missing; // then there is none to read
    const fs::file_time_type time = fs::last_write_time(file, missing);
    return {file, placeOf(X509_get_default_cert_dir_env(), X509_get_default_cert_dir()), time,
            fs::file_size(file, missing)};
}

struct LastStore {
    std::mutex mutex;
    Source source;
    openssl::StorePtr store;
};

} // namespace

openssl::StorePtr systemStore() {
    static LastStore& last = *new LastStore; // OpenSSL may end before what is static here
    const std::lock_guard<std::mutex> lock(last.mutex);
    const Source source = findSource();
    if (!last.store || last.source != source) {
        last.store = openssl::made(openssl::StorePtr(X509_STORE_new()));
        if (!X509_STORE_set_default_paths(last.store.get())) {
            last.store.reset();
            openssl::fail<CertificateException>("The system's certificates can't be used.");
        }
        last.source = source;
    }
    X509_STORE_up_ref(last.store.get());
    return openssl::StorePtr(last.store.get());
}

} // namespace bedrock::certificates::detail
