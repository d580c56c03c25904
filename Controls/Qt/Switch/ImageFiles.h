#pragma once

#include "Controls/Image.h"

#include <QDateTime>
#include <QImage>
#include <QString>

#include <map>
#include <memory>
#include <string>

namespace farview
{

/// A picture in a file, and its twin "NAME@2x" for sharp screens where there is one. What is drawn
/// is decoded when it is first drawn, and once.
class ImageFile
{
public:
    /// Reads the size only. Main thread only.
    explicit ImageFile(const QString& path);

    /// Whether the file holds a picture that can be read.
    bool isValid() const { return mSize.isValid(); }
    /// Whether the file is still the one that was read.
    bool isCurrent() const;
    QSize size() const { return mSize; }
    /// The pixels for screens of one or of two pixels to a point. Null when they are damaged.
    const QImage& pixels(int ratio);

private:
    QString mPath;
    QDateTime mModified;
    QSize mSize;
    std::map<int, QImage> mPixels;
};

/// The picture in such a file.
class FileImage final : public Image
{
public:
    explicit FileImage(std::shared_ptr<ImageFile> file) : mFile(std::move(file)) {}

    Size size() const override;
    ImageFile& file() const { return *mFile; }

private:
    std::shared_ptr<ImageFile> mFile;
};

/// Makes pictures from files. A file that has not changed is not read again.
class ImageFiles final : public ImageRegistry
{
public:
    std::shared_ptr<Image> imageNamed(const std::string& name) const override;
    std::shared_ptr<Image> imageWithContentsOfFile(const std::string& path) override;
    void setName(const std::shared_ptr<Image>& image, const std::string& name) override;

private:
    std::map<std::string, std::shared_ptr<ImageFile>> mFiles;
    std::map<std::string, std::shared_ptr<Image>> mNamed;
};

} // namespace farview
