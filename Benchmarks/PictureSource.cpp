// Shows a scene on the right-most screen of a display, without the pointer, and says in a file when
// each picture was drawn. Its last picture stays until the program is ended.
//
// usage: picture-source typing|scrolling|film|nothing|touching SECONDS FILE
//   touching   a letter for each finger that comes down on it, until it is ended

#include "Benchmarks/Figures.h"
#include "Benchmarks/PictureRun.h"
#include "Tests/Screen/Scenes.h"

#include <QBackingStore>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QTouchEvent>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace
{

using namespace farview;
using Clock = std::chrono::steady_clock;

constexpr int scrolledRows = 48; // three lines of text at a time, as a mouse wheel does
constexpr int filmLength = 12;   // then the film begins anew
constexpr QRect whole(0, 0, kPictureWidth, kPictureHeight);
constexpr QRect markedPart(kMark.x, kMark.y, kMark.width, kMark.height);

/// Pictures that are made before they are shown, one below the other.
class Scene
{
public:
    Scene(const std::string& name, double seconds)
        : mIsFilm(name == "film"), mIsScrolling(name == "scrolling"),
          mPace(mIsFilm || mIsScrolling ? 60 : 10),
          mSteps(name == "nothing" ? 0 : static_cast<int>(seconds * mPace)),
          mIsTouched(name == "touching"), mMade(kPictureWidth, kPictureHeight + furtherRows())
    {
        Scenes scenes;
        const auto all = wholeOf(mMade);
        mIsFilm ? scenes.takePhotograph(mMade, all) : scenes.writeText(mMade, all);
    }

    int steps() const { return mSteps; }
    /// A finger makes each step, and not the time.
    bool isTouched() const { return mIsTouched; }
    std::chrono::microseconds timeOf(int step) const
    {
        return std::chrono::microseconds(1000000L * step / mPace);
    }
    /// What a step paints. Someone types letter after letter, in a line in the middle.
    QRect partOf(int step) const
    {
        const bool isLetter = step > 0 && !mIsFilm && !mIsScrolling;
        return isLetter ? QRect(8 * (step % 200), 512, 8, 10) : whole;
    }
    void paint(QPainter& painter, int step) const
    {
        const QRect part = partOf(step);
        const auto view = mMade.view();
        const QImage made(reinterpret_cast<const uchar*>(view.pixels), view.width, view.height,
                          view.stride * 4, QImage::Format_RGB32);
        painter.drawImage(part.topLeft(), made, part.translated(0, firstRow(step)));
    }

private:
    int furtherRows() const
    {
        return mIsFilm        ? (filmLength - 1) * kPictureHeight
               : mIsScrolling ? mSteps * scrolledRows
                              : kPictureHeight;
    }
    int firstRow(int step) const
    {
        return mIsFilm        ? step % filmLength * kPictureHeight
               : mIsScrolling ? step * scrolledRows
               : step > 0     ? kPictureHeight
                              : 0;
    }

    bool mIsFilm;
    bool mIsScrolling;
    int mPace; ///< pictures a second
    int mSteps;
    bool mIsTouched;
    Picture mMade;
};

class SourceWindow final : public QWindow
{
public:
    SourceWindow(const Scene& scene, PictureRun& run) : mScene(scene), mRun(run)
    {
        setSurfaceType(RasterSurface);
        setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
        setCursor(Qt::BlankCursor);
        mTimer.setTimerType(Qt::PreciseTimer);
        mTimer.setSingleShot(true);
        mTimer.callOnTimeout(this, [this] { next(); });
    }

private:
    void exposeEvent(QExposeEvent* /*event*/) override
    {
        if (!isExposed() || mStep >= 0)
            return;
        mStore.resize(size());
        draw(0);
        // The whole picture has to arrive before anything is measured.
        mBegin = Clock::now() + std::chrono::seconds(1);
        mTimer.start(std::chrono::seconds(1));
    }
    void touchEvent(QTouchEvent* event) override
    {
        if (event->type() == QEvent::TouchBegin && mScene.isTouched() && mRun.isMoving)
            draw(mStep + 1);
        event->accept();
    }
    void next()
    {
        mRun.isMoving = mStep < mScene.steps() || mScene.isTouched();
        if (mScene.isTouched())
            return;
        if (!mRun.isMoving)
            return end();
        draw(mStep + 1);
        const auto due = mBegin + mScene.timeOf(mStep);
        mTimer.start(std::max(std::chrono::milliseconds(0),
                              std::chrono::round<std::chrono::milliseconds>(due - Clock::now())));
    }
    void draw(int step)
    {
        mStep = step;
        const auto number = static_cast<std::uint16_t>(mRun.newest + 1);
        const QRegion changed = QRegion(mScene.partOf(step)) + markedPart;
        mStore.beginPaint(changed);
        QPainter painter(mStore.paintDevice());
        mScene.paint(painter, step);
        paintMark(painter, number);
        painter.end();
        mStore.endPaint();
        mRun.drawn[number] = microsecondsNow();
        mRun.newest = number;
        mStore.flush(changed);
    }
    static void paintMark(QPainter& painter, std::uint16_t number)
    {
        for (int column = 0; column < 16; ++column) {
            for (int row = 0; row < 2; ++row)
                painter.fillRect(kMark.x + column * kMarkSquare, kMark.y + row * kMarkSquare,
                                 kMarkSquare, kMarkSquare,
                                 isMarkWhite(number, column, row) ? Qt::white : Qt::black);
        }
    }
    /// Paints once more what is seen: the last whole picture, and what came upon it.
    void end()
    {
        QImage last(reinterpret_cast<uchar*>(mRun.last.data()), kPictureWidth, kPictureHeight,
                    kPictureWidth * 4, QImage::Format_RGB32);
        QPainter painter(&last);
        int step = mStep;
        while (mScene.partOf(step) != whole)
            --step;
        for (; step <= mStep; ++step)
            mScene.paint(painter, step);
        paintMark(painter, mRun.newest);
        mRun.hasEnded = true;
    }

    const Scene& mScene;
    PictureRun& mRun;
    QBackingStore mStore{this};
    QTimer mTimer;
    Clock::time_point mBegin;
    int mStep = -1;
};

bool isFurtherRight(const QScreen* left, const QScreen* right)
{
    return left->geometry().x() < right->geometry().x();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s typing|scrolling|film|nothing|touching SECONDS FILE\n",
                     argv[0]);
        return 2;
    }
    PictureRun* run = openPictureRun(argv[3]);
    if (!run)
        return 1;
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    QGuiApplication application(argc, argv);
    const Scene scene(argv[1], std::atof(argv[2]));
    SourceWindow window(scene, *run);
    const auto screens = QGuiApplication::screens();
    QScreen* screen = *std::max_element(screens.begin(), screens.end(), isFurtherRight);
    window.setScreen(screen);
    window.setGeometry(screen->geometry());
    window.showFullScreen();
    return QGuiApplication::exec();
}
