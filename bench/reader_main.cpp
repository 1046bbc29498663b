#include "bench/first_paint.h"
#include "reader/reader.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

int rows = 0;

void watchFirstPaint() {
    auto *firstPaint = new tidebrook::FirstPaint(rows);
    firstPaint->setParent(QCoreApplication::instance());
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchFirstPaint)

// The reader on the user's device, until its list of categories is there: "bench_reader ROWS".
int main(int argc, char **argv) {
    rows = QString::fromLocal8Bit(argc == 2 ? argv[1] : "").toInt();
    if (rows <= 0) {
        std::fprintf(stderr, "usage: bench_reader ROWS\n");
        return 2;
    }
    tidebrook::runReader(argc, argv);
    return 1; // it has ended without a list
}
