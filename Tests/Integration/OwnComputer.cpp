#include "Tests/Integration/OwnComputer.h"

#include "Platform/Posix/Settings/PreferencesLocations.h"
#include "Tests/Support/WaitUntil.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace farview
{
namespace
{

namespace fs = std::filesystem;

constexpr const char* runs = "/run/test/";
constexpr const char* peer = "/opt/peer";

std::string quoted(const std::vector<std::string>& command)
{
    std::string line;
    for (const auto& word : command)
        line += "'" + word + "' ";
    return line;
}

} // namespace

OwnComputer::OwnComputer()
{
    ::umask(022);
    // The daemons of this computer find its bus where it is; only users are misled.
    ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    // What an earlier test of this run has left.
    for (const char* each : {"/etc/farview", "/etc/polkit-1/rules.d/10-test.rules", "/opt/farview",
                             "/run/dbus/system_bus_socket", "/run/polkitd.log", runs})
        fs::remove_all(each);
    fs::create_directories(runs);
    fs::permissions(runs, fs::perms::all);
    fs::copy_file(FARVIEW_PEER, peer, fs::copy_options::overwrite_existing);
    install();
}

void OwnComputer::install()
{
    const auto [status, output] =
        run({FARVIEW_CMAKE, "--install", FARVIEW_BINARY_DIR, "--component", "PrivilegedHelpers",
             "--prefix", "/opt/farview"});
    ASSERT_EQ(status, 0) << output;
    fs::copy_file(FARVIEW_BINARY_DIR "/Farview Preferences.prefPane/Contents/Info.plist",
                  std::string(bundle) + "/Contents/Info.plist",
                  fs::copy_options::overwrite_existing);
    for (const auto& each : fs::directory_iterator("/opt/farview/share/polkit-1/actions"))
        fs::copy(each.path(), "/usr/share/polkit-1/actions", fs::copy_options::overwrite_existing);
}

std::pair<int, std::string> OwnComputer::run(const std::vector<std::string>& command)
{
    std::string output;
    FILE* pipe = ::popen((quoted(command) + "2>&1").c_str(), "r");
    for (char buffer[4096]; pipe && std::fgets(buffer, sizeof buffer, pipe);)
        output += buffer;
    const int status = pipe ? ::pclose(pipe) : -1;
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

bool OwnComputer::waitFor(const std::function<bool()>& condition) { return waitUntil(condition); }

void OwnComputer::startBus()
{
    bus = std::make_unique<ChildProcess>(std::vector<std::string>{
        "sh", "-c",
        "exec dbus-daemon --system --nofork --nopidfile --nosyslog 2>/run/test/bus.log"});
    ASSERT_TRUE(waitFor([] { return fs::exists("/run/dbus/system_bus_socket"); }));
}

void OwnComputer::startPolkit(const std::string& result)
{
    if (!result.empty())
        std::ofstream("/etc/polkit-1/rules.d/10-test.rules")
            << "polkit.addRule(function(action, subject) {\n"
               "  if (action.id.indexOf('com.quillon.') == 0) return polkit.Result."
            << result << ";\n});\n";
    polkit = std::make_unique<ChildProcess>(std::vector<std::string>{
        "sh", "-c", "exec /usr/lib/polkit-1/polkitd >/run/polkitd.log 2>&1"});
    ASSERT_TRUE(waitFor([] {
        return run({"pkaction", "--action-id", "com.quillon.displayresolutionson"}).first == 0;
    }));
}

void OwnComputer::forgetSetting() { fs::remove_all("/etc/farview"); }

std::vector<std::string> OwnComputer::as(const std::string& user,
                                         const std::vector<std::string>& command)
{
    // The variables are what a user might try to mislead programs with.
    std::vector<std::string> whole{"setpriv",
                                   "--reuid=" + user,
                                   "--regid=" + user,
                                   "--init-groups",
                                   "env",
                                   "-i",
                                   "-C",
                                   "/",
                                   "PATH=/usr/bin:/bin",
                                   "HOME=/run/home/" + user,
                                   "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent/bus"};
    // Sanitizers are told what they are told everywhere else.
    for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = std::getenv(name))
            whole.push_back(std::string(name) + "=" + value);
    }
    whole.insert(whole.end(), command.begin(), command.end());
    return whole;
}

std::unique_ptr<ChildProcess> OwnComputer::startPeer(const std::vector<std::string>& arguments,
                                                     const std::string& name)
{
    const std::string orders = runs + name + ".in";
    ::mkfifo(orders.c_str(), 0600);
    std::vector<std::string> command{peer};
    command.insert(command.end(), arguments.begin(), arguments.end());
    // Opened for both directions, so that neither side waits for the other.
    std::vector<std::string> shell{
        "sh", "-c",
        "exec \"$@\" <>" + orders + " >" + runs + name + ".out 2>" + runs + name + ".err", "sh"};
    const auto whole = as("fvuser", command);
    shell.insert(shell.end(), whole.begin(), whole.end());
    auto started = std::make_unique<ChildProcess>(shell);
    EXPECT_TRUE(waitFor([&] { return contains(name + ".out", "ready"); }))
        << text(name + ".err") << text(name + ".out");
    return started;
}

void OwnComputer::openPanel()
{
    panel = startPeer({"panel", bundle}, "panel");
    mOrders = ::open((std::string(runs) + "panel.in").c_str(), O_WRONLY | O_CLOEXEC);
}

void OwnComputer::startAgent(const std::string& mode)
{
    agent = startPeer({"agent", std::to_string(panel->pid()), mode}, "agent");
}

void OwnComputer::startTyping(const std::string& password)
{
    typing.emplace(as("fvuser", {"env", "-u", "DBUS_SYSTEM_BUS_ADDRESS", "pkttyagent", "--process",
                                 std::to_string(panel->pid())}),
                   password);
    // It says nothing when it is ready: what it prints comes with the question.
    ASSERT_TRUE(waitFor([] {
        std::ifstream log("/run/polkitd.log");
        std::ostringstream all;
        all << log.rdbuf();
        return all.str().find("Registered Authentication Agent") != std::string::npos;
    }));
}

std::string OwnComputer::tell(const std::string& order)
{
    const std::string line = order + "\n";
    const auto before = text("panel.out").size();
    EXPECT_EQ(::write(mOrders, line.data(), line.size()), static_cast<ssize_t>(line.size()));
    std::string answer;
    EXPECT_TRUE(waitFor([&] {
        answer = text("panel.out").substr(before);
        return answer.ends_with('\n');
    })) << order
        << "\n"
        << panelLog();
    return answer;
}

bool OwnComputer::sees(const std::string& text)
{
    return waitFor([&] {
        if (typing)
            typing->attend();
        return tell("look").find(text) != std::string::npos;
    });
}

std::string OwnComputer::text(const std::string& name)
{
    std::ostringstream all;
    all << std::ifstream(runs + name).rdbuf();
    return all.str();
}

std::string OwnComputer::settingFor(const std::string& user)
{
    auto [status, output] = run(as(user, {peer, "read"}));
    const auto last = output.find_last_of('\n', output.size() - 2);
    output = output.substr(last == std::string::npos ? 0 : last + 1);
    return status == 0 ? output.substr(0, output.find('\n')) : output;
}

std::string OwnComputer::settingFile()
{
    return PreferencesLocations(EnvironmentUse::ignored)
        .location("com.apple.windowserver", PreferencesUser::any, PreferencesHost::current)
        .path;
}

} // namespace farview
