#pragma once

#include "Applications/Device/Glass.h"
#include "Platform/Log.h"

#include <QString>
#include <QTimer>

namespace farview
{

/// A glass for tests and diagnosis: each frame replaces a picture file, whole or not at all. The
/// pointer is not in it.
class PictureFile final : public Glass
{
public:
    /// The path's ending says the format. `log` outlives this.
    PictureFile(QString path, Log& log);

    LinkDeviceScreen screen() const override { return {1920, 1080, 100, 60}; }
    void setScreenObserver(std::function<void()>) override {}
    void setInput(InputReporter*) override {}
    void beginPicture(const PictureReceiver& picture) override { mPicture = &picture; }
    void showFrame(const std::vector<PixelRect>& changed, std::size_t bytes,
                   std::function<void()> drawn) override;
    void movePointer() override {}
    void endPicture() override;

private:
    bool write() const;

    QString mPath;
    Log& mLog;
    const PictureReceiver* mPicture = nullptr;
    std::function<void()> mDrawn;
    QTimer mLater;
};

} // namespace farview
