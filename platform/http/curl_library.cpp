#include "platform/http/curl_library.h"

#include <QLibrary>

#include <optional>

namespace tidebrook {

namespace {

QLibrary sharedLibrary() {
    constexpr int interfaceVersion = 4;
    return QLibrary(QStringLiteral("curl"), interfaceVersion);
}

// The library wants to be set up once, before a second thread uses it.
std::optional<CurlLibrary> load() {
    QLibrary file = sharedLibrary();
    CurlLibrary library;
    bool isWhole = file.load();
    const auto resolve = [&](auto &function, const char *name) {
        using Function = std::remove_reference_t<decltype(function)>;
        function = reinterpret_cast<Function>(isWhole ? file.resolve(name) : nullptr);
        isWhole = isWhole && function != nullptr;
    };
#define TIDEBROOK_RESOLVE(name) resolve(library.name, #name);
    TIDEBROOK_CURL_FUNCTIONS(TIDEBROOK_RESOLVE)
#undef TIDEBROOK_RESOLVE
    if (!isWhole || library.curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
        return std::nullopt;
    return library;
}

const std::optional<CurlLibrary> &loaded() {
    static const std::optional<CurlLibrary> library = load();
    return library;
}

} // namespace

bool isCurlReady() { return loaded().has_value(); }

const CurlLibrary &curl() { return *loaded(); }

// The system looks for a name in what a library has loaded, too.
QFunctionPointer broughtByCurl(const char *name) { return sharedLibrary().resolve(name); }

} // namespace tidebrook
