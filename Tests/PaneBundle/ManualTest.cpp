// The user's manual: the pages, and the PDF that is made of them.

#include "Common/Rules/DesktopAbilities.h"
#include "Platform/Fake/FakeLog.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Posix/PropertyLists/StringsFile.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

namespace farview
{
namespace
{

namespace fs = std::filesystem;

const fs::path pages = FARVIEW_SOURCE_DIR "/docs/manual";

std::string contents(const fs::path& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The matches of the expression's first group, in their order.
std::vector<std::string> matches(const std::string& text, const std::string& pattern)
{
    const std::regex expression(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
         ++match)
        found.push_back((*match)[1]);
    return found;
}

/// Words with single blanks between them, whatever was there.
std::string inOneLine(const std::string& text)
{
    std::istringstream words(text);
    std::string line;
    for (std::string word; words >> word;)
        line += line.empty() ? word : " " + word;
    return line;
}

std::string outputOf(const std::string& command)
{
    std::string text;
    FILE* const pipe = ::popen(command.c_str(), "r");
    std::array<char, 4096> part{};
    for (std::size_t size = 0; (size = std::fread(part.data(), 1, part.size(), pipe)) > 0;)
        text.append(part.data(), size);
    EXPECT_EQ(::pclose(pipe), 0) << command;
    return text;
}

std::size_t count(const std::string& text, const std::string& part)
{
    std::size_t found = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

/// The chapters in the order of the manual.
std::vector<std::string> chapters()
{
    return matches(contents(pages / "index.html"), "<li><a href=\"([^\"]*)\">");
}

std::string titleOf(const std::string& page)
{
    const auto found = matches(contents(pages / page), "<h1>([^<]*)</h1>");
    return found.size() == 1 ? found.front() : "";
}

/// The manual as the panel finds it.
std::string documentation()
{
    FakeLog log;
    const auto bundle = PosixBundles(EnvironmentUse::ignored, log)
                            .bundleWithPath(FARVIEW_BINARY_DIR "/Farview Preferences.prefPane");
    return bundle->pathForResource("Farview Documentation", "pdf").value_or("");
}

std::string quoted(const std::string& path) { return "'" + path + "'"; }

/// What a user can read on the screen in that language, without marks of shortcuts.
std::set<std::string> textsOnTheScreen(const std::string& language)
{
    std::set<std::string> texts;
    for (const char* folder : {"PaneBundle", "PaneBundle/UniversalAccess", "Applications/Device"}) {
        const auto path = fs::path(FARVIEW_SOURCE_DIR) / folder / (language + ".lproj");
        const auto parsed = StringsFile::parse(contents(path / "Localizable.strings"));
        for (auto [key, text] : *parsed.texts) {
            std::erase(text, '&');
            texts.insert(inOneLine(text));
        }
    }
    return texts;
}

bool isBeginningOfOne(const std::set<std::string>& texts, const std::string& beginning)
{
    const auto first = texts.lower_bound(beginning);
    return first != texts.end() && first->starts_with(beginning);
}

std::string languageOf(const fs::path& page)
{
    return page.stem().extension() == ".de" ? "de" : "en";
}

std::vector<fs::path> allPages()
{
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(pages)) {
        if (entry.path().extension() == ".html")
            found.push_back(entry.path());
    }
    return found;
}

TEST(Manual, EveryPageIsAChapterOfTheIndex)
{
    const auto listed = chapters();
    EXPECT_GE(listed.size(), 10u);
    for (const auto& page : allPages()) {
        const auto name = page.filename().string();
        if (languageOf(page) == "en" && name != "index.html") {
            EXPECT_EQ(std::count(listed.begin(), listed.end(), name), 1) << name;
        }
    }
}

std::string wordFor(Ability ability)
{
    static const std::map<Ability, std::string> words{{Ability::no, "no"},
                                                      {Ability::yes, "yes"},
                                                      {Ability::withARight, "with a right"},
                                                      {Ability::untested, "not tested"}};
    return words.at(ability);
}

std::string wordFor(WindowKeeping windows)
{
    static const std::map<WindowKeeping, std::string> words{{WindowKeeping::nobody, "nobody"},
                                                            {WindowKeeping::desktop, "the desktop"},
                                                            {WindowKeeping::byFarview, "Farview"}};
    return words.at(windows);
}

std::string rowOf(const DesktopAbilities& desktop)
{
    const std::string crash = desktop.crash == Ability::yes  ? "at once"
                              : desktop.crash == Ability::no ? "at the next start"
                                                             : wordFor(desktop.crash);
    std::string row = "<tr>";
    for (const auto& cell :
         {std::string(desktop.desktop), std::string(desktop.tested), wordFor(desktop.monitor),
          wordFor(desktop.size), wordFor(desktop.scale), wordFor(desktop.pointer),
          wordFor(desktop.touch), wordFor(desktop.keys), wordFor(desktop.windows), crash})
        row += "<td>" + cell + "</td>";
    return row + "</tr>\n";
}

TEST(Manual, TheTableOfDesktopsIsTheOneThatTheTestsCompareWith)
{
    std::string rows;
    for (const auto& desktop : desktopAbilities())
        rows += rowOf(desktop);
    const auto page = contents(pages / "desktops.html");
    const std::string end = "</table>\n";
    EXPECT_NE(page.find("</th></tr>\n" + rows + end), std::string::npos)
        << "between the head and the end of the table belongs:\n"
        << rows;
}

TEST(Manual, TheIndexNamesEachChapterByItsTitle)
{
    const auto index = inOneLine(contents(pages / "index.html"));
    for (const auto& page : chapters()) {
        const std::string title = titleOf(page);
        EXPECT_NE(title, "") << page;
        EXPECT_EQ(count(index, "<a href=\"" + page + "\">" + title + "</a>"), 1u) << page;
        EXPECT_EQ(count(contents(pages / page), "<title>" + title + "</title>"), 1u) << page;
    }
}

TEST(Manual, EveryPictureIsThereAndDescribed)
{
    std::set<std::string> used;
    for (const auto& page : allPages()) {
        for (const auto& image : matches(contents(page), "<img ([^>]*)>")) {
            const auto source = matches(image, "src=\"([^\"]+)\"");
            ASSERT_EQ(source.size(), 1u) << image;
            EXPECT_TRUE(fs::is_regular_file(pages / source.front())) << page << " " << image;
            EXPECT_EQ(matches(image, "alt=\"([^\"]{20,})\"").size(), 1u) << image;
            used.insert(source.front());
        }
    }
    EXPECT_GE(used.size(), 8u);
}

// A text of the program that changes must change in the manual.
TEST(Manual, TextsOfTheScreenAreQuotedAsTheyAre)
{
    for (const auto& page : allPages()) {
        const auto texts = textsOnTheScreen(languageOf(page));
        for (const auto& name : matches(contents(page), "<b>([^<]*)</b>"))
            EXPECT_TRUE(texts.contains(inOneLine(name))) << page << ": " << name;
        for (const auto& beginning : matches(contents(page), "<q>([^<]*)</q>"))
            EXPECT_TRUE(isBeginningOfOne(texts, inOneLine(beginning))) << page << ": " << beginning;
    }
}

TEST(Manual, ThePanelFindsItAsATaggedDocumentOnA4)
{
    ASSERT_TRUE(fs::is_regular_file(documentation()));
    const auto info = outputOf("pdfinfo " + quoted(documentation()));
    for (const char* line :
         {"Title: +Farview: the manual", "Tagged: +yes", "Page size: +595[^\n]*\\(A4\\)",
          "Author: +The Farview developers", "Encrypted: +no"})
        EXPECT_TRUE(std::regex_search(info, std::regex(line))) << line << "\n" << info;
    EXPECT_NE(contents(documentation()).find("/Lang (en)"), std::string::npos);
}

TEST(Manual, EveryChapterIsInTheContentsInTheOutlineAndOnItsPages)
{
    const auto text = inOneLine(outputOf("pdftotext " + quoted(documentation()) + " -"));
    const auto outline = inOneLine(outputOf("pdftohtml -xml -i -stdout " + quoted(documentation()) +
                                            " | sed -n '/<outline>/,$p'"));
    for (const auto& page : chapters()) {
        const std::string title = titleOf(page);
        EXPECT_GE(count(text, title), 3u) << "contents, heading, top of the page: " << title;
        EXPECT_EQ(count(outline, ">" + title + "</item>"), 1u) << title;
    }
}

TEST(Manual, EveryPictureIsDescribedToScreenReaders)
{
    std::size_t pictures = 1; // the icon on the title page
    for (const auto& page : chapters())
        pictures += count(contents(pages / page), "<img ");
    const auto structure = inOneLine(outputOf("pdfinfo -struct " + quoted(documentation())));
    EXPECT_EQ(count(structure, " Figure"), pictures);
    EXPECT_EQ(count(contents(documentation()), "/Alt "), pictures);
}

/// A manual of one chapter.
class SmallManual : public ::testing::Test
{
protected:
    void writeChapter(const std::string& body) const
    {
        std::ofstream(mFolder.path("index.html"))
            << "<html "
               "lang=\"en\"><head><title>Small</title></head><body><h1>Small</h1><p>Manual</p>"
               "<ol><li><a href=\"only.html\">Only</a></li></ol></body></html>";
        std::ofstream(mFolder.path("only.html"))
            << "<html lang=\"en\"><body><h1>Only</h1>" << body << "</body></html>";
    }

    /// Its exit status; complaints of an expected failure stay out of sight.
    int make(const std::string& output) const
    {
        const std::string root = FARVIEW_SOURCE_DIR;
        const std::string command =
            root + "/PaneBundle/Documentation/make-documentation --version 7.5 --icon " + root +
            "/PaneBundle/Artwork/SliderKnob.svg " + mFolder.path("index.html") + " " +
            mFolder.path(output) + " 2>" + mFolder.path("complaints");
        return std::system(command.c_str());
    }

    std::string pathOf(const std::string& file) const { return mFolder.path(file); }

private:
    TemporaryFolder mFolder;
};

TEST_F(SmallManual, IsReadByAScreenReaderWithEachTextOnce)
{
    writeChapter("<p>Before <a href=\"only.html\">a link</a> after.</p><ul><li>An item</li></ul>");
    ASSERT_EQ(make("small.pdf"), 0) << contents(pathOf("complaints"));
    const auto read = inOneLine(outputOf("pdfinfo -struct-text " + pathOf("small.pdf")));
    for (const char* text : {"Before", "a link", "after.", "An item"})
        EXPECT_EQ(count(read, text), 1u) << text << "\n" << read;
    EXPECT_EQ(count(read, "7.5"), 1u) << "on the title page, not again on top of each page";
}

TEST_F(SmallManual, HasTheSameBytesEachTime)
{
    writeChapter("<p>Text</p>");
    ASSERT_EQ(make("first.pdf"), 0) << contents(pathOf("complaints"));
    ASSERT_EQ(make("second.pdf"), 0) << contents(pathOf("complaints"));
    EXPECT_TRUE(contents(pathOf("first.pdf")) == contents(pathOf("second.pdf")));
}

TEST_F(SmallManual, IsNotMadeWhenAPictureOrALinkLeadsNowhere)
{
    writeChapter("<p><img src=\"missing.png\" alt=\"A picture that is not there\"></p>");
    EXPECT_NE(make("small.pdf"), 0);
    writeChapter("<p><a href=\"#nowhere\">A link that leads nowhere</a></p>");
    EXPECT_NE(make("small.pdf"), 0);
    EXPECT_FALSE(fs::exists(pathOf("small.pdf")));
}

} // namespace
} // namespace farview
