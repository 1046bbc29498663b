#pragma once

#include <unistd.h>

namespace tidebrook {

/// An open file descriptor, closed when this object ends; negative where opening failed.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0)
            close(number_);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

private:
    const int number_;
};

} // namespace tidebrook
