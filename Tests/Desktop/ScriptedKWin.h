#pragma once

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/VideoNode.h"

#include "Platform/Types/PixelRect.h"

#include <QSocketNotifier>

#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct wl_client;
struct wl_display;
struct wl_global;
struct wl_resource;

namespace farview
{

/// A compositor that makes outputs as KWin does with a graphics device, and shows them through real
/// PipeWire nodes. For its length it is the desktop of this process.
class ScriptedKWin
{
public:
    struct Output {
        ScriptedKWin& desktop;
        std::string name;
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        double scale = 1;
        wl_global* global = nullptr;
        std::vector<wl_resource*> watchers{};
        wl_resource* stream = nullptr;
        std::unique_ptr<VideoNode> node{};
    };

    bool refuses = false;        ///< to make outputs
    bool arrangesInARow = false; ///< all outputs, when one comes

    /// With the user's outputs, of 1000x600 each.
    explicit ScriptedKWin(const std::vector<PixelPoint>& corners = {PixelPoint{}});
    ~ScriptedKWin();
    ScriptedKWin(const ScriptedKWin&) = delete;
    ScriptedKWin& operator=(const ScriptedKWin&) = delete;

    /// "User-0 0,0 1000x600 x1" for each, and a line end.
    std::string outputs() const;
    Output& output(const std::string& name);
    /// As when the user switches it off.
    void closeStream(const std::string& name);
    /// Leaves all programs.
    void end();

private:
    struct Change {
        Output* output;
        std::optional<PixelPoint> corner;
        std::optional<double> scale;
    };
    struct Requests;

    Output& add(const std::string& name, int x, int y, int width, int height);
    void remove(Output& output);
    void makeStream(wl_resource* stream, const std::string& name, int width, int height);
    void tell(Output& output);
    static void tell(Output& output, wl_resource* watcher);
    void serve();

    TemporaryFolder mFolder;
    ScopedEnvironment mWayland;
    wl_display* mDisplay;
    std::list<Output> mOutputs;
    std::vector<Change> mChanges;
    std::unique_ptr<QSocketNotifier> mNotifier;
};

} // namespace farview
