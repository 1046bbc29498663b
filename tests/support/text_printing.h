#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>

// Lets a failing test show a text instead of its bytes.
inline void PrintTo(const QString &text, std::ostream *out) {
    *out << '"' << text.toUtf8().constData() << '"';
}

inline void PrintTo(const QByteArray &bytes, std::ostream *out) {
    *out << '"' << bytes.constData() << '"';
}
