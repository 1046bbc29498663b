#pragma once

#include <QByteArray>
#include <QTemporaryDir>

namespace tidebrook {

/// As long as it lives, it stands for the desktop's program that opens links and composes messages.
class FakeOpener {
public:
    FakeOpener();
    ~FakeOpener();
    FakeOpener(const FakeOpener &) = delete;
    FakeOpener &operator=(const FakeOpener &) = delete;

    /// What it was called with so far: for each call a line with the number of its arguments, and
    /// these.
    QByteArray calls() const;
    /// From now on it does nothing and fails.
    void refuse();
    /// From now on there is no such program.
    void remove();

private:
    QTemporaryDir folder_;
    QByteArray pathBefore_;
};

} // namespace tidebrook
