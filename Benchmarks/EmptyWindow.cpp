// The yardstick for the panel's start and size: the least that a Qt Widgets program can do.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QWidget window;
    window.resize(640, 440);
    window.show();
    return application.exec();
}
