#include "Applications/Preferences/PaneLoader.h"

#include "Platform/Bundle.h"

#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>

#include <optional>

namespace
{

QString sentence(const char* text, const QString& first)
{
    return QString::fromLatin1(text).arg(first);
}

QString sentence(const char* text, const QString& first, const QString& second)
{
    return QString::fromLatin1(text).arg(first, second);
}

QString infoText(const farview::Bundle& bundle, const std::string& key)
{
    const auto value = bundle.objectForInfoDictionaryKey(key);
    const auto* text = value ? value->get<std::string>() : nullptr;
    return text ? QString::fromStdString(*text) : QString();
}

/// The number behind "com.quillon.PreferencePane/"; nothing when that is not what it is.
std::optional<int> interfaceVersion(const QString& identifier)
{
    const QString own = QStringLiteral(FARVIEW_PANE_INTERFACE_ID);
    const QString family = own.left(own.lastIndexOf(u'/') + 1);
    bool isNumber = false;
    const int version = identifier.mid(family.size()).toInt(&isNumber);
    if (!identifier.startsWith(family) || !isNumber)
        return std::nullopt;
    return version;
}

bool speaksOurInterface(const QPluginLoader& loader, const QString& library, HostError& error)
{
    const auto version = interfaceVersion(loader.metaData().value(u"IID"_qs).toString());
    const int ours = *interfaceVersion(QStringLiteral(FARVIEW_PANE_INTERFACE_ID));
    if (!version) {
        error = {HostStatus::libraryDoesNotLoad,
                 sentence("\"%1\" is not the library of a preference pane.", library)};
    } else if (*version < ours) {
        error = {HostStatus::olderInterface,
                 sentence("\"%1\" was made for an older version of this program.", library)};
    } else if (*version > ours) {
        error = {HostStatus::newerInterface,
                 sentence("\"%1\" needs a newer version of this program.", library)};
    }
    return version == ours;
}

} // namespace

LoadedPane::LoadedPane(std::unique_ptr<HostedPane> pane, QWidget* view, QString title)
    : mPane(std::move(pane)), mView(view), mTitle(std::move(title))
{
}

LoadedPane::~LoadedPane()
{
    if (mView)
        mView->setParent(nullptr);
}

PaneLoader::PaneLoader(farview::Bundles& bundles, bool smokeTest)
    : mBundles(bundles), mSmokeTest(smokeTest)
{
}

std::unique_ptr<LoadedPane> PaneLoader::load(const QString& path, HostError& error) const
{
    const auto bundle = openBundle(path, error);
    if (!bundle)
        return nullptr;
    if (infoText(*bundle, "NSPrincipalClass").isEmpty()) {
        error = {HostStatus::wrongPrincipalClass,
                 sentence("\"%1\" does not say which class its pane is (NSPrincipalClass).", path)};
        return nullptr;
    }
    const QString executable = QFileInfo(infoText(*bundle, "CFBundleExecutable")).fileName();
    auto* factory = loadFactory(path + u"/Contents/Linux/"_qs + executable, error);
    return factory ? makePane(path, *bundle, *factory, error) : nullptr;
}

std::shared_ptr<farview::Bundle> PaneLoader::openBundle(const QString& path, HostError& error) const
{
    if (!QFileInfo(path).isDir()) {
        error = {HostStatus::paneNotFound,
                 sentence("There is no preference pane at \"%1\".", path)};
        return nullptr;
    }
    if (!QFileInfo::exists(path + u"/Contents/Info.plist"_qs)) {
        error = {HostStatus::noInfo, sentence("\"%1\" has no Info.plist.", path)};
        return nullptr;
    }
    auto bundle = mBundles.bundleWithPath(path.toStdString());
    if (!bundle)
        error = {HostStatus::unreadableInfo,
                 sentence("The Info.plist of \"%1\" cannot be read.", path)};
    return bundle;
}

PaneFactory* PaneLoader::loadFactory(const QString& libraryPath, HostError& error) const
{
    QPluginLoader loader(libraryPath);
    if (!QFileInfo(libraryPath).isFile()) {
        error = {HostStatus::libraryDoesNotLoad,
                 sentence("The library \"%1\" is missing.", libraryPath)};
        return nullptr;
    }
    if (!speaksOurInterface(loader, libraryPath, error))
        return nullptr;
    auto* factory = qobject_cast<PaneFactory*>(loader.instance());
    if (!factory)
        error = {HostStatus::libraryDoesNotLoad, sentence("The library \"%1\" cannot be loaded: %2",
                                                          libraryPath, loader.errorString())};
    return factory;
}

std::unique_ptr<LoadedPane> PaneLoader::makePane(const QString& path, const farview::Bundle& bundle,
                                                 PaneFactory& factory, HostError& error) const
{
    const QString principalClass = infoText(bundle, "NSPrincipalClass");
    auto pane = factory.makePane(principalClass, mSmokeTest);
    if (!pane) {
        error = {HostStatus::wrongPrincipalClass,
                 sentence("The library of \"%1\" has no class \"%2\".", path, principalClass)};
        return nullptr;
    }
    QString reason;
    if (!pane->initWithBundle(path, &reason)) {
        error = {HostStatus::bundleRefused,
                 sentence("The pane does not accept its bundle \"%1\": %2", path, reason)};
        return nullptr;
    }
    QWidget* view = pane->loadMainView(&reason);
    if (!view) {
        error = {HostStatus::brokenInterfaceFile,
                 sentence("The window of \"%1\" cannot be made: %2", path, reason)};
        return nullptr;
    }
    pane->mainViewDidLoad();
    const auto name = infoText(bundle, "CFBundleName").toStdString();
    return std::make_unique<LoadedPane>(
        std::move(pane), view, QString::fromStdString(bundle.localizedString(name, "", "")));
}
