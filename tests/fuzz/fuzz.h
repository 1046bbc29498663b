#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace tidebrook {

/// What a fuzzer does with an input; each has one of its own.
void fuzz(const QByteArray &input);

/// Ends the program where a promise does not hold, so that the input is kept as a finding.
inline void require(bool holds, const char *promise, const QString &value = {}) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s: \"%s\"\n", promise, value.toUtf8().constData());
    std::abort();
}

/// A text that is stored or shown: within its capacity, without half characters.
inline void requireText(const QString &text, qsizetype capacity, const char *what) {
    require(text.size() <= capacity && text.isValidUtf16(), what, text);
}

/// The choice that an input makes by its first byte, which is taken from it then: 1 to 7, which no
/// document begins with, so that every document is an input as it is; else 0.
inline std::size_t takeChoice(QByteArray &input) {
    if (input.isEmpty() || input.front() < 1 || input.front() > 7)
        return 0;
    const auto choice = static_cast<std::size_t>(static_cast<uint8_t>(input.front()));
    input.remove(0, 1);
    return choice;
}

} // namespace tidebrook

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    tidebrook::fuzz({reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)});
    return 0;
}
