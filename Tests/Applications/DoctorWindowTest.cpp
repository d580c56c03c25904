#include "Applications/Doctor/Window/DoctorWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace farview;

namespace
{

Report report()
{
    return {"1.0",
            "2026-03-01T12:00:00Z",
            true,
            {{Area::driver, Severity::problem, "missing", {"No driver in %@.", {"<b>x</b>"}}}}};
}

class DoctorWindowTest : public testing::Test
{
protected:
    DoctorWindowTest() { window.show(); }

    template <typename Widget> Widget& child(const char* name)
    {
        return *window.findChild<Widget*>(QString::fromLatin1(name));
    }
    QPushButton& button(const char* name) { return child<QPushButton>(name); }
    std::string text() { return child<QPlainTextEdit>("reportText").toPlainText().toStdString(); }
    std::string verdict() { return child<QLabel>("verdictLabel").text().toStdString(); }
    std::string outcome() { return child<QLabel>("outcomeLabel").text().toStdString(); }
    static QByteArray contents(const QString& path)
    {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }
    static std::string same(const std::string& text) { return text; }

    int examinations = 0;
    int closings = 0;
    DoctorWindow window{{same, [this] { ++examinations; }, [this] { ++closings; }}};
    QTemporaryDir folder;
};

TEST_F(DoctorWindowTest, ShowsHowFarItIsUntilTheReportIsThere)
{
    EXPECT_TRUE(child<QProgressBar>("progressBar").isVisible());
    EXPECT_FALSE(button("copyButton").isEnabled());
    EXPECT_FALSE(button("saveButton").isEnabled());
    EXPECT_FALSE(button("againButton").isEnabled());
    EXPECT_TRUE(button("closeButton").isEnabled());
    window.showArea(Area::devices);
    EXPECT_NE(verdict().find("Devices"), std::string::npos);
    EXPECT_GT(child<QProgressBar>("progressBar").value(), 0);
    window.showReport(report());
    EXPECT_FALSE(child<QProgressBar>("progressBar").isVisible());
    EXPECT_EQ(verdict(), titleOf(Verdict::blocked));
    EXPECT_TRUE(button("copyButton").isEnabled());
}

TEST_F(DoctorWindowTest, ShowsTheReportAsPlainText)
{
    window.showReport(report());
    EXPECT_EQ(text(), renderedText(report(), same));
    EXPECT_TRUE(child<QPlainTextEdit>("reportText").isReadOnly());
    EXPECT_EQ(child<QLabel>("verdictLabel").textFormat(), Qt::PlainText);
    EXPECT_EQ(child<QLabel>("outcomeLabel").textFormat(), Qt::PlainText);
}

TEST_F(DoctorWindowTest, CopiesTheReport)
{
    window.showReport(report());
    button("copyButton").click();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), renderedText(report(), same));
    EXPECT_EQ(outcome(), "Copied.");
}

TEST_F(DoctorWindowTest, SavesTheReportAsTextOrForPrograms)
{
    window.showReport(report());
    ASSERT_TRUE(window.saveAs(folder.filePath("report.txt")));
    EXPECT_EQ(contents(folder.filePath("report.txt")).toStdString(), renderedText(report(), same));
    ASSERT_TRUE(window.saveAs(folder.filePath("report.json")));
    EXPECT_EQ(QJsonDocument::fromJson(contents(folder.filePath("report.json")))
                  .object()["verdict"]
                  .toString(),
              "blocked");
    EXPECT_EQ(outcome(), "Saved.");
}

TEST_F(DoctorWindowTest, SaysThatSavingFailed)
{
    window.showReport(report());
    EXPECT_FALSE(window.saveAs(folder.filePath("none/report.txt")));
    EXPECT_EQ(outcome().rfind("The report could not be saved:", 0), 0u) << outcome();
}

TEST_F(DoctorWindowTest, AsksWhereToSaveWithoutWaitingForTheAnswer)
{
    window.showReport(report());
    button("saveButton").click();
    auto* dialog = window.findChild<QFileDialog*>();
    ASSERT_TRUE(dialog);
    Q_EMIT dialog->fileSelected(folder.filePath("chosen.txt"));
    EXPECT_TRUE(QFile::exists(folder.filePath("chosen.txt")));
}

TEST_F(DoctorWindowTest, ExaminesAgain)
{
    window.showReport(report());
    button("againButton").click();
    EXPECT_EQ(examinations, 1);
    EXPECT_EQ(text(), "");
    EXPECT_FALSE(button("againButton").isEnabled());
}

TEST_F(DoctorWindowTest, ClosingIsTold)
{
    button("closeButton").click();
    EXPECT_EQ(closings, 1);
    EXPECT_FALSE(window.isVisible());
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
