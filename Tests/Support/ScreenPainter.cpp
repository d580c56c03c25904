#include "Tests/Support/ScreenPainter.h"

#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

ScreenPainter::ScreenPainter()
{
    // No end of the pipe stays open in other programs that the test starts.
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    mCommands = ends[1];
    const auto reader = std::to_string(ends[0]);
    ::fcntl(ends[0], F_SETFD, 0);
    mPainter = std::make_unique<ChildProcess>(
        std::vector<std::string>{"sh", "-c",
                                 "exec " FARVIEW_SCREEN_PAINTER " <&" + reader + " " + reader +
                                     "<&- >'" + mFolder.path("input") + "'"});
    ::close(ends[0]);
}

ScreenPainter::~ScreenPainter() { ::close(mCommands); }

void ScreenPainter::fill(int x, int y, int width, int height, std::uint32_t colour)
{
    std::ostringstream line;
    line << "fill " << x << " " << y << " " << width << " " << height << " " << colour << "\n";
    say(line.str());
}

void ScreenPainter::cover(const std::string& monitor, int width, int height, double scale,
                          std::uint32_t colour)
{
    std::ostringstream line;
    line << "cover " << monitor << " " << width << " " << height << " " << scale << " " << colour
         << "\n";
    say(line.str());
}

void ScreenPainter::setCursor(int side, std::uint32_t colour, int hotspot)
{
    std::ostringstream line;
    line << "cursor " << side << " " << colour << " " << hotspot << "\n";
    say(line.str());
}

void ScreenPainter::openWindow(const std::string& title, int width, int height)
{
    std::ostringstream line;
    line << "window " << title << " " << width << " " << height << "\n";
    say(line.str());
}

std::vector<std::string> ScreenPainter::takeInput()
{
    std::ifstream file(mFolder.path("input"));
    file.seekg(mTaken);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line) && !file.eof(); mTaken = file.tellg())
        lines.push_back(line);
    return lines;
}

void ScreenPainter::say(const std::string& line)
{
    if (::write(mCommands, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        throw std::runtime_error("the painter does not listen");
}
