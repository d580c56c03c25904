#include "Applications/Device/PictureFile.h"

#include "Applications/Device/PictureImage.h"

#include <QFileInfo>
#include <QSaveFile>

#include <utility>

namespace farview
{

PictureFile::PictureFile(QString path, Log& log) : mPath(std::move(path)), mLog(log)
{
    mLater.setSingleShot(true);
    QObject::connect(&mLater, &QTimer::timeout, &mLater, [this] {
        if (const auto drawn = std::exchange(mDrawn, nullptr))
            drawn();
    });
}

void PictureFile::showFrame(const std::vector<PixelRect>& /*changed*/, std::size_t /*bytes*/,
                            std::function<void()> drawn)
{
    if (!write())
        return mLog.write(LogLevel::warning,
                          "The picture cannot be written: " + mPath.toStdString());
    mDrawn = std::move(drawn);
    mLater.start(0);
}

bool PictureFile::write() const
{
    QImage image = imageOf(mPicture->picture());
    image.reinterpretAsFormat(QImage::Format_RGB32);
    QSaveFile file(mPath);
    const QByteArray format = QFileInfo(mPath).suffix().toUpper().toLatin1();
    return file.open(QIODevice::WriteOnly) && image.save(&file, format.constData()) &&
           file.commit();
}

void PictureFile::endPicture()
{
    mPicture = nullptr;
    mDrawn = nullptr;
}

} // namespace farview
