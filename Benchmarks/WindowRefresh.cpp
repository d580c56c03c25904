// What it costs to refresh everything the panel shows in its real window: up to the moment when the
// window has been laid out and painted again.
//
// usage: window-refresh BUNDLE [Google Benchmark's options]

#include "Benchmarks/DisplayRefresh.h"
#include "Controls/Qt/Forms/InterfaceFile.h"

#include <QApplication>

#include <cstdio>

namespace
{

std::string bundlePath;

/// The pane in the window that its interface file describes.
class WindowWithDevices : public ListedDevices
{
public:
    explicit WindowWithDevices(long count) : ListedDevices(1)
    {
        bundle = fake.bundles.add(bundlePath);
        bundle->addResource("PreferencePane", "ui");
        pane = std::make_shared<FVEPreferencePane>(fake.platform());
        pane->initWithBundle(bundle);
        std::string error;
        mWindow = farview::InterfaceFile(*bundle, pane->mainNibName()).load(pane, error);
        if (!mWindow)
            throw std::runtime_error(error);
        mWindow->show();
        load();
        list(count);
        settle();
    }
    ~WindowWithDevices() override { pane.reset(); }

    /// Lays out and paints what has changed.
    static void settle() { QApplication::processEvents(); }

private:
    std::unique_ptr<QWidget> mWindow;
};

void refresh(benchmark::State& state)
{
    WindowWithDevices window(state.range(0));
    for ([[maybe_unused]] auto round : state) {
        window.panel().updateUI();
        WindowWithDevices::settle();
    }
    state.SetComplexityN(state.range(0));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s BUNDLE\n", argv[0]);
        return 2;
    }
    bundlePath = argv[1];
    QApplication application(argc, argv);
    farview::measureWithManyDevices("updateUI in the window", refresh);
    return farview::runDisplayRefresh(argc, argv, "updateUI in the window");
}
