#include "Controls/Qt/Forms/InterfaceFile.h"

#include "Platform/Fake/FakeBundle.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>

#include <array>

namespace farview::test
{
namespace
{

class Owner : public InterfaceOwner
{
public:
    std::span<const Outlet> outlets() const override
    {
        static constexpr std::array<Outlet, 2> table = {
            Outlet{"statusLabel",
                   [](InterfaceOwner& owner) -> std::shared_ptr<View> {
                       return static_cast<Owner&>(owner).status = std::make_shared<TextField>();
                   }},
            Outlet{"option", [](InterfaceOwner& owner) -> std::shared_ptr<View> {
                       return static_cast<Owner&>(owner).option = std::make_shared<Button>();
                   }}};
        return table;
    }
    bool respondsTo(Selector selector) const override { return selector.name == "optionPressed:"; }
    bool perform(Selector selector, Object* argument) override
    {
        sender = argument;
        return respondsTo(selector);
    }

    std::shared_ptr<TextField> status;
    std::shared_ptr<Button> option;
    Object* sender = nullptr;
};

constexpr auto labelPart = R"(<widget class="QLabel" name="statusLabel"/>)";
constexpr auto optionPart = R"(<widget class="QCheckBox" name="option">
    <property name="text"><string>Use &amp;touch</string></property>
    <property name="action" stdset="0"><string notr="true">optionPressed:</string></property>
    </widget>)";

struct LoadedInterface : testing::Test {
    LoadedInterface()
    {
        bundle = std::make_unique<FakeBundle>(folder.path().toStdString());
        bundle->addResource("Test", "ui");
    }
    void write(const QByteArray& content)
    {
        const auto path = QString::fromStdString(*bundle->pathForResource("Test", "ui"));
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    void writeForm(const QByteArray& widgets)
    {
        write("<ui version=\"4.0\"><class>Test</class><widget class=\"QWidget\" name=\"Test\">" +
              widgets + "</widget></ui>");
    }
    bool load()
    {
        root = InterfaceFile(*bundle, "Test").load(owner, error);
        return root != nullptr;
    }

    QTemporaryDir folder;
    std::unique_ptr<FakeBundle> bundle;
    std::shared_ptr<Owner> owner = std::make_shared<Owner>();
    std::unique_ptr<QWidget> root;
    std::string error;
};

TEST_F(LoadedInterface, OutletsAndActionsAreConnectedByName)
{
    writeForm(QByteArray(labelPart) + optionPart);
    ASSERT_TRUE(load()) << error;
    ASSERT_NE(owner->status, nullptr);
    owner->status->setStringValue("On");
    EXPECT_EQ(root->findChild<QLabel*>("statusLabel")->text(), QStringLiteral("On"));
    root->findChild<QCheckBox*>("option")->click();
    EXPECT_EQ(owner->sender, owner->option.get());
}

TEST_F(LoadedInterface, AButtonWithoutAnOutletCanHaveAnAction)
{
    writeForm(QByteArray(labelPart) + optionPart +
              R"(<widget class="QPushButton" name="help">
                 <property name="action" stdset="0"><string>optionPressed:</string></property>
                 </widget>)");
    ASSERT_TRUE(load()) << error;
    root->findChild<QPushButton*>("help")->click();
    EXPECT_NE(owner->sender, nullptr);
}

TEST_F(LoadedInterface, TextsAreShownInTheBundlesLanguage)
{
    bundle->setText("Use &touch", "&Berührung nutzen");
    writeForm(QByteArray(labelPart) + optionPart);
    ASSERT_TRUE(load()) << error;
    EXPECT_EQ(root->findChild<QCheckBox*>("option")->text(),
              QString::fromUtf8("&Berührung nutzen"));
    EXPECT_EQ(owner->option->title(), "Berührung nutzen");
}

TEST_F(LoadedInterface, AMissingFileIsNamed)
{
    root = InterfaceFile(*bundle, "Other").load(owner, error);
    EXPECT_EQ(root, nullptr);
    EXPECT_EQ(error, "The interface file \"Other.ui\" is missing.");
}

TEST_F(LoadedInterface, AMissingOutletIsNamedAndNothingIsConnected)
{
    writeForm(labelPart);
    EXPECT_FALSE(load());
    EXPECT_EQ(error, "Test.ui has no object named \"option\".");
    EXPECT_EQ(owner->status, nullptr);
}

TEST_F(LoadedInterface, AnOutletOfTheWrongKindIsNamed)
{
    writeForm(QByteArray(labelPart) + R"(<widget class="QLabel" name="option"/>)");
    EXPECT_FALSE(load());
    EXPECT_EQ(error, "\"option\" in Test.ui is a QLabel, which cannot show it.");
}

TEST_F(LoadedInterface, AnUnknownActionIsNamed)
{
    QByteArray part = optionPart;
    writeForm(QByteArray(labelPart) + part.replace("optionPressed:", "nobodyKnows:"));
    EXPECT_FALSE(load());
    EXPECT_EQ(error, "\"option\" in Test.ui asks for \"nobodyKnows:\", which its owner does not "
                     "know.");
}

TEST_F(LoadedInterface, AnActionOnWhatSendsNoneIsNamed)
{
    writeForm(QByteArray(labelPart) + optionPart +
              R"(<widget class="QWidget" name="plain">
                 <property name="action" stdset="0"><string>optionPressed:</string></property>
                 </widget>)");
    EXPECT_FALSE(load());
    EXPECT_NE(error.find("\"plain\""), std::string::npos) << error;
}

TEST_F(LoadedInterface, ADamagedFileIsRefused)
{
    for (const char* content : {"", "not xml", "<ui version=\"4.0\"><widget", "<html/>"}) {
        write(content);
        EXPECT_FALSE(load()) << content;
        EXPECT_NE(error.find("is damaged"), std::string::npos) << error;
    }
}

TEST_F(LoadedInterface, TheLibraryPathsAreAsTheyWere)
{
    const QStringList before = QCoreApplication::libraryPaths();
    ASSERT_FALSE(before.isEmpty());
    writeForm(QByteArray(labelPart) + optionPart);
    ASSERT_TRUE(load()) << error;
    EXPECT_EQ(QCoreApplication::libraryPaths(), before);
}

} // namespace
} // namespace farview::test
