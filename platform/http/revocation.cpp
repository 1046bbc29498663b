#include "platform/http/revocation.h"

#include "platform/http/curl_library.h"

#include <openssl/ssl.h>

namespace tidebrook {

namespace {

template <typename Function> void resolve(Function &function, const char *name) {
    function = reinterpret_cast<Function>(broughtByCurl(name));
}

struct TlsLibrary {
    decltype(&::SSL_CTX_get_cert_store) authoritiesOf = nullptr;
    decltype(&::SSL_CTX_set_verify) setVerify = nullptr;
    decltype(&::X509_STORE_set_flags) setFlags = nullptr;
    decltype(&::X509_STORE_CTX_get_error) errorOf = nullptr;
    decltype(&::X509_STORE_CTX_set_error) setError = nullptr;

    TlsLibrary() {
        resolve(authoritiesOf, "SSL_CTX_get_cert_store");
        resolve(setVerify, "SSL_CTX_set_verify");
        resolve(setFlags, "X509_STORE_set_flags");
        resolve(errorOf, "X509_STORE_CTX_get_error");
        resolve(setError, "X509_STORE_CTX_set_error");
    }
    bool isWhole() const { return authoritiesOf && setVerify && setFlags && errorOf && setError; }
};

const TlsLibrary &tls() {
    static const TlsLibrary library;
    return library;
}

// With its flag OpenSSL wants an up-to-date list of every authority, and few systems have any.
int excuseMissingList(int isTrusted, X509_STORE_CTX *verification) {
    switch (tls().errorOf(verification)) {
    case X509_V_ERR_UNABLE_TO_GET_CRL:
    case X509_V_ERR_CRL_HAS_EXPIRED:
        tls().setError(verification, X509_V_OK);
        return 1;
    default:
        return isTrusted;
    }
}

} // namespace

CURLcode refuseRevoked(CURL *, void *tlsContext, void *) {
    if (!tls().isWhole())
        return CURLE_OK;
    auto *context = static_cast<SSL_CTX *>(tlsContext);
    tls().setFlags(tls().authoritiesOf(context), X509_V_FLAG_CRL_CHECK | X509_V_FLAG_CRL_CHECK_ALL);
    tls().setVerify(context, SSL_VERIFY_PEER, &excuseMissingList);
    return CURLE_OK;
}

} // namespace tidebrook
