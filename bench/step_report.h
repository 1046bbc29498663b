#pragma once

#include "bench/report.h"

#include <QByteArray>
#include <QList>

#include <optional>

namespace tidebrook {

/// The line that a program printed of a kind of step. Throws MeasurementError when there is none.
QByteArray lineOf(const QByteArray &output, const QByteArray &name);

/// Of a kind of step that each run printed a line of: the median of the runs' medians, and the
/// worst of all runs, beside what is allowed, in ms. Throws MeasurementError.
void reportStep(Report &report, const QList<QByteArray> &outputs, const QByteArray &step,
                const QByteArray &figure, double allowed, std::optional<double> target = 1);

} // namespace tidebrook
