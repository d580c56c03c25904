#pragma once

#include <QUiLoader>

#include <memory>

class QIODevice;

namespace farview
{

class Bundle;

/// Reads a form without looking for designer plug-ins on the machine; knows our own widgets, and
/// shows each text in the user's language as the bundle has it, from right to left where that is
/// how the language is written.
class FormLoader
{
public:
    explicit FormLoader(const Bundle& bundle);
    ~FormLoader();

    /// Null when the form is damaged; `errorString` then says how.
    std::unique_ptr<QWidget> loadForm(QIODevice& file);
    QString errorString() const;

private:
    const Bundle& mBundle;
    std::unique_ptr<QUiLoader> mLoader;
};

} // namespace farview
