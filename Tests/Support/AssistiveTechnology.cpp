#include "Tests/Support/AssistiveTechnology.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

#include <utility>

namespace
{

constexpr int patience = 5000; // ms
constexpr int mostDepth = 20;

QString accessibilityBusAddress()
{
    const auto question = QDBusMessage::createMethodCall(u"org.a11y.Bus"_qs, u"/org/a11y/bus"_qs,
                                                         u"org.a11y.Bus"_qs, u"GetAddress"_qs);
    const auto answer = QDBusConnection::sessionBus().call(question, QDBus::Block, patience);
    return answer.arguments().value(0).toString();
}

using Reference = std::pair<QString, QString>;

std::vector<Reference> referencesIn(const QVariant& answer)
{
    std::vector<Reference> found;
    const auto list = answer.value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        Reference each;
        QDBusObjectPath path;
        list.beginStructure();
        list >> each.first >> path;
        list.endStructure();
        each.second = path.path();
        found.push_back(each);
    }
    list.endArray();
    return found;
}

void addShowing(const AccessibleObject& object, int depth, std::vector<AccessibleObject>& found)
{
    if (depth > mostDepth || !object.has(AccessibleObject::showing))
        return;
    found.push_back(object);
    for (const auto& child : object.children())
        addShowing(child, depth + 1, found);
}

} // namespace

AccessibleObject::AccessibleObject(QDBusConnection bus, QString service, QString path)
    : mBus(std::move(bus)), mService(std::move(service)), mPath(std::move(path))
{
}

QVariantList AccessibleObject::call(const char* interface, const char* method,
                                    const QVariantList& arguments) const
{
    auto question = QDBusMessage::createMethodCall(mService, mPath, QString::fromLatin1(interface),
                                                   QString::fromLatin1(method));
    question.setArguments(arguments);
    return mBus.call(question, QDBus::Block, patience).arguments();
}

QVariant AccessibleObject::property(const char* interface, const char* name) const
{
    const QString whole = u"org.a11y.atspi."_qs + QString::fromLatin1(interface);
    const auto answer =
        call("org.freedesktop.DBus.Properties", "Get", {whole, QString::fromLatin1(name)});
    return answer.value(0).value<QDBusVariant>().variant();
}

QString AccessibleObject::role() const
{
    return call("org.a11y.atspi.Accessible", "GetRoleName").value(0).toString();
}

bool AccessibleObject::has(State state) const
{
    const auto answer = call("org.a11y.atspi.Accessible", "GetState");
    if (answer.isEmpty() || !answer.front().canConvert<QDBusArgument>())
        return false;
    const auto words = qdbus_cast<QList<uint>>(answer.front());
    return words.value(state / 32) & (1U << (state % 32));
}

std::vector<AccessibleObject> AccessibleObject::children() const
{
    const auto answer = call("org.a11y.atspi.Accessible", "GetChildren");
    std::vector<AccessibleObject> found;
    if (answer.isEmpty() || !answer.front().canConvert<QDBusArgument>())
        return found;
    for (const auto& [service, path] : referencesIn(answer.front())) {
        found.emplace_back(mBus, service, path);
        found.back().mRoad =
            mRoad + u" / "_qs + found.back().role() + u" \""_qs + found.back().name() + u"\""_qs;
    }
    return found;
}

QStringList AccessibleObject::actions() const
{
    QStringList names;
    const int count = property("Action", "NActions").toInt();
    for (int index = 0; index < count; ++index)
        names += call("org.a11y.atspi.Action", "GetName", {index}).value(0).toString();
    return names;
}

bool AccessibleObject::perform(const QString& action) const
{
    const auto index = static_cast<int>(actions().indexOf(action));
    return index >= 0 && call("org.a11y.atspi.Action", "DoAction", {index}).value(0).toBool();
}

QString AccessibleObject::text() const
{
    return call("org.a11y.atspi.Text", "GetText", {0, -1}).value(0).toString();
}

bool AccessibleObject::setText(const QString& text) const
{
    return call("org.a11y.atspi.EditableText", "SetTextContents", {text}).value(0).toBool();
}

AssistiveTechnology::AssistiveTechnology()
    : mBus(QDBusConnection::connectToBus(accessibilityBusAddress(), u"accessibility"_qs))
{
}

std::optional<AccessibleObject> AssistiveTechnology::application(const QString& name) const
{
    const AccessibleObject desktop(mBus, u"org.a11y.atspi.Registry"_qs,
                                   u"/org/a11y/atspi/accessible/root"_qs);
    for (const auto& each : desktop.children()) {
        if (each.name() == name)
            return each;
    }
    return std::nullopt;
}

std::vector<AccessibleObject> AssistiveTechnology::showingIn(const AccessibleObject& object)
{
    std::vector<AccessibleObject> found;
    addShowing(object, 0, found);
    return found;
}
