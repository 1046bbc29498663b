#pragma once

#include <curl/curl.h>

namespace tidebrook {

/// A value for CURLOPT_SSL_CTX_FUNCTION: has connections refuse each certificate that is on a
/// revocation list among the authorities' files. An authority need not have a list there, and an
/// old list is used as it is. Without effect where libcurl uses another library than OpenSSL.
CURLcode refuseRevoked(CURL *, void *tlsContext, void *);

} // namespace tidebrook
