#include "Platform/Desktop/Screens/Mutter/MutterVirtualScreens.h"

#include "Platform/Desktop/Screens/Mutter/MutterMonitor.h"

#include <QDBusVariant>

#include <utility>

namespace farview
{
namespace
{

/// From this one on a monitor can be made that programs take for a real one.
constexpr int firstVersion = 3;

/// One question for what is possible. Deletes itself after the answer.
class Question : public QObject
{
public:
    Question(SessionBus& bus, std::weak_ptr<void> target, VirtualScreens::Answer then)
        : QObject(&bus), mBus(bus), mTarget(std::move(target)), mThen(std::move(then))
    {
    }

    void ask()
    {
        askVersion("RemoteDesktop", [this](int) {
            askVersion("ScreenCast", [this](int version) {
                version < firstVersion ? answer(ScreenObstacle::protocolMissing) : askForLock();
            });
        });
    }

private:
    void askVersion(const char* part, std::function<void(int)> then)
    {
        const QString name = QLatin1String(part);
        auto get = QDBusMessage::createMethodCall(
            QStringLiteral("org.gnome.Mutter.") + name, QStringLiteral("/org/gnome/Mutter/") + name,
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
        get << QStringLiteral("org.gnome.Mutter.") + name << QStringLiteral("Version");
        get.setAutoStartService(false);
        mBus.ask(get, this, [this, then = std::move(then)](const QDBusMessage& reply) {
            if (reply.signature() == u"v")
                then(reply.arguments().at(0).value<QDBusVariant>().variant().toInt());
            else
                findObstacle(mBus, this, reply, [this](auto obstacle) { answer(obstacle); });
        });
    }

    void askForLock()
    {
        askWhetherLocked(mBus, this, [this](bool isLocked) {
            answer(isLocked ? std::optional(ScreenObstacle::locked) : std::nullopt);
        });
    }

    void answer(std::optional<ScreenObstacle> obstacle)
    {
        deleteLater();
        const auto target = mTarget.lock();
        if (target && obstacle)
            mThen({std::nullopt, *obstacle});
        else if (target)
            mThen({ScreenWay::gnome, {}});
    }

    SessionBus& mBus;
    std::weak_ptr<void> mTarget;
    VirtualScreens::Answer mThen;
};

} // namespace

void MutterVirtualScreens::availability(std::weak_ptr<void> target, Answer then)
{
    auto* question = new Question(mBus, std::move(target), std::move(then));
    question->ask();
}

std::unique_ptr<VirtualScreen> MutterVirtualScreens::open(const ScreenWish& wish, Delegate delegate)
{
    auto layout = mLayout.lock();
    if (!layout)
        mLayout = layout = std::make_shared<MutterLayout>(mLoop, mBus);
    return std::make_unique<MutterMonitor>(mLoop, mBus, layout, wish, std::move(delegate));
}

} // namespace farview
