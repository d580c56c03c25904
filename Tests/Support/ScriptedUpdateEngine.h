#pragma once

#include "Tests/Support/TemporaryFolder.h"

#include <string>

/// A program that stands in for the update engine and says what a test wants, line by line. It is
/// a shell script: "say TEXT" prints {"event":TEXT}, "hear" waits for a word and leaves it in
/// $word.
class ScriptedUpdateEngine
{
public:
    ScriptedUpdateEngine() { follow("say '\"checking\"'", ""); }

    std::string path() const { return mFolder.path("engine"); }
    const TemporaryFolder& folder() const { return mFolder; }
    /// What it does when it only looks, and when it updates.
    void follow(const std::string& check, const std::string& update)
    {
        mFolder.write("engine",
                      "#!/bin/sh\n"
                      "here=" +
                          mFolder.path() +
                          "\n"
                          "say() { printf '{\"event\":%s}\\n' \"$1\"; }\n"
                          "hear() { word=; read -r word; }\n"
                          "printf '%s\\n' \"$@\" >\"$here/arguments\"\n"
                          "case \"$*\" in\n"
                          "*--check-only*)\n" +
                          check + "\n;;\n*)\n" + update + "\n;;\nesac\n",
                      true);
    }

    static constexpr const char* findsNothing =
        R"(say '"checking"'; say '"current","version":"1.0","offered":"1.0"')";
    static constexpr const char* finds =
        R"(say '"checking"'; say '"found","version":"1.1","notes":"Faster.","length":1000')";
    static constexpr const char* fails =
        R"(say '"checking"'; say '"failed","reason":"server","detail":"no answer"'; exit 1)";
    /// Until it waits for the installation.
    static constexpr const char* getsReady =
        R"(say '"checking"'; say '"found","version":"1.1","notes":"","length":1000'
hear; [ "$word" = download ] || exit 1
say '"downloading","received":400,"length":1000'
say '"downloading","received":1000,"length":1000'
say '"verifying"'; say '"ready","version":"1.1"'
)";
    static constexpr const char* installs =
        R"(hear; [ "$word" = install ] || exit 1
say '"installing"'; say '"installed","version":"1.1"'
)";

private:
    TemporaryFolder mFolder;
};
