#include "Tests/Support/PrivateSway.h"

#include "Tests/Support/WaitUntil.h"

#include <QJsonDocument>

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <set>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace
{

constexpr int patience = 10000; // milliseconds
constexpr char magic[] = {'i', '3', '-', 'i', 'p', 'c'};
enum Question : std::uint32_t { command = 0, getOutputs = 3, getTree = 4 };

} // namespace

PrivateSway::PrivateSway(const std::vector<std::string>& monitors, const std::string& configuration)
{
    std::string lines = "xwayland disable\ndefault_border none\n";
    int left = 0;
    for (std::size_t index = 0; index < monitors.size(); ++index) {
        lines += "output HEADLESS-" + std::to_string(index + 1) + " resolution " + monitors[index];
        // One that is alone is placed by sway itself, several in whatever order.
        lines += monitors.size() > 1 ? " position " + std::to_string(left) + " 0\n" : "\n";
        left += std::stoi(monitors[index]);
    }
    const auto file = mFolder.write("sway.conf", lines + configuration);
    std::string start = "unset WAYLAND_DISPLAY; exec ";
    // It refuses to run as root.
    if (::getuid() == 0) {
        constexpr int nobody = 65534;
        if (::chown(mFolder.path().c_str(), nobody, nobody) != 0)
            throw std::runtime_error("no folder for sway");
        start += "setpriv --reuid=65534 --regid=65534 --clear-groups --pdeathsig KILL ";
    }
    start += "sway -c '" + file + "' >'" + mFolder.path("log") + "' 2>&1";
    mSway = std::make_unique<ChildProcess>(
        std::vector<std::string>{"sh", "-c", start},
        ChildProcess::Environment{{"XDG_RUNTIME_DIR", mFolder.path()},
                                  {"WLR_BACKENDS", "headless"},
                                  {"WLR_HEADLESS_OUTPUTS", std::to_string(monitors.size())},
                                  {"WLR_LIBINPUT_NO_DEVICES", "1"},
                                  {"WLR_RENDERER", "pixman"}});
    // A socket that is there may not listen yet.
    const auto isUp = [this] {
        QLocalSocket trial;
        trial.connectToServer(QString::fromStdString(socket()));
        return std::filesystem::exists(mFolder.path("wayland-1")) &&
               trial.waitForConnected(patience);
    };
    if (!waitUntil(isUp, std::chrono::seconds(30)))
        throw std::runtime_error("no sway");
    // It answers once it has done what its configuration says.
    if (SwayArranger(*this).outputs().size() != qsizetype(monitors.size()))
        throw std::runtime_error("sway has other monitors");
}

bool PrivateSway::canRemoveOutputs()
{
    FILE* const pipe = ::popen("sway --version", "r");
    int major = 0;
    int minor = 0;
    const bool isKnown = std::fscanf(pipe, "sway version %d.%d", &major, &minor) == 2;
    ::pclose(pipe);
    return isKnown && (major > 1 || minor >= 8);
}

SwayArranger::SwayArranger(PrivateSway& desktop)
{
    // The socket is there a moment before sway listens.
    const auto connects = [&] {
        mSocket.connectToServer(QString::fromStdString(desktop.socket()));
        return mSocket.waitForConnected(patience);
    };
    if (!waitUntil(connects, std::chrono::milliseconds(patience)))
        throw std::runtime_error("sway does not listen");
}

QByteArray SwayArranger::ask(std::uint32_t type, const std::string& payload)
{
    const std::array<std::uint32_t, 2> numbers{static_cast<std::uint32_t>(payload.size()), type};
    mSocket.write(magic, sizeof magic);
    mSocket.write(reinterpret_cast<const char*>(numbers.data()), sizeof numbers);
    mSocket.write(payload.data(), static_cast<qint64>(payload.size()));
    std::uint32_t size = 0;
    std::memcpy(&size, read(sizeof magic + sizeof numbers).constData() + sizeof magic, sizeof size);
    return read(size);
}

QByteArray SwayArranger::read(qint64 size)
{
    while (mSocket.bytesAvailable() < size) {
        if (!mSocket.waitForReadyRead(patience))
            throw std::runtime_error("sway does not answer");
    }
    return mSocket.read(size);
}

bool SwayArranger::run(const std::string& command)
{
    const auto answers = QJsonDocument::fromJson(ask(Question::command, command)).array();
    bool isDone = !answers.isEmpty();
    for (const auto& answer : answers)
        isDone = isDone && answer[QStringLiteral("success")].toBool();
    return isDone;
}

QJsonArray SwayArranger::outputs() { return QJsonDocument::fromJson(ask(getOutputs)).array(); }

QJsonObject SwayArranger::tree() { return QJsonDocument::fromJson(ask(getTree)).object(); }

std::string SwayArranger::layout()
{
    std::set<std::string> lines;
    for (const auto& output : outputs()) {
        std::ostringstream text;
        const auto area = output[QStringLiteral("rect")];
        const auto side = [&](const char* name) { return area[QLatin1String(name)].toInt(); };
        text << output[QStringLiteral("name")].toString().toStdString() << " " << side("x") << ","
             << side("y") << " " << side("width") << "x" << side("height") << " x"
             << output[QStringLiteral("scale")].toDouble() << "\n";
        lines.insert(text.str());
    }
    return std::accumulate(lines.begin(), lines.end(), std::string());
}

void SwayArranger::movePointer(int x, int y)
{
    run("seat - cursor set " + std::to_string(x) + " " + std::to_string(y));
}
