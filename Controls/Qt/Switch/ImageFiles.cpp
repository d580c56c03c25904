#include "Controls/Qt/Switch/ImageFiles.h"

#include <QFileInfo>
#include <QImageReader>

namespace farview
{
namespace
{

constexpr int largestSide = 4096;

QDateTime modificationOf(const QString& path) { return QFileInfo(path).lastModified(); }

QString sharpTwinOf(const QString& path)
{
    const QFileInfo file(path);
    return file.path() + u'/' + file.completeBaseName() + u"@2x."_qs + file.suffix();
}

bool isReasonable(QSize size)
{
    return !size.isEmpty() && size.width() <= largestSide && size.height() <= largestSide;
}

QImage read(const QString& path)
{
    QImageReader reader(path);
    if (!isReasonable(reader.size()))
        return {};
    return reader.read().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

ImageFile::ImageFile(const QString& path) : mPath(path), mModified(modificationOf(path))
{
    const QSize size = QImageReader(path).size();
    if (isReasonable(size))
        mSize = size;
}

bool ImageFile::isCurrent() const { return mModified == modificationOf(mPath); }

const QImage& ImageFile::pixels(int ratio)
{
    const auto known = mPixels.find(ratio);
    if (known != mPixels.end())
        return known->second;
    QImage image = ratio > 1 ? read(sharpTwinOf(mPath)) : QImage();
    if (image.isNull())
        image = read(mPath);
    return mPixels[ratio] = image;
}

Size FileImage::size() const
{
    return {double(mFile->size().width()), double(mFile->size().height())};
}

std::shared_ptr<Image> ImageFiles::imageNamed(const std::string& name) const
{
    const auto found = mNamed.find(name);
    return found == mNamed.end() ? nullptr : found->second;
}

std::shared_ptr<Image> ImageFiles::imageWithContentsOfFile(const std::string& path)
{
    auto& file = mFiles[path];
    if (!file || !file->isCurrent())
        file = std::make_shared<ImageFile>(QString::fromStdString(path));
    return file->isValid() ? std::make_shared<FileImage>(file) : nullptr;
}

void ImageFiles::setName(const std::shared_ptr<Image>& image, const std::string& name)
{
    mNamed[name] = image;
}

} // namespace farview
