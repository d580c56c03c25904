#include "Applications/Doctor/Probes.h"

#include "Common/FVEConstants.h"
#include "Platform/Posix/FolderListing.h"
#include "Platform/Posix/PropertyLists/PropertyListFile.h"
#include "Platform/Posix/Settings/PreferencesLocations.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

namespace farview
{
namespace
{

using State = PreferencesFileFact::State;

State stateFrom(PropertyListFile::Status status)
{
    switch (status) {
    case PropertyListFile::Status::read:
        return State::good;
    case PropertyListFile::Status::missing:
        return State::missing;
    case PropertyListFile::Status::broken:
        return State::broken;
    case PropertyListFile::Status::unreadable:
        break;
    }
    return State::unreadable;
}

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

std::string nameIn(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// Files are replaced, so what counts is the folder: the nearest one that is there.
bool canWriteIn(std::string folder)
{
    while (!folder.empty() && ::access(folder.c_str(), F_OK) != 0)
        folder = folderOf(folder);
    return !folder.empty() && ::access(folder.c_str(), W_OK | X_OK) == 0;
}

std::vector<std::string> setAsideCopiesOf(const std::string& path)
{
    std::vector<std::string> copies;
    for (const auto& name : namesInFolder(folderOf(path))) {
        if (name.starts_with(nameIn(path) + ".broken-"))
            copies.push_back(folderOf(path) + "/" + name);
    }
    return copies;
}

PreferencesFileFact factOf(const std::string& path, PropertyListFile file, bool isOurs)
{
    return {path,   stateFrom(file.status), std::move(file.reason), canWriteIn(folderOf(path)),
            isOurs, setAsideCopiesOf(path)};
}

Finding finding(const PreferencesFileFact& file, Severity severity, const char* name,
                const char* text, const char* advice)
{
    return {Area::preferences,   severity, name,
            {text, {file.path}}, {advice}, {{"path", file.path}}};
}

Finding brokenFinding(const PreferencesFileFact& file)
{
    const bool isBroken = file.state == State::broken;
    Finding result = finding(file, Severity::problem, isBroken ? "broken" : "unreadable", "", "");
    result.text = {isBroken ? "The settings in %@ are broken (%@)."
                            : "The settings in %@ cannot be read (%@).",
                   {file.path, file.reason}};
    result.advice = {isBroken ? "Farview sets the file aside at the next change of a setting and "
                                "begins a new one. Mend the file before that to keep its settings."
                              : "Give yourself the right to read the file."};
    result.details["reason"] = file.reason;
    return result;
}

void append(Findings& findings, const PreferencesFileFact& file)
{
    if (file.state == State::broken || file.state == State::unreadable)
        findings.push_back(brokenFinding(file));
    if (file.state == State::good)
        findings.push_back(
            finding(file, Severity::ok, "good", "The settings in %@ can be read.", ""));
    if (file.isOurs && !file.isWritable)
        findings.push_back(finding(file, Severity::problem, "not-writable",
                                   "Settings cannot be kept in %@: its folder cannot be written.",
                                   "Give yourself the right to write into that folder, or make "
                                   "room on the disk."));
    for (const auto& copy : file.setAside) {
        auto note = finding(file, Severity::note, "set-aside", "", "");
        note.text = {"An earlier, broken file of settings lies in %@.", {copy}};
        note.advice = {"Remove it when you do not need it."};
        note.details["copy"] = copy;
        findings.push_back(std::move(note));
    }
}

} // namespace

std::vector<PreferencesFileFact> preferencesFacts(const PreferencesLocations& locations,
                                                  const std::string& seenDevicesFile)
{
    std::vector<PreferencesFileFact> facts;
    for (const auto user : {PreferencesUser::current, PreferencesUser::any}) {
        for (const auto host : {PreferencesHost::any, PreferencesHost::current}) {
            const auto path = locations.location(kApplicationID, user, host).path;
            facts.push_back(
                factOf(path, readDictionaryFile(path), user == PreferencesUser::current));
        }
    }
    const auto own =
        locations.location(kFVEScreenServerBundleID, PreferencesUser::current, PreferencesHost::any)
            .path;
    facts.push_back(factOf(own, readDictionaryFile(own), true));
    facts.push_back(factOf(seenDevicesFile, readPropertyListFile(seenDevicesFile), true));
    return facts;
}

Findings findingsAboutPreferences(const std::vector<PreferencesFileFact>& files)
{
    Findings findings;
    for (const auto& file : files)
        append(findings, file);
    const bool noneIsThere = std::all_of(
        files.begin(), files.end(), [](const auto& file) { return file.state == State::missing; });
    if (noneIsThere)
        findings.push_back({Area::preferences,
                            Severity::ok,
                            "none",
                            {"No settings are stored yet; the standard ones hold."}});
    return findings;
}

} // namespace farview
