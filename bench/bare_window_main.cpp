#include <QApplication>
#include <QListWidget>
#include <QVBoxLayout>

// The least that a program with a list in a window is.
int main(int argc, char **argv) {
    const QApplication application(argc, argv);
    QWidget window;
    auto *list = new QListWidget;
    for (int row = 1; row <= qEnvironmentVariableIntValue("BENCH_ROWS"); ++row)
        list->addItem(QStringLiteral("Category %1").arg(row));
    (new QVBoxLayout(&window))->addWidget(list);
    window.resize(480, 640);
    window.show();
    return QApplication::exec();
}
