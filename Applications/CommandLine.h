#pragma once

#include <QCommandLineParser>
#include <QStringList>

#include <charconv>
#include <functional>
#include <optional>
#include <string>

namespace farview
{

/// What a program says instead of doing its work.
struct CommandLineAnswer {
    int status = 0; ///< with which the program ends
    QString text;
};

/// The command line of a program: its own options, --help and --version. Needs no application
/// object.
class CommandLine
{
public:
    using Options = QList<QCommandLineOption>;
    /// Takes an option's value; false when the option cannot have it.
    using Reader = std::function<bool(const std::string& value)>;

    static constexpr int wrongUse = 2;

    /// `words` begin with the program's name. `ending` is the end of the text that --help prints.
    CommandLine(const QStringList& words, const QString& purpose, const Options& options,
                const QString& ending);

    bool has(const char* option) const { return mParser.isSet(QString::fromLatin1(option)); }
    QString value(const char* option) const { return mParser.value(QString::fromLatin1(option)); }
    /// Calls `reader` when the option is there; a value that does not fit is a mistake.
    void read(const char* option, const Reader& reader);
    /// Says what is wrong; the first mistake counts.
    void refuse(const QString& mistake);
    /// Nothing when the program is to do its work.
    const std::optional<CommandLineAnswer>& answer() const { return mAnswer; }

    static QStringList words(int argc, char** argv);

private:
    QCommandLineParser mParser;
    QString mProgram;
    std::optional<CommandLineAnswer> mAnswer;
};

/// Prints the answer, a mistake on standard error, and returns its status.
int print(const CommandLineAnswer& answer);

/// Whether the whole text is a number of that type, which is then stored.
template <typename Number> bool readNumber(const std::string& text, Number& number)
{
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end;
}

} // namespace farview
