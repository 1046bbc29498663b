#pragma once

#include "bench/runner.h"

#include <utility>
#include <vector>

namespace tidebrook {

/// `values` must not be empty.
double medianOf(std::vector<double> values);

template <typename Figures>
double medianOf(const std::vector<Figures> &all, double Figures::*field) {
    std::vector<double> values;
    values.reserve(all.size());
    for (const Figures &figures : all)
        values.push_back(figures.*field);
    return medianOf(std::move(values));
}

/// The runs of one measurement, and the instructions of one more.
struct Series {
    std::vector<Sample> samples;
    double instructions = 0;

    double median(double Sample::*field) const { return medianOf(samples, field); }
};

} // namespace tidebrook
