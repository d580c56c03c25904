// Another program that says it drags rows of our table: what it offers has our type and is no
// archive that anyone should read. Says "ready" when its window is there, then what each drop did.

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QWidget>

#include <cstdio>

namespace
{

class Source : public QWidget
{
protected:
    void mousePressEvent(QMouseEvent* /*event*/) override
    {
        auto* content = new QMimeData;
        content->setData(QStringLiteral("DeviceNameTableViewDataType"), archive());
        auto* drag = new QDrag(this);
        drag->setMimeData(content);
        std::printf("dropped %d\n", static_cast<int>(drag->exec(Qt::MoveAction | Qt::CopyAction)));
        std::fflush(stdout);
    }

private:
    /// Ten megabytes around a row number that no table has.
    static QByteArray archive()
    {
        return "<plist version=\"1.0\"><dict><key>NSLocation</key>"
               "<integer>9223372036854775808</integer><key>x</key><string>" +
               QByteArray(10'000'000, 'x') + "</string></dict></plist>";
    }
};

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    Source source;
    source.setGeometry(1000, 300, 200, 200);
    source.show();
    // Before the window is on the screen no click reaches it.
    QMetaObject::invokeMethod(
        &source,
        [] {
            std::puts("ready");
            std::fflush(stdout);
        },
        Qt::QueuedConnection);
    return application.exec();
}
