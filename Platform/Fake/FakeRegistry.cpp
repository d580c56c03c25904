#include "Platform/Fake/FakeRegistry.h"

#include <algorithm>
#include <utility>

namespace farview
{

namespace
{

constexpr std::string_view classesMark = "classes ";

/// Takes the text up to `end` away, and `end` with it.
std::string_view takeUpTo(std::string_view& text, std::string_view end)
{
    const auto place = text.find(end);
    const auto part = text.substr(0, place);
    text.remove_prefix(place == std::string_view::npos ? text.size() : place + end.size());
    return part;
}

/// "NAME[@LOCATION] [<CLASS>]"
FakeRegistry::Node nodeIn(std::string_view line)
{
    FakeRegistry::Node node;
    auto name = takeUpTo(line, " <");
    if (line.ends_with('>'))
        node.className = line.substr(0, line.size() - 1);
    node.name = takeUpTo(name, "@");
    if (!name.empty())
        node.location = name;
    return node;
}

bool isCalled(const FakeRegistry::Node& node, const std::string& name)
{
    return name == node.name || (node.location && name == node.name + "@" + *node.location);
}

} // namespace

FakeRegistry::FakeRegistry() { mEntries[1] = {{"Root", "IORegistryEntry"}, 0}; }

const FakeRegistry::Node* FakeRegistry::node(Entry entry) const
{
    const auto found = mEntries.find(entry);
    return found == mEntries.end() ? nullptr : &found->second.node;
}

std::vector<IORegistry::Entry> FakeRegistry::childEntries(Entry entry, const std::string& plane)
{
    std::vector<Entry> children;
    for (const auto& [number, stored] : mEntries) {
        if (stored.parent == entry && stored.node.plane == plane)
            children.push_back(number);
    }
    return children;
}

std::string FakeRegistry::nameInPlane(Entry entry, const std::string& /*plane*/)
{
    const auto* found = node(entry);
    return found ? found->name : std::string{};
}

std::optional<std::string> FakeRegistry::locationInPlane(Entry entry, const std::string& plane)
{
    const auto* found = node(entry);
    return found && found->plane == plane ? found->location : std::nullopt;
}

std::string FakeRegistry::className(Entry entry)
{
    const auto* found = node(entry);
    return found ? found->className : std::string{};
}

std::optional<std::string> FakeRegistry::superclassOf(const std::string& className)
{
    const auto found = mSuperclasses.find(className);
    return found == mSuperclasses.end() ? std::nullopt : std::optional(found->second);
}

IORegistry::Entry FakeRegistry::child(Entry parent, const std::string& name,
                                      const std::string& plane)
{
    const auto children = childEntries(parent, plane);
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](Entry each) { return isCalled(*node(each), name); });
    return found == children.end() ? 0 : *found;
}

IORegistry::Entry FakeRegistry::entryFromPath(const std::string& path)
{
    const auto colon = path.find(":/");
    if (colon == std::string::npos)
        return 0;
    const std::string plane = path.substr(0, colon);
    Entry entry = rootEntry();
    std::size_t start = colon + 2;
    while (entry != 0 && start <= path.size()) {
        const auto end = std::min(path.find('/', start), path.size());
        entry = child(entry, path.substr(start, end - start), plane);
        start = end + 1;
    }
    return entry;
}

IORegistry::Entry FakeRegistry::add(Entry parent, Node node)
{
    const Entry number = mNext++;
    mEntries[number] = {std::move(node), parent};
    return number;
}

IORegistry::Entry FakeRegistry::publish(const std::string& name, const std::string& className)
{
    Entry resources = child(rootEntry(), "IOResources", "IOService");
    if (resources == 0)
        resources = add(rootEntry(), {"IOResources", "IOResources"});
    return add(resources, {name, className});
}

void FakeRegistry::remove(Entry entry)
{
    mEntries.erase(entry);
    std::vector<Entry> below;
    for (const auto& [number, stored] : mEntries) {
        if (stored.parent == entry)
            below.push_back(number);
    }
    for (const Entry each : below)
        remove(each);
}

void FakeRegistry::setSuperclass(const std::string& className, const std::string& superclass)
{
    mSuperclasses[className] = superclass;
}

void FakeRegistry::readClasses(std::string_view chain)
{
    std::string superclass(takeUpTo(chain, " : "));
    while (!chain.empty()) {
        const std::string next(takeUpTo(chain, " : "));
        setSuperclass(next, superclass);
        superclass = next;
    }
}

/// `open` are the entries from the root to the one of the line before.
bool FakeRegistry::readLine(std::string_view line, std::vector<Entry>& open)
{
    const auto blanks = line.find_first_not_of(' ');
    if (blanks == std::string_view::npos || line.front() == '#')
        return true;
    if (line.starts_with(classesMark)) {
        readClasses(line.substr(classesMark.size()));
        return true;
    }
    const auto level = blanks / 2;
    if (blanks % 2 != 0 || level > open.size() || (level == 0 && !open.empty()))
        return false;
    open.resize(level);
    if (level == 0)
        mEntries[rootEntry()] = {nodeIn(line), 0};
    open.push_back(level == 0 ? rootEntry() : add(open.back(), nodeIn(line.substr(blanks))));
    return true;
}

int FakeRegistry::readFixture(std::string_view text)
{
    *this = FakeRegistry();
    std::vector<Entry> open;
    for (int number = 1; !text.empty(); ++number) {
        if (!readLine(takeUpTo(text, "\n"), open))
            return number;
    }
    return 0;
}

} // namespace farview
