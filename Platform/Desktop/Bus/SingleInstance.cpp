#include "Platform/Desktop/Bus/SingleInstance.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace farview
{
namespace
{

constexpr int turnLimit = 5000; // milliseconds
constexpr std::size_t longestBusName = 255;
constexpr std::size_t roomForSuffix = 16;
constexpr unsigned nowPrimaryOwner = 1;
constexpr unsigned alreadyOwner = 4;

bool canBeInBusName(unsigned char letter)
{
    return letter < 0x80 && (std::isalnum(letter) || letter == '_' || letter == '-');
}

/// Parts of a bus name are not empty and do not begin with a digit.
void closePart(std::string& name, const std::string& part)
{
    if (part.empty())
        return;
    if (!name.empty())
        name += '.';
    if (std::isdigit(static_cast<unsigned char>(part.front())))
        name += '_';
    name += part;
}

} // namespace

std::string applicationBusName(const std::string& bundleIdentifier)
{
    std::string name;
    std::string part;
    for (const char letter : bundleIdentifier.substr(0, longestBusName / 2)) {
        if (letter == '.')
            closePart(name, std::exchange(part, {}));
        else
            part += canBeInBusName(static_cast<unsigned char>(letter)) ? letter : '_';
    }
    closePart(name, part);
    if (name.empty())
        name = "Application";
    return name.find('.') == std::string::npos ? "com.quillon." + name : name;
}

SingleInstance::SingleInstance(SessionBus& bus, const std::string& bundleIdentifier)
    : mBus(bus), mName(applicationBusName(bundleIdentifier)), mTurnName(mName + ".Turn")
{
    mLimit.setSingleShot(true);
    connect(&mLimit, &QTimer::timeout, this, &SingleInstance::beginTurn);
    connect(&mBus, &SessionBus::connected, this, &SingleInstance::rejoinBus);
    joinBus();
}

SingleInstance::~SingleInstance()
{
    release();
    mBus.releaseName(mTurnName);
    mBus.connection().unregisterObject(objectPath);
}

void SingleInstance::acquire(std::function<void(bool isTheOne)> then)
{
    mIsWanted = true;
    takeName(std::move(then));
}

/// Without a bus everybody is the one.
void SingleInstance::takeName(std::function<void(bool isTheOne)> then)
{
    mBus.requestName(mName, this, [this, then = std::move(then)](bool isOurs) {
        if (!mIsWanted)
            return;
        mIsWanted = isOurs || !mBus.isConnected();
        then(mIsWanted);
    });
}

void SingleInstance::whenItsTurnComes(std::function<void()> action)
{
    mAction = std::move(action);
    mWaitsForTurn = true;
    mLimit.start(turnLimit);
    queueForTurn();
}

void SingleInstance::release()
{
    if (std::exchange(mIsWanted, false))
        mBus.releaseName(mName);
}

bool SingleInstance::isStaying(const QDBusMessage& call)
{
    // What was posted before this call may still wait for an answer of the bus about its sender.
    // The answer to a question of our own comes after that one.
    call.setDelayedReply(true);
    mBus.ask(SessionBus::busCall(QStringLiteral("GetId")), this,
             [this, call](const QDBusMessage&) { mBus.send(call.createReply(mIsWanted)); });
    return mIsWanted;
}

void SingleInstance::beginTurn()
{
    mLimit.stop();
    mWaitsForTurn = false;
    if (const auto action = std::exchange(mAction, nullptr))
        action();
}

void SingleInstance::joinBus()
{
    auto connection = mBus.connection();
    if (!connection.isConnected())
        return;
    connection.registerObject(objectPath, this, QDBusConnection::ExportScriptableSlots);
    connection.connect(QStringLiteral("org.freedesktop.DBus"), QString(),
                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameAcquired"),
                       {QString::fromStdString(mTurnName)}, QString(), this, SLOT(beginTurn()));
}

void SingleInstance::rejoinBus(bool again)
{
    joinBus();
    if (!again)
        return;
    queueForTurn();
    if (!mIsWanted)
        return;
    takeName([this](bool isTheOne) {
        if (!isTheOne)
            Q_EMIT replaced();
    });
}

void SingleInstance::queueForTurn()
{
    auto call = SessionBus::busCall(QStringLiteral("RequestName"));
    call << QString::fromStdString(mTurnName) << 0u;
    mBus.ask(call, this, [this](const QDBusMessage& reply) {
        const unsigned result = reply.signature() == u"u" ? reply.arguments().at(0).toUInt() : 0;
        const bool isQueued = result != 0 && result != nowPrimaryOwner && result != alreadyOwner;
        if (mWaitsForTurn && !isQueued)
            beginTurn();
    });
}

} // namespace farview
