#include "Platform/Desktop/Screens/X11/X11VirtualScreens.h"

#include "Platform/Desktop/Screens/X11/MonitorThread.h"
#include "Platform/Desktop/Screens/X11/X11InputSink.h"

#include <atomic>
#include <cstdlib>
#include <thread>
#include <utility>

namespace farview
{
namespace
{

class X11VirtualScreen final : public VirtualScreen
{
public:
    /// `input` may be null.
    X11VirtualScreen(RunLoop& loop, const ScreenWish& wish, const std::string& watcher,
                     VirtualScreens::Delegate delegate, std::unique_ptr<X11InputSink> input)
        : mThread(wish, watcher,
                  [&loop, life = std::weak_ptr<void>(mLife), delegate,
                   follower = input ? input->follower() : nullptr](ShownMonitor::News news) {
                      if (follower)
                          news(*follower);
                      loop.post(life, [delegate, news = std::move(news)] {
                          if (const auto told = delegate.lock())
                              news(*told);
                      });
                  }),
          mInput(std::move(input))
    {
    }

    void resize(int width, int height) override
    {
        lift();
        mThread.resize({width, height});
    }
    /// An X server has no scale of a single monitor.
    void setScale(double) override {}
    void place(PixelPoint corner) override
    {
        lift();
        mThread.place(corner);
    }
    ScreenSource& frames() override { return mThread.screen(); }
    CursorSource& cursor() override { return mThread.screen(); }
    InputSink& input() override { return mInput ? static_cast<InputSink&>(*mInput) : mNoInput; }
    void setKeepsWindows(bool flag) override { mThread.setKeepsWindows(flag); }
    WindowKeeping windowKeeping() const override
    {
        return mThread.canKeepWindows() ? WindowKeeping::byFarview : WindowKeeping::nobody;
    }

private:
    /// What is down, where it is.
    void lift()
    {
        if (mInput)
            mInput->releaseAll();
    }

    /// The target of everything that is posted: nothing is told after the object's end.
    std::shared_ptr<void> mLife = std::make_shared<int>();
    NoInput mNoInput;
    MonitorThread mThread;
    /// Goes first: what is down is lifted on this monitor.
    std::unique_ptr<X11InputSink> mInput;
};

ScreenAvailability availabilityOf(xcb_connection_t* connection)
{
    RandrServer server(connection);
    const auto obstacle = obstacleTo(server);
    if (obstacle)
        return {std::nullopt, *obstacle};
    const auto layout = server.layout();
    if (!layout)
        return {std::nullopt, ScreenObstacle::gone};
    return wayToAMonitor(server, *layout);
}

} // namespace

/// One question for what is possible, on its way.
class X11VirtualScreens::Question
{
public:
    explicit Question(std::function<void(const ScreenAvailability&)> answer)
        : mThread([this, answer = std::move(answer)] { ask(answer); })
    {
    }
    ~Question()
    {
        mBreaker.cut();
        mThread.join();
    }
    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;

    bool isAnswered() const { return mIsAnswered; }

private:
    void ask(const std::function<void(const ScreenAvailability&)>& answer)
    {
        const auto connection = connectX(nullptr);
        const BreakerHold hold(mBreaker, connection.get());
        answer(availabilityOf(connection.get()));
        mIsAnswered = true;
    }

    ConnectionBreaker mBreaker;
    std::atomic<bool> mIsAnswered = false;
    std::thread mThread;
};

X11VirtualScreens::X11VirtualScreens(RunLoop& loop, std::string watcher,
                                     MakeInputDevices makeDevices)
    : mLoop(loop), mWatcher(std::move(watcher)), mMakeDevices(std::move(makeDevices))
{
}

X11VirtualScreens::~X11VirtualScreens() = default;

void X11VirtualScreens::availability(std::weak_ptr<void> target, Answer then)
{
    std::erase_if(mQuestions, [](const auto& question) { return question->isAnswered(); });
    const WithoutSignals scope;
    mQuestions.push_back(std::make_unique<Question>(
        [this, target = std::move(target), then = std::move(then)](const auto& found) {
            mLoop.post(target, [then, found] { then(found); });
        }));
}

std::unique_ptr<VirtualScreen> X11VirtualScreens::open(const ScreenWish& wish, Delegate delegate)
{
    auto input = wish.input ? std::make_unique<X11InputSink>(mMakeDevices) : nullptr;
    return std::make_unique<X11VirtualScreen>(mLoop, wish, mWatcher, std::move(delegate),
                                              std::move(input));
}

} // namespace farview
