#pragma once

#include <QtGlobal>

#include <curl/curl.h>

namespace tidebrook {

#define TIDEBROOK_CURL_FUNCTIONS(USE)                                                              \
    USE(curl_easy_cleanup)                                                                         \
    USE(curl_easy_getinfo)                                                                         \
    USE(curl_easy_header)                                                                          \
    USE(curl_easy_init)                                                                            \
    USE(curl_easy_setopt)                                                                          \
    USE(curl_easy_strerror)                                                                        \
    USE(curl_free)                                                                                 \
    USE(curl_global_init)                                                                          \
    USE(curl_multi_add_handle)                                                                     \
    USE(curl_multi_cleanup)                                                                        \
    USE(curl_multi_info_read)                                                                      \
    USE(curl_multi_init)                                                                           \
    USE(curl_multi_perform)                                                                        \
    USE(curl_multi_poll)                                                                           \
    USE(curl_multi_remove_handle)                                                                  \
    USE(curl_multi_setopt)                                                                         \
    USE(curl_slist_append)                                                                         \
    USE(curl_slist_free_all)                                                                       \
    USE(curl_url)                                                                                  \
    USE(curl_url_cleanup)                                                                          \
    USE(curl_url_get)                                                                              \
    USE(curl_url_set)

/// The functions of libcurl that are used here.
struct CurlLibrary {
// NOLINTNEXTLINE(bugprone-macro-parentheses): it names a member
#define TIDEBROOK_CURL_MEMBER(name) decltype(&::name) name = nullptr;
    TIDEBROOK_CURL_FUNCTIONS(TIDEBROOK_CURL_MEMBER)
#undef TIDEBROOK_CURL_MEMBER
};

/// Whether the library is there and ready. It is loaded by the first call, and not with the
/// program: it brings some thirty others with it, which would cost the reader, that seldom needs
/// it, a fifth of its start. So a package has to name it among what it needs. Thread-safe.
bool isCurlReady();

/// Its functions; only where it is ready.
const CurlLibrary &curl();

/// A function of a library that libcurl has brought with it, as that of TLS; null where it has
/// brought none of the name. Only where it is ready.
QFunctionPointer broughtByCurl(const char *name);

} // namespace tidebrook
