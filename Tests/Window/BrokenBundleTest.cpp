#include "Tests/Window/HostFixture.h"

namespace
{

class Host : public HostFixture
{
protected:
    void expectEnd(const QString& bundle, int status, const char* words)
    {
        const Result result = run({u"--pane"_qs, bundle});
        EXPECT_EQ(result.status, status) << result.errors;
        EXPECT_NE(result.errors.find(words), std::string::npos) << result.errors;
    }
    QString contents(const QString& bundle, const char* file) const
    {
        return bundle + u"/Contents/"_qs + QString::fromLatin1(file);
    }
    void expectBrokenForm(const QString& before, const QString& after, const char* words)
    {
        const QString bundle = copyOfBundle("A.prefPane");
        replace(contents(bundle, "Resources/PreferencePane.ui"), before, after);
        expectEnd(bundle, 10, words);
    }
};

TEST_F(Host, NoPaneAtThatPlace)
{
    expectEnd(path("Nowhere.prefPane"), 3, "There is no preference pane at");
    write(path("File.prefPane"), u"not a folder"_qs);
    expectEnd(path("File.prefPane"), 3, "There is no preference pane at");
}

TEST_F(Host, NoPaneInstalled)
{
    set("FARVIEW_SYSTEM_ROOT", path("empty"));
    const Result result = run({});
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.errors.find("No Farview preference pane is installed."), std::string::npos);
}

TEST_F(Host, ABundleWithoutInfo)
{
    const QString bundle = copyOfBundle("A.prefPane");
    QFile::remove(contents(bundle, "Info.plist"));
    expectEnd(bundle, 4, "has no Info.plist");
}

TEST_F(Host, ABundleWhoseInfoCannotBeRead)
{
    const QString bundle = copyOfBundle("A.prefPane");
    for (const char* text : {"", "<plist", "<plist version=\"1.0\"><array/></plist>", "\x00\x01"}) {
        write(contents(bundle, "Info.plist"), QString::fromLatin1(text));
        expectEnd(bundle, 5, "cannot be read");
    }
}

TEST_F(Host, ABundleWithoutAPrincipalClass)
{
    const QString bundle = copyOfBundle("A.prefPane");
    replace(contents(bundle, "Info.plist"), u"NSPrincipalClass"_qs, u"NSOtherClass"_qs);
    expectEnd(bundle, 6, "NSPrincipalClass");
}

TEST_F(Host, ABundleOfAnotherPrincipalClass)
{
    const QString bundle = copyOfBundle("A.prefPane");
    replace(contents(bundle, "Info.plist"), u">FVEPreferencePane<"_qs, u">Other<"_qs);
    expectEnd(bundle, 6, "has no class \"Other\"");
}

TEST_F(Host, AnOlderInterfaceIsRefusedBeforeItsCodeRuns)
{
    expectEnd(bundleAround(QStringLiteral(FARVIEW_OLDER_MODULE), "Pane"), 7, "older version");
}

TEST_F(Host, ANewerInterfaceIsRefusedBeforeItsCodeRuns)
{
    expectEnd(bundleAround(QStringLiteral(FARVIEW_NEWER_MODULE), "Pane"), 8, "newer version");
}

TEST_F(Host, ALibraryThatIsNoPanesIsRefusedBeforeItsCodeRuns)
{
    expectEnd(bundleAround(QStringLiteral(FARVIEW_FOREIGN_MODULE), "Pane"), 9,
              "is not the library");
}

TEST_F(Host, ALibraryThatIsMissingOrNone)
{
    const QString bundle = copyOfBundle("A.prefPane");
    const QString library = contents(bundle, "Linux/FarviewPreferences.so");
    QFile::remove(library);
    expectEnd(bundle, 9, "is missing");
    write(library, u"not a library"_qs);
    expectEnd(bundle, 9, "is not the library");
}

TEST_F(Host, ALibraryThatDoesNotLoad)
{
    const QString bundle = copyOfBundle("A.prefPane");
    // The name of a library that it needs becomes one that does not exist.
    QFile file(contents(bundle, "Linux/FarviewPreferences.so"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray code = file.readAll();
    const auto place = code.indexOf("libQt6UiTools.so.6");
    ASSERT_GT(place, 0);
    file.seek(place);
    file.write("libQt6Nowhere.so.6");
    file.close();
    expectEnd(bundle, 9, "cannot be loaded");
}

TEST_F(Host, ALibraryOutsideTheBundleIsNotFollowed)
{
    const QString bundle = copyOfBundle("A.prefPane");
    replace(contents(bundle, "Info.plist"), u">FarviewPreferences.so<"_qs,
            u">../../../../../tmp/Other.so<"_qs);
    expectEnd(bundle, 9, "Contents/Linux/Other.so\" is missing");
}

TEST_F(Host, AnInterfaceFileThatIsMissing)
{
    const QString bundle = copyOfBundle("A.prefPane");
    QFile::remove(contents(bundle, "Resources/PreferencePane.ui"));
    expectEnd(bundle, 10, "\"PreferencePane.ui\" is missing");
}

TEST_F(Host, AnInterfaceFileThatIsDamaged) { expectBrokenForm(u"</ui>"_qs, u""_qs, "is damaged"); }

TEST_F(Host, AnInterfaceFileWithoutAnOutlet)
{
    expectBrokenForm(u"\"warningImage\""_qs, u"\"otherImage\""_qs,
                     "no object named \"warningImage\"");
}

TEST_F(Host, AnInterfaceFileWithAnUnknownAction)
{
    expectBrokenForm(u"helpPressed:"_qs, u"nobodyKnows:"_qs, "\"nobodyKnows:\"");
}

TEST_F(Host, APaneThatDoesNotAcceptItsBundle)
{
    expectEnd(bundleAround(QStringLiteral(FARVIEW_RECORDING_MODULE), "RefusingPane"), 11,
              "it does not like it.");
    EXPECT_EQ(calls(), "makePane initWithBundle destroyed");
}

} // namespace
