#include "Platform/Desktop/Updates/DesktopNetworkCondition.h"

#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"
#include "Platform/Desktop/Updates/NetworkQuestion.h"

#include <QFile>
#include <QList>

#include <utility>

namespace farview
{
namespace
{

constexpr qint64 largestTable = 1024 * 1024;
constexpr unsigned routeIsUp = 0x0001;
constexpr unsigned routeRejects = 0x0200;

QList<QByteArray> linesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(largestTable).split('\n')
                                          : QList<QByteArray>();
}

bool isUsable(const QByteArray& flags)
{
    const unsigned bits = flags.toUInt(nullptr, 16);
    return (bits & routeIsUp) && !(bits & routeRejects);
}

/// "eth0 00000000 0102A8C0 0003 ...": interface, destination, gateway, flags.
bool leadsOut(const QByteArray& line)
{
    const auto fields = line.simplified().split(' ');
    return fields.size() > 3 && fields[1] == "00000000" && isUsable(fields[3]);
}

/// "000...0 00 000...0 00 gateway metric references uses flags eth0".
bool leadsOut6(const QByteArray& line)
{
    const auto fields = line.simplified().split(' ');
    return fields.size() > 9 && fields[0].count('0') == fields[0].size() && fields[1] == "00" &&
           fields[9] != "lo" && isUsable(fields[8]);
}

bool hasRoadOut(const NetworkPlaces& places)
{
    const auto lines = linesOf(places.routes);
    const auto lines6 = linesOf(places.routes6);
    return std::any_of(lines.begin(), lines.end(), leadsOut) ||
           std::any_of(lines6.begin(), lines6.end(), leadsOut6);
}

} // namespace

DesktopNetworkCondition::DesktopNetworkCondition(NetworkPlaces places) : mPlaces(std::move(places))
{
}

void DesktopNetworkCondition::ask(std::weak_ptr<void> target, Answer then)
{
    const auto answer = [target = std::move(target), then = std::move(then)](NetworkKind kind) {
        if (const auto kept = target.lock())
            then(kind);
    };
    if (!hasRoadOut(mPlaces))
        return answer(NetworkKind::absent);
    const QString address =
        mPlaces.busAddress.isEmpty() ? AvahiDaemonLink::systemBusAddress() : mPlaces.busAddress;
    auto* question = new NetworkQuestion(address, this);
    question->ask(answer);
}

} // namespace farview
