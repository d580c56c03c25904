#include "Tests/Support/PrivateBus.h"

#include "Tests/Support/WaitUntil.h"

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

std::string configuration(const std::string& address, PrivateBus::Guests guests)
{
    const std::string everyone =
        guests == PrivateBus::Guests::everyone ? "<allow user=\"*\"/>" : "";
    return "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\""
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
           "<busconfig><type>session</type><listen>" +
           address + "</listen><auth>EXTERNAL</auth><policy context=\"default\">" + everyone +
           "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
           "<allow own=\"*\"/></policy></busconfig>";
}

bool accepts(const std::string& path)
{
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    const bool accepted =
        ::connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    ::close(descriptor);
    return accepted;
}

} // namespace

PrivateBus::PrivateBus(Guests guests, Owner owner)
    : mOwner(owner), mSocket(mFolder.path("bus")), mAddress("unix:path=" + mSocket)
{
    if (guests == Guests::everyone)
        std::filesystem::permissions(mFolder.path(), std::filesystem::perms{0711});
    if (owner == Owner::nobody)
        std::filesystem::permissions(mFolder.path(), std::filesystem::perms{0777});
    mFolder.write("bus.conf", configuration(mAddress, guests));
    start();
}

void PrivateBus::stop()
{
    mProcess.reset();
    std::filesystem::remove(mSocket);
}

void PrivateBus::start()
{
    std::vector<std::string> command = {"dbus-daemon", "--nofork", "--nopidfile",
                                        "--config-file=" + mFolder.path("bus.conf")};
    if (mOwner == Owner::nobody)
        command.insert(command.begin(),
                       {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"});
    mProcess = std::make_unique<ChildProcess>(command);
    if (!waitUntil([this] { return accepts(mSocket); }))
        throw std::runtime_error("the private bus does not start");
}
