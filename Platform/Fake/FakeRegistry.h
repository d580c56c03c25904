#pragma once

#include "Platform/IORegistry.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace farview
{

/// A registry tree that tests grow. Starts with the root entry, "Root", and nothing below it.
class FakeRegistry final : public IORegistry
{
public:
    struct Node {
        std::string name;
        std::string className = "IOService";
        std::optional<std::string> location = std::nullopt;
        std::string plane = "IOService";
    };

    FakeRegistry();

    Entry rootEntry() override { return 1; }
    std::vector<Entry> childEntries(Entry entry, const std::string& plane) override;
    std::string nameInPlane(Entry entry, const std::string& plane) override;
    std::optional<std::string> locationInPlane(Entry entry, const std::string& plane) override;
    std::string className(Entry entry) override;
    std::optional<std::string> superclassOf(const std::string& className) override;
    Entry entryFromPath(const std::string& path) override;

    /// Takes over the tree that a fixture describes, in the place of everything there was. One
    /// entry a line, "NAME[@LOCATION] [<CLASS>]", two blanks deeper than its parent, the root
    /// first; before it "classes A : B : C", each class below the one before; "#" begins a remark.
    /// Returns the number of the first line that is none of these, or 0.
    int readFixture(std::string_view text);

    /// Adds an entry below `parent`, after its siblings.
    Entry add(Entry parent, Node node);
    /// Publishes a service below "IOResources", which is made when it is missing.
    Entry publish(const std::string& name, const std::string& className = "IOService");
    /// Takes the entry and all below it away.
    void remove(Entry entry);
    void setSuperclass(const std::string& className, const std::string& superclass);

private:
    struct Stored {
        Node node;
        Entry parent = 0;
    };

    bool readLine(std::string_view line, std::vector<Entry>& open);
    void readClasses(std::string_view chain);
    Entry child(Entry parent, const std::string& name, const std::string& plane);
    const Node* node(Entry entry) const;

    std::map<Entry, Stored> mEntries;
    std::map<std::string, std::string> mSuperclasses;
    Entry mNext = 2;
};

} // namespace farview
