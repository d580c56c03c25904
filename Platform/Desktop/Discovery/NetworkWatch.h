#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace farview
{

/// Tells when interfaces or addresses of this computer change.
class NetworkWatch : public QObject
{
public:
    explicit NetworkWatch(std::function<void()> changed);
    ~NetworkWatch() override;

private:
    void drain() const;

    std::function<void()> mChanged;
    int mSocket = -1;
    std::unique_ptr<QSocketNotifier> mNotifier;
};

} // namespace farview
