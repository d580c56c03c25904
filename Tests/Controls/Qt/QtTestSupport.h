#pragma once

#include "Controls/Control.h"
#include "Controls/Qt/Binding.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QThread>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace farview::test
{

/// A target that counts what it is asked to do, by name.
class RecordingTarget : public Responder
{
public:
    bool respondsTo(Selector selector) const override { return known.contains(selector.name); }
    bool perform(Selector selector, Object* argument) override
    {
        if (!respondsTo(selector))
            return false;
        ++calls[std::string(selector.name)];
        sender = argument;
        if (during)
            during();
        return true;
    }

    std::map<std::string_view, bool> known = {{"press:", true}};
    std::map<std::string, int> calls;
    Object* sender = nullptr;
    std::function<void()> during;
};

/// Lets events flow until the condition holds, five seconds at most.
inline bool waitUntil(const std::function<bool()>& condition)
{
    const QDeadlineTimer limit(5000);
    while (!condition() && !limit.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return condition();
}

/// Handles what is queued now.
inline void turn() { QCoreApplication::processEvents(); }

} // namespace farview::test
