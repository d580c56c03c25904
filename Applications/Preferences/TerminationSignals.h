#pragma once

#include <QObject>

/// Turns SIGTERM and SIGINT into a signal of the event loop. One per process.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

signals:
    void received();
};
