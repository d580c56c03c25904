#pragma once

#include <QDBusConnection>
#include <QStringList>

#include <optional>
#include <vector>

/// What assistive technology knows of one control of another program: only what the accessibility
/// bus tells. Each question goes to that program and waits for its answer. What is asked of a
/// control that has gone is empty.
class AccessibleObject
{
public:
    /// The bus's numbers for states.
    enum State {
        busy = 3,
        checked = 4,
        enabled = 8,
        focusable = 11,
        sensitive = 24,
        showing = 25,
        visible = 30
    };

    AccessibleObject(QDBusConnection bus, QString service, QString path);

    QString name() const { return property("Accessible", "Name").toString(); }
    QString description() const { return property("Accessible", "Description").toString(); }
    QString role() const;
    bool has(State state) const;
    std::vector<AccessibleObject> children() const;

    QStringList actions() const;
    /// Whether the control offered that action and took the request.
    bool perform(const QString& action) const;
    /// The text of a control that people type into.
    QString text() const;
    bool setText(const QString& text) const;

    /// Where it is in the tree, for people who read of it.
    const QString& road() const { return mRoad; }

private:
    QVariant property(const char* interface, const char* name) const;
    QVariantList call(const char* interface, const char* method,
                      const QVariantList& arguments = {}) const;

    QDBusConnection mBus;
    QString mService;
    QString mPath;
    QString mRoad;
};

/// The accessibility bus of the session, as a screen reader uses it.
class AssistiveTechnology
{
public:
    AssistiveTechnology();

    /// The program of that name; nothing while it is not on the bus.
    std::optional<AccessibleObject> application(const QString& name) const;
    /// The object and everything below it that is on the screen.
    static std::vector<AccessibleObject> showingIn(const AccessibleObject& object);

private:
    QDBusConnection mBus;
};
