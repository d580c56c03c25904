#include "Platform/Desktop/Screens/Wlroots/SwayTree.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <limits>

namespace farview
{
namespace
{

const QString markBegin = QStringLiteral("_farview:");
/// Deeper than any user nests containers.
constexpr int deepest = 64;

std::string text(const QJsonValue& object, const char* key)
{
    return object[QLatin1String(key)].toString().toStdString();
}

int number(const QJsonValue& object, const char* key)
{
    using Limits = std::numeric_limits<std::int16_t>;
    return std::clamp<int>(object[QLatin1String(key)].toInt(), Limits::min(), Limits::max());
}

QJsonArray list(const QJsonValue& object, const char* key)
{
    return object[QLatin1String(key)].toArray();
}

QJsonArray standJson(const SwayStand& stand)
{
    return {QString::fromStdString(stand.workspace), stand.isFloating, stand.isFull, stand.corner.x,
            stand.corner.y};
}

std::optional<SwayStand> standIn(const QJsonValue& json)
{
    const auto parts = json.toArray();
    if (parts.size() != 5 || parts[0].toString().isEmpty())
        return std::nullopt;
    return SwayStand{parts[0].toString().toStdString(), parts[1].toBool(), parts[2].toBool(),
                     pixelPoint(parts[3].toInt(), parts[4].toInt())};
}

/// Any program may have written it.
std::optional<SwayNote> noteIn(const QString& mark)
{
    const auto text = QByteArray::fromBase64(mark.mid(markBegin.size()).toLatin1());
    const auto json = QJsonDocument::fromJson(text).array();
    const auto there = standIn(json[3]);
    if (json.size() != 5 || !there)
        return std::nullopt;
    return SwayNote{static_cast<std::uint32_t>(json[1].toDouble()), json[2].toBool(), *there,
                    standIn(json[4])};
}

class Reader
{
public:
    SwayTree tree;

    void readOutput(const QJsonValue& output)
    {
        mOutput = text(output, "name");
        if (mOutput.empty() || mOutput == "__i3")
            return;
        tree.outputs.push_back({mOutput, cornerOf(output), text(output, "current_workspace")});
        for (const auto& workspace : list(output, "nodes")) {
            mWorkspace = text(workspace, "name");
            noteFocus(workspace);
            readInside(workspace, false, 0);
        }
    }

private:
    static PixelPoint cornerOf(const QJsonValue& node)
    {
        const auto area = node[QStringLiteral("rect")];
        return pixelPoint(number(area, "x"), number(area, "y"));
    }

    void noteFocus(const QJsonValue& node)
    {
        if (node[QStringLiteral("focused")].toBool())
            tree.focusedOutput = mOutput;
    }

    void readInside(const QJsonValue& node, bool isFloating, int depth)
    {
        if (depth > deepest)
            return;
        for (const auto& inner : list(node, "nodes"))
            readContainer(inner, isFloating, depth + 1);
        for (const auto& inner : list(node, "floating_nodes"))
            readContainer(inner, true, depth + 1);
    }

    void readContainer(const QJsonValue& node, bool isFloating, int depth)
    {
        noteFocus(node);
        if (node[QStringLiteral("pid")].isUndefined())
            return readInside(node, isFloating, depth);
        // Places that sway is told include a title bar.
        auto corner = cornerOf(node);
        corner.y = static_cast<std::int16_t>(corner.y -
                                             number(node[QStringLiteral("deco_rect")], "height"));
        SwayWindow window{node[QStringLiteral("id")].toInteger(),
                          mOutput,
                          {mWorkspace, isFloating, number(node, "fullscreen_mode") != 0, corner},
                          std::nullopt,
                          {}};
        readNote(node, window);
        tree.windows.push_back(window);
    }

    static void readNote(const QJsonValue& node, SwayWindow& window)
    {
        for (const auto& each : list(node, "marks")) {
            const auto mark = each.toString();
            if (!mark.startsWith(markBegin))
                continue;
            window.mark = mark.toStdString();
            window.note = noteIn(mark);
        }
    }

    std::string mOutput;
    std::string mWorkspace;
};

} // namespace

SwayTree swayTreeIn(const QJsonDocument& answer)
{
    Reader reader;
    for (const auto& output : answer[QStringLiteral("nodes")].toArray())
        reader.readOutput(output);
    return reader.tree;
}

/// sway has each mark once, so the window is in it, too.
std::string swayMark(std::int64_t window, const SwayNote& note)
{
    const QJsonArray json{static_cast<qint64>(window), static_cast<qint64>(note.monitor),
                          note.isThere, standJson(note.there),
                          note.home ? standJson(*note.home) : QJsonArray()};
    // Its commands have no way to write every character.
    const auto text = QJsonDocument(json).toJson(QJsonDocument::Compact).toBase64();
    return markBegin.toStdString() + text.toStdString();
}

std::uint32_t swayMonitorNumber(const std::string& monitorName)
{
    // FNV-1a: must not differ from one start to the next.
    std::uint32_t number = 2166136261;
    for (const char character : monitorName)
        number = (number ^ static_cast<std::uint8_t>(character)) * 16777619;
    return number;
}

} // namespace farview
