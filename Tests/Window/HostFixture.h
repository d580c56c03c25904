#pragma once

#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/TemporaryFolder.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTextStream>

#include <gtest/gtest.h>

#include <memory>
#include <string>

/// Starts the real host with a home of its own, and bundles that a test puts together.
class HostFixture : public testing::Test
{
protected:
    HostFixture()
    {
        environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "XDG_SESSION_ID", "WAYLAND_DISPLAY",
                                 "XDG_CONFIG_HOME", "XDG_DATA_HOME", "FARVIEW_SYSTEM_ROOT"})
            environment.remove(QString::fromLatin1(name));
        set("QT_QPA_PLATFORM", "offscreen");
        set("HOME", path("home"));
        set("XDG_RUNTIME_DIR", path("run"));
        set("FARVIEW_LOCAL_ROOT", path("local"));
        set("FARVIEW_TEST_CALLS", path("calls"));
        for (const char* name : {"home", "run"}) {
            QDir().mkpath(path(name));
            QFile::setPermissions(path(name),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
    }

    QString path(const char* name) const { return QString::fromStdString(folder.path(name)); }
    void set(const char* name, const QString& value)
    {
        environment.insert(QString::fromLatin1(name), value);
    }

    /// A copy of the bundle that was built.
    QString copyOfBundle(const char* name)
    {
        const QString copy = path(name);
        QProcess::execute(u"cp"_qs, {u"-r"_qs, QStringLiteral(FARVIEW_PANE_BUNDLE), copy});
        return copy;
    }
    /// A bundle around one of the test modules.
    QString bundleAround(const QString& module, const char* principalClass)
    {
        const QString made = path("Module.prefPane");
        QDir().mkpath(made + u"/Contents/Linux"_qs);
        QFile::copy(module, made + u"/Contents/Linux/Module.so"_qs);
        write(made + u"/Contents/Info.plist"_qs,
              QStringLiteral("<plist version=\"1.0\"><dict><key>CFBundleExecutable</key>"
                             "<string>Module.so</string><key>CFBundleName</key>"
                             "<string>Module</string><key>NSPrincipalClass</key>"
                             "<string>%1</string></dict></plist>")
                  .arg(QString::fromLatin1(principalClass)));
        return made;
    }
    static void write(const QString& file, const QString& text)
    {
        QFile output(file);
        ASSERT_TRUE(output.open(QIODevice::WriteOnly)) << file.toStdString();
        output.write(text.toUtf8());
    }
    static QString read(const QString& file)
    {
        QFile input(file);
        return input.open(QIODevice::ReadOnly) ? QString::fromUtf8(input.readAll()) : QString();
    }
    static void replace(const QString& file, const QString& before, const QString& after)
    {
        const QString text = read(file);
        ASSERT_TRUE(text.contains(before)) << before.toStdString();
        write(file, QString(text).replace(before, after));
    }

    struct Result {
        int status = -1; ///< -1: it did not end, or crashed
        std::string output;
        std::string errors;
    };
    std::unique_ptr<QProcess> start(const QStringList& arguments)
    {
        auto process = std::make_unique<QProcess>();
        process->setProcessEnvironment(environment);
        process->start(QStringLiteral(FARVIEW_PREFERENCES), arguments);
        return process;
    }
    static Result end(QProcess& process, int limit = 20'000)
    {
        Result result;
        if (process.waitForFinished(limit) && process.exitStatus() == QProcess::NormalExit)
            result.status = process.exitCode();
        result.output = process.readAllStandardOutput().toStdString();
        result.errors = process.readAllStandardError().toStdString();
        return result;
    }
    Result run(const QStringList& arguments) { return end(*start(arguments)); }

    std::string calls() const { return read(path("calls")).simplified().toStdString(); }

    TemporaryFolder folder;
    QProcessEnvironment environment;
};
