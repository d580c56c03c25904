#include <QObject>
#include <QtPlugin>

#include <cstdlib>

// A library of another interface than the host's. Whoever loads it has not looked at its metadata.
namespace
{
[[maybe_unused]] const bool loaded = [] {
    std::abort();
    return true;
}();
} // namespace

class OtherInterface : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID FARVIEW_TEST_INTERFACE_ID)
};

#include "OtherInterface.moc"
