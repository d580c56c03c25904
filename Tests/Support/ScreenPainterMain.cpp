// Paints on the screens of its desktop what it is told on its standard input, one line each:
//   fill X Y WIDTH HEIGHT COLOUR     on a window that covers the screen there, once there is one
//   cover NAME WIDTH HEIGHT SCALE COLOUR    wholly, the screen of that name, once it is like that
//   cursor SIDE COLOUR HOTSPOT       a square in the place of the pointer
//   window TITLE WIDTH HEIGHT        an ordinary one, black
// Says on its standard output what these windows get, one line each: the name of the screen
// that the window was made for, what happened, and where, in the screen's pixels.

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>
#include <QSocketNotifier>
#include <QTextStream>
#include <QTimer>
#include <QTouchEvent>
#include <QWheelEvent>

#include <unistd.h>

#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace
{

class Canvas : public QRasterWindow
{
public:
    explicit Canvas(QScreen* screen)
        : mImage(screen->size(), QImage::Format_RGB32), mName(screen->name())
    {
        mImage.fill(Qt::black);
        setScreen(screen);
        setGeometry(screen->geometry());
        showFullScreen();
    }

    /// Of the screen that it was made for.
    QSize screenSize() const { return mImage.size(); }

    void fill(const QRect& area, QRgb colour)
    {
        QPainter(&mImage).fillRect(area, QColor(colour));
        update(area);
    }

    /// Mutter 43 may lose a frame while the computer is busy: more of them come.
    void repeat()
    {
        connect(&mRepeat, &QTimer::timeout, this, [this] { update(); });
        mRepeat.start(500);
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        const QSize pixels = size() * devicePixelRatio();
        if (std::exchange(mPixels, pixels) != pixels)
            tell(QStringLiteral("size %1 %2").arg(pixels.width()).arg(pixels.height()));
        QPainter painter(this);
        for (const auto& part : event->region())
            painter.drawImage(part, mImage, part);
    }

    void touchEvent(QTouchEvent* event) override
    {
        if (event->type() == QEvent::TouchCancel)
            return tell(QStringLiteral("cancel"));
        for (const auto& point : event->points()) {
            if (point.state() == QEventPoint::Pressed)
                tell(QStringLiteral("finger down"), point.position());
            else if (point.state() == QEventPoint::Updated)
                tell(QStringLiteral("finger motion"), point.position());
            else if (point.state() == QEventPoint::Released)
                tell(QStringLiteral("finger up"));
        }
    }
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::Enter)
            tellOfPointer(static_cast<QEnterEvent*>(event)->position());
        return QRasterWindow::event(event);
    }
    void mouseMoveEvent(QMouseEvent* event) override { tellOfPointer(event->position()); }
    void mousePressEvent(QMouseEvent* event) override
    {
        tell(QStringLiteral("button %1 down").arg(event->button()), event->position());
    }
    void mouseReleaseEvent(QMouseEvent* event) override
    {
        tell(QStringLiteral("button %1 up").arg(event->button()), event->position());
    }
    void wheelEvent(QWheelEvent* event) override
    {
        // Its beginning and end move nothing.
        if (const auto turn = event->angleDelta(); !turn.isNull())
            tell(QStringLiteral("wheel %1 %2").arg(turn.x()).arg(turn.y()), event->position());
    }
    void keyPressEvent(QKeyEvent* event) override { tellOfKey(*event, "down"); }
    void keyReleaseEvent(QKeyEvent* event) override { tellOfKey(*event, "up"); }
    void focusInEvent(QFocusEvent*) override { tell(QStringLiteral("focus")); }

private:
    void tellOfKey(const QKeyEvent& event, const char* phase)
    {
        if (!event.isAutoRepeat())
            tell(QStringLiteral("key %1 %2 %3")
                     .arg(event.nativeScanCode() - 8)
                     .arg(phase, event.text()));
    }
    /// A motion may be told again with a click.
    void tellOfPointer(const QPointF& place)
    {
        if (std::exchange(mPointer, place) != place)
            tell(QStringLiteral("pointer"), place);
    }
    void tell(const QString& what, std::optional<QPointF> place = std::nullopt)
    {
        QTextStream line(stdout);
        line << mName << " " << what;
        if (place)
            line << " " << place->x() * devicePixelRatio() << ","
                 << place->y() * devicePixelRatio();
        line << Qt::endl;
    }

    QImage mImage;
    QString mName;
    QSize mPixels; ///< told of last
    std::optional<QPointF> mPointer;
    QTimer mRepeat;
};

class Painter : public QObject
{
public:
    Painter()
    {
        connect(&mInput, &QSocketNotifier::activated, this, &Painter::read);
        // A screen may come after the order to paint on it.
        connect(&mRetry, &QTimer::timeout, this, &Painter::obeyAll);
        mRetry.start(5);
        connect(&mRepeat, &QTimer::timeout, this, &Painter::showCursor);
    }

private:
    void read()
    {
        char bytes[4096];
        const auto count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0)
            return QGuiApplication::quit();
        mText.append(bytes, count);
        obeyAll();
    }

    void obeyAll()
    {
        for (auto end = mText.indexOf('\n'); end >= 0; end = mText.indexOf('\n')) {
            if (!obey(QString::fromLatin1(mText.first(end)).split(' ')))
                return;
            mText.remove(0, end + 1);
        }
    }

    bool obey(const QStringList& words)
    {
        if (words.first() == QStringLiteral("cover"))
            return cover(words);
        if (words.first() == QStringLiteral("window"))
            return openWindow(words);
        std::vector<unsigned> numbers;
        for (const auto& word : words.mid(1))
            numbers.push_back(static_cast<unsigned>(word.toLongLong()));
        return words.first() == QStringLiteral("fill") ? fill(numbers) : setCursor(numbers);
    }

    bool fill(const std::vector<unsigned>& numbers)
    {
        const QRect area(int(numbers.at(0)), int(numbers.at(1)), int(numbers.at(2)),
                         int(numbers.at(3)));
        auto* screen = QGuiApplication::screenAt(area.topLeft());
        if (!screen)
            return false;
        auto& canvas = mCanvases[screen];
        if (!canvas || canvas->screenSize() != screen->size())
            canvas = std::make_unique<Canvas>(screen);
        canvas->setCursor(mCursor);
        canvas->fill(area.translated(-screen->geometry().topLeft()), numbers.at(4));
        return true;
    }

    bool cover(const QStringList& words)
    {
        const QSize size(words.at(2).toInt(), words.at(3).toInt());
        const double scale = words.at(4).toDouble();
        for (auto* screen : QGuiApplication::screens()) {
            // Newer versions of Qt divide by the scale, also where the desktop does not.
            const bool fits = screen->size() == size || screen->size() * scale == size;
            if (screen->name() != words.at(1) || !fits || screen->devicePixelRatio() != scale)
                continue;
            auto& canvas = mCanvases[screen] = std::make_unique<Canvas>(screen);
            canvas->fill({{}, screen->size()}, words.at(5).toUInt());
            canvas->repeat();
            return true;
        }
        return false;
    }

    bool openWindow(const QStringList& words)
    {
        auto& window = mWindows.emplace_back(std::make_unique<QRasterWindow>());
        window->setTitle(words.at(1));
        window->resize(words.at(2).toInt(), words.at(3).toInt());
        window->show();
        return true;
    }

    bool setCursor(const std::vector<unsigned>& numbers)
    {
        QPixmap image(int(numbers.at(0)), int(numbers.at(0)));
        image.fill(QColor(numbers.at(1)));
        mCursor = QCursor(image, int(numbers.at(2)), int(numbers.at(2)));
        showCursor();
        mRepeat.start(200);
        return true;
    }

    /// Mutter 43 may look at a new image before it is drawn, and then not again: so it is hidden
    /// and shown once more.
    void showCursor()
    {
        for (const auto& [screen, canvas] : mCanvases) {
            for (const auto& cursor : {mCursor, QCursor(Qt::BlankCursor), mCursor})
                canvas->setCursor(cursor);
        }
    }

    QSocketNotifier mInput{STDIN_FILENO, QSocketNotifier::Read};
    QTimer mRetry;
    QTimer mRepeat;
    QByteArray mText;
    QCursor mCursor;
    std::map<QScreen*, std::unique_ptr<Canvas>> mCanvases;
    std::vector<std::unique_ptr<QRasterWindow>> mWindows;
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "wayland");
    qputenv("QT_WAYLAND_DISABLE_WINDOWDECORATION", "1");
    QCoreApplication::setAttribute(Qt::AA_SynthesizeMouseForUnhandledTouchEvents, false);
    QGuiApplication application(argc, argv);
    const Painter painter;
    return QGuiApplication::exec();
}
