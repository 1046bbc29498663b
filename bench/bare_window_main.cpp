#include "bench/first_paint.h"

#include <QApplication>
#include <QListWidget>
#include <QVBoxLayout>

#include <cstdio>

// The least that a program with a list in a window is: "bare_window ROWS".
int main(int argc, char **argv) {
    const QApplication application(argc, argv);
    const int rows = QString::fromLocal8Bit(argc == 2 ? argv[1] : "").toInt();
    if (rows <= 0) {
        std::fprintf(stderr, "usage: bare_window ROWS\n");
        return 2;
    }
    const tidebrook::FirstPaint firstPaint(rows);
    QWidget window;
    auto *list = new QListWidget;
    for (int row = 1; row <= rows; ++row)
        list->addItem(QStringLiteral("Category %1").arg(row));
    (new QVBoxLayout(&window))->addWidget(list);
    window.resize(480, 640);
    window.show();
    return QApplication::exec();
}
